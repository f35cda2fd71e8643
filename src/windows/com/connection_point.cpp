// Event subscriptions through connection points.
#include "windows/com/connection_point.h"

#include <utility>

namespace arbolet::windows::com {

Advised::Advised(Advised&& other) noexcept
    : point_(std::move(other.point_)), cookie_(std::exchange(other.cookie_, 0)) {}

Advised& Advised::operator=(Advised&& other) noexcept {
    if (this != &other) {
        Unadvise();
        point_ = std::move(other.point_);
        cookie_ = std::exchange(other.cookie_, 0);
    }
    return *this;
}

HRESULT Advised::Advise(IUnknown* source, REFIID eventsIid, IUnknown* sink) noexcept {
    Unadvise();
    if (source == nullptr || sink == nullptr) return E_POINTER;
    ComPtr<IConnectionPointContainer> container;
    HRESULT hr = source->QueryInterface(IID_IConnectionPointContainer, container.PutVoid());
    if (FAILED(hr)) return hr;
    ComPtr<IConnectionPoint> point;
    hr = container->FindConnectionPoint(eventsIid, point.Put());
    if (FAILED(hr)) return hr;
    DWORD cookie = 0;
    hr = point->Advise(sink, &cookie);
    if (FAILED(hr)) return hr;
    point_ = std::move(point);
    cookie_ = cookie;
    return S_OK;
}

void Advised::Unadvise() noexcept {
    if (point_) point_->Unadvise(cookie_);
    point_.Reset();
    cookie_ = 0;
}

}  // namespace arbolet::windows::com

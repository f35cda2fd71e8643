// The scriptable IDispatch objects of the tests and their connection points.
#include "windows/com/fake_object.h"

#include <algorithm>

#include "windows/com/bstr.h"

namespace arbolet::windows::testing {

using com::Bstr;

namespace {
// Answered only by FakeObject, with its own pointer, so that transcripts can name objects.
constexpr IID kIidFakeObject = {
    0x5A1C0DE5, 0x0B1E, 0x4C7A, {0x9E, 0x11, 0x20, 0x26, 0x11, 0x23, 0x00, 0x01}};
}  // namespace

// One event interface of a FakeObject; holds the advised sinks.
class FakeObject::Point : public IConnectionPoint {
  public:
    Point(FakeObject* owner, const IID& iid) : owner_(owner), iid_(iid) {}
    const IID& Iid() const { return iid_; }
    std::map<DWORD, ComPtr<IDispatch>>& Sinks() { return sinks_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid == IID_IUnknown || iid == IID_IConnectionPoint) {
            *object = static_cast<IConnectionPoint*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++refs_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG count = --refs_;
        if (count == 0) delete this;
        return count;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override {
        *iid = iid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override {
        *container = owner_;
        owner_->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override {
        ComPtr<IDispatch> events;
        // A sink must answer for the event interface itself, as VB's sinks do.
        if (FAILED(sink->QueryInterface(iid_, events.PutVoid()))) return CONNECT_E_CANNOTCONNECT;
        *cookie = ++lastCookie_;
        sinks_[*cookie] = events;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override {
        return sinks_.erase(cookie) == 1 ? S_OK : CONNECT_E_NOCONNECTION;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) noexcept override {
        return E_NOTIMPL;
    }

  private:
    virtual ~Point() = default;
    FakeObject* owner_;
    IID iid_;
    std::map<DWORD, ComPtr<IDispatch>> sinks_;
    DWORD lastCookie_ = 0;
    ULONG refs_ = 1;
};

FakeObject::FakeObject(std::string typeName, std::shared_ptr<Transcript> transcript)
    : typeName_(std::move(typeName)), transcript_(std::move(transcript)) {}

ComPtr<FakeObject> FakeObject::Create(std::string typeName,
                                      std::shared_ptr<Transcript> transcript) {
    return ComPtr<FakeObject>::Attach(new FakeObject(std::move(typeName), std::move(transcript)));
}

ComPtr<FakeObject> FakeObject::From(const Variant& value) {
    ComPtr<IDispatch> object = value.ToDispatch();
    void* fake = nullptr;
    if (!object || FAILED(object->QueryInterface(kIidFakeObject, &fake))) return {};
    return ComPtr<FakeObject>(static_cast<FakeObject*>(fake));
}

void FakeObject::Method(const DispMember& member, Handler handler) {
    members_[member.id] = {member.name, std::move(handler)};
}

void FakeObject::Property(const DispMember& member, Variant value) {
    properties_[member.id] = std::move(value);
    members_[member.id] = {member.name, nullptr};
}

Variant FakeObject::PropertyValue(const DispMember& member) const {
    auto found = properties_.find(member.id);
    return found == properties_.end() ? Variant() : found->second;
}

void FakeObject::AddEvents(REFIID diid) {
    points_.push_back(ComPtr<Point>::Attach(new Point(this, diid)));
}

std::size_t FakeObject::SinkCount(REFIID diid) const {
    for (const auto& point : points_) {
        if (point->Iid() == diid) return point->Sinks().size();
    }
    return 0;
}

HRESULT FakeObject::Raise(REFIID diid, DISPID id, std::vector<Variant> args) {
    for (const auto& point : points_) {
        if (point->Iid() != diid) continue;
        std::vector<VARIANTARG> reversed;
        for (auto it = args.rbegin(); it != args.rend(); ++it)
            reversed.push_back(*it->Get());
        DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        auto sinks = point->Sinks();
        for (auto& [cookie, sink] : sinks) {
            HRESULT hr =
                sink->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
            if (FAILED(hr)) return hr;
        }
        return S_OK;
    }
    return E_INVALIDARG;
}

HRESULT FakeObject::QueryInterface(REFIID iid, void** object) noexcept {
    if (iid == kIidFakeObject) {
        *object = this;
        return S_OK;
    }
    if (iid == IID_IUnknown || iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
    } else if (iid == IID_IConnectionPointContainer && !points_.empty()) {
        *object = static_cast<IConnectionPointContainer*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG FakeObject::AddRef() noexcept {
    return ++refs_;
}

ULONG FakeObject::Release() noexcept {
    const ULONG count = --refs_;
    if (count == 0) delete this;
    return count;
}

HRESULT FakeObject::GetTypeInfoCount(UINT* count) noexcept {
    *count = 0;
    return S_OK;
}

HRESULT FakeObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
    *info = nullptr;
    return E_NOTIMPL;
}

HRESULT FakeObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
    ++nameLookups_;
    if (count != 1 || !answerNames_) return DISP_E_UNKNOWNNAME;
    for (const auto& [id, member] : members_) {
        if (_wcsicmp(member.name.c_str(), names[0]) == 0) {
            ids[0] = id;
            return S_OK;
        }
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT FakeObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                           EXCEPINFO* exception, UINT*) noexcept {
    auto found = members_.find(id);
    if (found == members_.end()) return DISP_E_MEMBERNOTFOUND;
    std::vector<Variant> args;
    for (UINT i = params->cArgs; i > 0; --i) {
        args.push_back(Variant::Copy(params->rgvarg[i - 1]));
    }
    const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    std::string line = isPut ? "put " : (flags & DISPATCH_PROPERTYGET) ? "get " : "call ";
    line += typeName_ + "." + Bstr(std::wstring_view(found->second.name)).Utf8();
    for (const Variant& arg : args) {
        if (!(arg.Type() == VT_ERROR && arg.Get()->scode == DISP_E_PARAMNOTFOUND)) {
            line += " " + LiteralText(*arg.Get());
        }
    }
    if (transcript_) transcript_->push_back(line);

    Variant answer;
    HRESULT hr = S_OK;
    if (found->second.handler) {
        hr = found->second.handler(flags, args, answer);
    } else if (isPut) {
        if (args.empty()) return DISP_E_BADPARAMCOUNT;
        properties_[id] = args.back();
    } else {
        answer = properties_[id];
    }
    if (FAILED(hr)) {
        if (exception != nullptr && HRESULT_FACILITY(hr) == FACILITY_CONTROL) {
            *exception = EXCEPINFO{};
            exception->scode = hr;
            exception->bstrSource = Bstr::Allocate(typeName_);
            exception->bstrDescription = Bstr::Allocate("Failure of " + line);
            return DISP_E_EXCEPTION;
        }
        return hr;
    }
    if (result != nullptr) {
        VariantInit(result);
        VariantCopy(result, answer.Get());
    }
    return S_OK;
}

HRESULT FakeObject::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    *points = nullptr;
    return E_NOTIMPL;
}

HRESULT FakeObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    for (const auto& candidate : points_) {
        if (candidate->Iid() == iid) {
            *point = candidate.Get();
            (*point)->AddRef();
            return S_OK;
        }
    }
    *point = nullptr;
    return CONNECT_E_NOCONNECTION;
}

std::string LiteralText(const VARIANT& value) {
    const VARIANT& v = com::Dereference(value);
    switch (v.vt) {
        case VT_BOOL:
            return v.boolVal ? "True" : "False";
        case VT_BSTR:
            return "\"" + Bstr::Utf8(v.bstrVal) + "\"";
        case VT_DISPATCH:
        case VT_UNKNOWN: {
            if (v.punkVal == nullptr) return "Nothing";
            void* fake = nullptr;
            if (SUCCEEDED(v.punkVal->QueryInterface(kIidFakeObject, &fake))) {
                return "<" + static_cast<FakeObject*>(fake)->TypeName() + ">";
            }
            return "<object>";
        }
        case VT_DISPATCH | VT_BYREF: {
            VARIANT object;
            VariantInit(&object);
            object.vt = VT_DISPATCH;
            object.pdispVal = v.ppdispVal != nullptr ? *v.ppdispVal : nullptr;
            return LiteralText(object);
        }
        case VT_EMPTY:
            return "Empty";
        default: {
            Variant copy = Variant::Copy(v);
            return copy.ToUtf8().value_or("?");
        }
    }
}

FakeObject::Handler Answer(Variant value) {
    return [value](WORD, const std::vector<Variant>&, Variant& result) {
        result = value;
        return S_OK;
    };
}

}  // namespace arbolet::windows::testing

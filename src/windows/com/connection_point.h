// An event subscription on a COM object: finds the object's connection point for an event
// interface, advises a sink, and unadvises when it goes, so that no subscription outlives the
// add-in's connection to the IDE.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include "windows/com/com_ptr.h"

namespace arbolet::windows::com {

class Advised {
  public:
    Advised() noexcept = default;
    Advised(const Advised&) = delete;
    Advised& operator=(const Advised&) = delete;
    Advised(Advised&& other) noexcept;
    Advised& operator=(Advised&& other) noexcept;
    ~Advised() { Unadvise(); }

    // Subscribes `sink` to the events `eventsIid` of `source` (through its
    // IConnectionPointContainer); drops any earlier subscription first.
    HRESULT Advise(IUnknown* source, REFIID eventsIid, IUnknown* sink) noexcept;
    void Unadvise() noexcept;

  private:
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

}  // namespace arbolet::windows::com

// Late-bound calls on the IDE's objects through IDispatch, as VB itself makes them: members are
// found by name with GetIDsOfNames (cached per object), and by their known DISPID when the host
// does not answer for the name. Arguments are given in their natural order.
//
// Get sends DISPATCH_PROPERTYGET | DISPATCH_METHOD, as VB does for `obj.Member(args)` in an
// expression; Call sends DISPATCH_METHOD only; Put sends DISPATCH_PROPERTYPUT and PutRef
// DISPATCH_PROPERTYPUTREF. The throwing calls raise the callee's error as a VbError.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/vb_error.h"
#include "windows/com/com_ptr.h"
#include "windows/com/variant.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::windows::com {

class Dispatch {
  public:
    Dispatch() = default;
    explicit Dispatch(ComPtr<IDispatch> object);
    explicit Dispatch(IDispatch* object) : Dispatch(ComPtr<IDispatch>(object)) {}

    IDispatch* Object() const noexcept { return object_.Get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(object_); }

    Variant Get(const DispMember& member, std::initializer_list<Variant> args = {}) const;
    // Get of an object-valued member; an empty Dispatch when it answers Nothing.
    Dispatch GetObject(const DispMember& member, std::initializer_list<Variant> args = {}) const;
    std::string GetText(const DispMember& member, std::initializer_list<Variant> args = {}) const;
    std::int32_t GetInt(const DispMember& member, std::initializer_list<Variant> args = {}) const;
    bool GetBool(const DispMember& member, std::initializer_list<Variant> args = {}) const;
    void Put(const DispMember& member, const Variant& value) const;
    void PutRef(const DispMember& member, const Variant& value) const;
    Variant Call(const DispMember& member, std::initializer_list<Variant> args = {}) const;

    // The call itself, without raising: `args` in natural order, `result` may be null.
    HRESULT Invoke(const DispMember& member, WORD flags, std::span<const Variant> args,
                   VARIANT* result, EXCEPINFO* exception) const noexcept;

  private:
    DISPID Resolve(const DispMember& member) const noexcept;
    Variant InvokeOrRaise(const DispMember& member, WORD flags,
                          std::span<const Variant> args) const;

    ComPtr<IDispatch> object_;
    // Copies of a Dispatch share the names they have looked up.
    std::shared_ptr<std::map<std::wstring, DISPID>> dispids_;
};

}  // namespace arbolet::windows::com

// The IDispatch side of every object the emulated IDE hands to an add-in: its members by name
// and DISPID, the argument conventions of Invoke, run-time errors as exceptions with error
// information, and a transcript line for every call.
#pragma once

#include <oaidl.h>
#include <windows.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "windows/com/com_ptr.h"
#include "windows/com/late_bound.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::vb6host {

using windows::com::ComPtr;

class HostContext;

enum class MemberKind { Property, Method };

// A member the object answers for: by its entry in the add-in's identifier header, or by name
// and DISPID for the members the add-in never calls.
struct Member {
    constexpr Member(const windows::com::DispMember& member, MemberKind memberKind)
        : name(member.name), id(member.id), kind(memberKind) {}
    constexpr Member(const wchar_t* memberName, DISPID memberId, MemberKind memberKind)
        : name(memberName), id(memberId), kind(memberKind) {}

    const wchar_t* name;
    DISPID id;
    MemberKind kind;
};

// The interface an object answers for, besides IUnknown and IDispatch.
struct InterfaceInfo {
    const wchar_t* name;  // as the transcript and the object model write it
    IID iid;
};

// The arguments of one Invoke, in the order the member declares them. Conversions raise the
// VB errors a real object would: 449 for a missing argument, 13 for one of the wrong type.
class Arguments {
  public:
    Arguments(const DISPPARAMS& params, bool isPut) noexcept;
    std::size_t Count() const noexcept { return positional_; }
    // Present and not a left-out optional argument.
    bool Has(std::size_t index) const noexcept;
    const VARIANT& At(std::size_t index) const;
    // The assigned value of a property put.
    const VARIANT& Value() const;
    std::int32_t Long(std::size_t index) const { return ToLong(At(index)); }
    std::wstring String(std::size_t index) const { return ToString(At(index)); }
    bool Bool(std::size_t index) const { return ToBool(At(index)); }
    // nullptr for Nothing.
    IDispatch* Object(std::size_t index) const { return ToObject(At(index)); }
    // The variable behind an [in, out] argument.
    VARIANT& ByRef(std::size_t index) const;

    static std::int32_t ToLong(const VARIANT& value);
    static std::wstring ToString(const VARIANT& value);
    static bool ToBool(const VARIANT& value);
    static IDispatch* ToObject(const VARIANT& value);

  private:
    const DISPPARAMS& params_;
    std::size_t positional_;
};

// What Invoke gives a member to run: its arguments and the slot for its result.
struct Call {
    Arguments args;
    bool isPut;
    VARIANT* result;  // may be nullptr when the caller wants none

    void ReturnLong(std::int32_t value) const;
    void ReturnBool(bool value) const;
    void ReturnString(std::wstring_view value) const;
    void ReturnUtf8(std::string_view value) const;
    // Takes a new reference for the caller; nullptr returns Nothing.
    void ReturnObject(IDispatch* object) const;
};

// {5f0c4a3e-7d1b-4b9e-9a57-0b3f6c2d8e11}: answered only by the host's own objects, so that an
// object an add-in hands back can be known again.
inline constexpr IID kIidHostObject = {
    0x5f0c4a3e, 0x7d1b, 0x4b9e, {0x9a, 0x57, 0x0b, 0x3f, 0x6c, 0x2d, 0x8e, 0x11}};

class DispatchObject : public windows::com::LateBound<> {
  public:
    DispatchObject(const DispatchObject&) = delete;
    DispatchObject& operator=(const DispatchObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID lcid,
                                            DISPID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags,
                                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) noexcept override;

    const wchar_t* InterfaceName() const noexcept { return interface_.name; }
    // How the transcript shows this object as an argument.
    virtual std::string Describe() const;
    HostContext& Context() const noexcept { return *context_; }
    const std::shared_ptr<HostContext>& SharedContext() const noexcept { return context_; }

  protected:
    DispatchObject(std::shared_ptr<HostContext> context, InterfaceInfo interfaceInfo,
                   std::span<const Member> members);
    virtual ~DispatchObject();

    // Runs a member; run-time errors are thrown as arbolet::VbError.
    virtual void Run(DISPID id, const Call& call) = 0;
    // Interfaces beyond IDispatch and the object model's own (connection points, ...).
    virtual void* QueryOther(REFIID /*iid*/) noexcept { return nullptr; }
    // Records a call that did not come through Invoke (connection points).
    void RecordCall(std::wstring_view member, const std::vector<std::string>& arguments) const;

  private:
    friend class HostContext;
    const Member* Find(DISPID id) const noexcept;

    std::shared_ptr<HostContext> context_;
    // Set while the context's cache knows this object as the wrapper of a model object.
    std::pair<const void*, const void*> cacheKey_{nullptr, nullptr};
    InterfaceInfo interface_;
    std::span<const Member> members_;
    LONG references_ = 1;
};

// The host's object behind an interface pointer, or nullptr for anything else.
DispatchObject* HostObjectOf(IUnknown* unknown) noexcept;

// Creates an object with one reference held by the returned pointer.
template <typename T, typename... Args>
ComPtr<T> MakeObject(Args&&... args) {
    return ComPtr<T>::Attach(new T(std::forward<Args>(args)...));
}

// "{0002E100-0000-0000-C000-000000000046}" and so on.
IID IidFromString(const wchar_t* text) noexcept;

}  // namespace arbolet::vb6host

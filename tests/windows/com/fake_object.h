// Scriptable IDispatch objects for tests: members answered by handlers or stored properties,
// connection points that sinks advise, and a transcript of every call made on them, in the
// form "get Type.Member args", "put Type.Member value" or "call Type.Member args".
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "windows/com/com_ptr.h"
#include "windows/com/ref_count.h"
#include "windows/com/variant.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::windows::testing {

using com::ComPtr;
using com::DispMember;
using com::Variant;

using Transcript = std::vector<std::string>;

class FakeObject : public IDispatch, public IConnectionPointContainer {
  public:
    // Arguments in natural order; the handler fills `result` and answers an HRESULT.
    using Handler =
        std::function<HRESULT(WORD flags, const std::vector<Variant>& args, Variant& result)>;

    static ComPtr<FakeObject> Create(std::string typeName, std::shared_ptr<Transcript> transcript);
    // The FakeObject inside a VARIANT argument; empty for any other object.
    static ComPtr<FakeObject> From(const Variant& value);

    const std::string& TypeName() const { return typeName_; }
    // A member answered by `handler`.
    void Method(const DispMember& member, Handler handler);
    // A property: get answers the stored value, put replaces it.
    void Property(const DispMember& member, Variant value);
    Variant PropertyValue(const DispMember& member) const;
    // GetIDsOfNames fails for every name, so callers must know the DISPIDs.
    void AnswerNoNames() { answerNames_ = false; }
    int NameLookups() const { return nameLookups_; }
    // The object offers the event interface `diid` through a connection point.
    void AddEvents(REFIID diid);
    std::size_t SinkCount(REFIID diid) const;
    // Calls every sink of `diid` with DISPID `id`; arguments in natural order.
    HRESULT Raise(REFIID diid, DISPID id, std::vector<Variant> args);
    ULONG References() const { return refs_; }

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) noexcept override;
    // IConnectionPointContainer
    HRESULT STDMETHODCALLTYPE
    EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid,
                                                  IConnectionPoint** point) noexcept override;

  private:
    FakeObject(std::string typeName, std::shared_ptr<Transcript> transcript);
    virtual ~FakeObject() = default;
    struct Member {
        std::wstring name;
        Handler handler;
    };
    class Point;

    std::string typeName_;
    std::shared_ptr<Transcript> transcript_;
    std::map<DISPID, Member> members_;
    std::map<DISPID, Variant> properties_;
    std::vector<ComPtr<Point>> points_;
    bool answerNames_ = true;
    int nameLookups_ = 0;
    ULONG refs_ = 1;
};

// VB literal text of an argument, for transcripts: 5, True, "text", Nothing, or an object's
// type name in angle brackets.
std::string LiteralText(const VARIANT& value);

// A handler that answers one fixed value.
FakeObject::Handler Answer(Variant value);

}  // namespace arbolet::windows::testing

// The IDE's side of an add-in's life: registering its DLL with regsvr32, finding it under the
// IDE's Addins key, creating its connection object by ProgID, connecting it in a mode, telling
// it that start-up is complete, disconnecting it, and unregistering the DLL.
#pragma once

#include <windows.h>

#include <string>

#include "vb6host/host_context.h"
#include "windows/com/dispatch.h"

namespace arbolet::vb6host {

// What the Addins key says of one add-in.
struct AddInEntry {
    std::wstring progId;
    std::wstring friendlyName;
    std::wstring description;
    DWORD loadBehavior = 0;
    CLSID clsid{};
};

// Runs regsvr32 with `options` ("/s" or "/u /s") on `dll`; its exit code, or -1 when it did not
// start.
int Regsvr32(const std::wstring& options, const std::wstring& dll);
// The add-in whose class's InprocServer32 is `dll`, among those under
// HKCU\Software\Microsoft\Visual Basic\6.0\Addins; false when there is none.
bool FindAddIn(const std::wstring& dll, AddInEntry& entry);
// The add-in `progId` as the IDE finds it: listed under the Addins key, its class registered;
// false when either is missing.
bool FindAddInByProgId(const std::wstring& progId, AddInEntry& entry);
// The DLL registered as the in-process server of `clsid` ("" when none is).
std::wstring ServerOf(const CLSID& clsid);
// Whether the Addins key still lists `progId`.
bool AddInListed(const std::wstring& progId);

class AddInConnection {
  public:
    explicit AddInConnection(HostContext& context) : context_(context) {}
    ~AddInConnection() { Release(); }
    AddInConnection(const AddInConnection&) = delete;
    AddInConnection& operator=(const AddInConnection&) = delete;

    // Creates the connection object and calls OnConnection with the VBE, `mode` and the AddIn
    // object; HRESULT of the first step that failed.
    HRESULT Connect(const AddInEntry& entry, int mode);
    HRESULT StartupComplete();
    // OnDisconnection(UserClosed), then the IDE closes the add-in's tool windows and lets go of
    // the connection object.
    HRESULT Disconnect();
    // Calls a member of the connection object by name (Show, Hide).
    HRESULT CallByName(const wchar_t* name);
    bool Connected() const { return static_cast<bool>(object_); }
    void Release();

  private:
    HRESULT Invoke(DISPID id, std::vector<VARIANT> arguments);

    HostContext& context_;
    windows::com::ComPtr<IDispatch> object_;
};

}  // namespace arbolet::vb6host

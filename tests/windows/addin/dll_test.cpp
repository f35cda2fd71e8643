// Arbolet.dll as regsvr32 and COM see it: its exports, the keys registering writes and
// unregistering removes (machine and per-user), and its class objects and unload answer.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "addin/addin_dll.h"
#include "raw_registry.h"
#include "windows/base/ansi_text.h"
#include "windows/com/com_ptr.h"
#include "windows/com/extensibility.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::windows {
namespace {

using com::ComPtr;
using testing::AddInDllPath;
using testing::KeyPresent;
using testing::ReadRaw;
using testing::Regsvr32;

const std::string kConnectionClsid = "CLSID\\{3DED0A63-1886-4689-82B8-1008473F854C}";
const std::string kControlClsid = "CLSID\\{6386DC89-55C6-45B5-AB6B-2F53774B22E5}";
const std::string kAddIns = "Software\\Microsoft\\Visual Basic\\6.0\\Addins";
const std::string kAddInKey = kAddIns + "\\Arbolet.dVisualBasic";

std::string Text(HKEY root, const std::string& path, const std::string& name = "") {
    auto value = ReadRaw(root, path, name);
    if (!value) return "<missing>";
    EXPECT_EQ(value->type, static_cast<DWORD>(REG_SZ)) << path << " " << name;
    return std::string(value->data.c_str());
}

DWORD Dword(HKEY root, const std::string& path, const std::string& name) {
    auto value = ReadRaw(root, path, name);
    if (!value || value->type != REG_DWORD || value->data.size() != 4) return 0xDEADBEEF;
    return *reinterpret_cast<const DWORD*>(value->data.data());
}

TEST(AddInDll, ExportsTheServerEntryPointsByTheirPlainNames) {
    HMODULE dll = LoadLibraryW(AddInDllPath().c_str());
    ASSERT_NE(dll, nullptr) << "cannot load " << WideToUtf8(AddInDllPath());
    for (const char* name : {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer",
                             "DllUnregisterServer", "DllInstall"}) {
        EXPECT_NE(GetProcAddress(dll, name), nullptr) << name;
    }
    FreeLibrary(dll);
}

TEST(AddInDll, Regsvr32WritesTheClassesAndTheAddInKeyAndRemovesExactlyThem) {
    // Another add-in's key beside ours must survive our unregistering.
    testing::WriteRaw(HKEY_CURRENT_USER, kAddIns + "\\Other.Connect", "FriendlyName", REG_SZ,
                      std::string("Other", 6));
    ASSERT_EQ(Regsvr32(L"/s"), 0u);

    const std::string dllPath = WideToUtf8(AddInDllPath());
    const std::string inproc = kConnectionClsid + "\\InprocServer32";
    EXPECT_EQ(_stricmp(Text(HKEY_CLASSES_ROOT, inproc).c_str(), dllPath.c_str()), 0)
        << Text(HKEY_CLASSES_ROOT, inproc);
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, inproc, "ThreadingModel"), "Apartment");
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, kConnectionClsid + "\\ProgID"), "Arbolet.dVisualBasic");
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, "Arbolet.dVisualBasic\\CLSID"), kConnectionClsid.substr(6));
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, kControlClsid + "\\InprocServer32", "ThreadingModel"),
              "Apartment");
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, kControlClsid + "\\ProgID"), "Quorlin.docAddIn");
    EXPECT_TRUE(KeyPresent(HKEY_CLASSES_ROOT, kControlClsid + "\\Control"));
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, kControlClsid + "\\MiscStatus"), "131473");
    EXPECT_EQ(Text(HKEY_CLASSES_ROOT, "Quorlin.docAddIn\\CLSID"), kControlClsid.substr(6));

    EXPECT_EQ(Text(HKEY_CURRENT_USER, kAddInKey, "FriendlyName"), "Arbolet");
    EXPECT_NE(Text(HKEY_CURRENT_USER, kAddInKey, "Description"), "<missing>");
    EXPECT_EQ(Dword(HKEY_CURRENT_USER, kAddInKey, "LoadBehavior") & 1u, 1u) << "loaded at start-up";
    EXPECT_EQ(Dword(HKEY_CURRENT_USER, kAddInKey, "CommandLineSafe"), 0u);

    CLSID byProgId{};
    EXPECT_EQ(CLSIDFromProgID(L"Quorlin.docAddIn", &byProgId), S_OK);
    EXPECT_EQ(byProgId, com::ids::CLSID_ToolWindowControl);

    ASSERT_EQ(Regsvr32(L"/u /s"), 0u);
    for (const std::string& key :
         {kConnectionClsid, kControlClsid, std::string("Arbolet.dVisualBasic"),
          std::string("Quorlin.docAddIn")}) {
        EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, key)) << key;
    }
    EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, kAddInKey));
    EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, kAddIns + "\\Other.Connect"));
    EXPECT_TRUE(KeyPresent(HKEY_CLASSES_ROOT, "CLSID")) << "nothing above our keys is removed";
    EXPECT_EQ(Regsvr32(L"/u /s"), 0u) << "unregistering twice is not an error";
    testing::DeleteTree(HKEY_CURRENT_USER, kAddIns + "\\Other.Connect");
}

TEST(AddInDll, DllInstallUserRegistersTheClassesForTheCurrentUserOnly) {
    ASSERT_EQ(Regsvr32(L"/s /n /i:user"), 0u);
    const std::string userClasses = "Software\\Classes\\";
    EXPECT_EQ(Text(HKEY_CURRENT_USER, userClasses + kControlClsid + "\\ProgID"),
              "Quorlin.docAddIn");
    EXPECT_EQ(Text(HKEY_CURRENT_USER, userClasses + "Arbolet.dVisualBasic\\CLSID"),
              kConnectionClsid.substr(6));
    EXPECT_FALSE(KeyPresent(HKEY_LOCAL_MACHINE, "Software\\Classes\\" + kConnectionClsid));
    EXPECT_EQ(Text(HKEY_CURRENT_USER, kAddInKey, "FriendlyName"), "Arbolet");

    EXPECT_NE(Regsvr32(L"/s /n /i:everyone"), 0u) << "only \"user\" is understood";
    ASSERT_EQ(Regsvr32(L"/u /s /n /i:user"), 0u);
    EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, userClasses + kControlClsid));
    EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, userClasses + "Quorlin.docAddIn"));
    EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, kAddInKey));
}

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadNowFunction = HRESULT(STDAPICALLTYPE*)();

TEST(AddInDll, CanUnloadOnlyWhenEveryObjectAndLockIsGone) {
    HMODULE dll = LoadLibraryW(AddInDllPath().c_str());
    ASSERT_NE(dll, nullptr);
    auto getClassObject = reinterpret_cast<GetClassObjectFunction>(
        reinterpret_cast<void*>(GetProcAddress(dll, "DllGetClassObject")));
    auto canUnloadNow = reinterpret_cast<CanUnloadNowFunction>(
        reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
    ASSERT_TRUE(getClassObject && canUnloadNow);
    EXPECT_EQ(canUnloadNow(), S_OK);
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(getClassObject(IID_IDispatch, IID_IClassFactory, factory.PutVoid()),
                  CLASS_E_CLASSNOTAVAILABLE);
        ASSERT_EQ(getClassObject(com::ids::CLSID_Connection, IID_IClassFactory, factory.PutVoid()),
                  S_OK);
        EXPECT_EQ(canUnloadNow(), S_FALSE);
        ComPtr<com::IDTExtensibility2> connection;
        ASSERT_EQ(
            factory->CreateInstance(nullptr, com::ids::IID_IDTExtensibility2, connection.PutVoid()),
            S_OK);
        ComPtr<IUnknown> older = connection.As<IUnknown>(com::ids::IID_IDTExtensibility);
        EXPECT_TRUE(older) << "the older connection interface is answered too";
        ComPtr<IClassFactory> controls;
        ASSERT_EQ(getClassObject(com::ids::CLSID_ToolWindowControl, IID_IClassFactory,
                                 controls.PutVoid()),
                  S_OK);
        ComPtr<IOleObject> control;
        ASSERT_EQ(controls->CreateInstance(nullptr, IID_IOleObject, control.PutVoid()), S_OK);
        controls->LockServer(TRUE);
        controls.Reset();
        factory.Reset();
        connection.Reset();
        older.Reset();
        control.Reset();
        EXPECT_EQ(canUnloadNow(), S_FALSE) << "the server lock keeps the DLL";
        ASSERT_EQ(getClassObject(com::ids::CLSID_ToolWindowControl, IID_IClassFactory,
                                 controls.PutVoid()),
                  S_OK);
        controls->LockServer(FALSE);
    }
    EXPECT_EQ(canUnloadNow(), S_OK);
    FreeLibrary(dll);
}

}  // namespace
}  // namespace arbolet::windows

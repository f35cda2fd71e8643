// The tool-window control in a container we did not write: Wine's own ActiveX host (atl.dll,
// loaded at run time) creates "Quorlin.docAddIn" by its ProgID from the registered DLL, sites
// and activates it. The test checks the windows it makes, that it follows its site's size, that
// it draws through IViewObject, which interfaces the host asked for (ARBOLET_LOG), and saves a
// screenshot as artifacts/addin_tool_window.png beside the test program.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "addin/addin_dll.h"
#include "support/screen_capture.h"
#include "support/test_window.h"
#include "windows/com/com_ptr.h"
#include "windows/com/dispatch.h"
#include "windows/screenshot/png_file.h"

namespace arbolet::windows {
namespace {

using com::ComPtr;
using testing::CaptureScreen;
using testing::CountPixels;
using testing::PumpMessagesFor;
using testing::Regsvr32;

using AtlAxWinInitFunction = BOOL(WINAPI*)();
using AtlAxCreateControlFunction = HRESULT(WINAPI*)(LPCOLESTR, HWND, IStream*, IUnknown**);
using AtlAxGetControlFunction = HRESULT(WINAPI*)(HWND, IUnknown**);

template <typename Function>
Function Resolve(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

struct ClassSearch {
    const wchar_t* className;
    HWND found;
};

// A named CALLBACK, not a lambda: the 32-bit build needs the stdcall convention.
BOOL CALLBACK MatchClass(HWND hwnd, LPARAM data) {
    auto* search = reinterpret_cast<ClassSearch*>(data);
    wchar_t name[64] = {};
    GetClassNameW(hwnd, name, 64);
    if (wcscmp(name, search->className) != 0) return TRUE;
    search->found = hwnd;
    return FALSE;
}

HWND FindDescendant(HWND parent, const wchar_t* className) {
    ClassSearch search{className, nullptr};
    EnumChildWindows(parent, &MatchClass, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

SIZE ClientSize(HWND hwnd) {
    RECT rect{};
    GetClientRect(hwnd, &rect);
    return {rect.right, rect.bottom};
}

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

class ControlInAtlHost : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(Regsvr32(L"/s"), 0u);
        char logPath[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, logPath);
        logPath_ = std::string(logPath) + "arbolet_control_test.log";
        std::remove(logPath_.c_str());
        SetEnvironmentVariableA("ARBOLET_LOG", logPath_.c_str());
        OleInitialize(nullptr);
        atl_ = LoadLibraryW(L"atl.dll");
    }
    void TearDown() override {
        if (frame_ != nullptr) DestroyWindow(frame_);
        PumpMessagesFor(50);
        CoFreeUnusedLibraries();
        if (atl_ != nullptr) FreeLibrary(atl_);
        OleUninitialize();
        SetEnvironmentVariableA("ARBOLET_LOG", nullptr);
        Regsvr32(L"/u /s");
    }

    // Creates the control by its ProgID in a child window of a new frame through Wine's atl;
    // returns the container's object for it, empty when that fails.
    ComPtr<IUnknown> CreateInFrame(ComPtr<IUnknown>& container) {
        auto init = Resolve<AtlAxWinInitFunction>(atl_, "AtlAxWinInit");
        auto create = Resolve<AtlAxCreateControlFunction>(atl_, "AtlAxCreateControl");
        auto getControl = Resolve<AtlAxGetControlFunction>(atl_, "AtlAxGetControl");
        ComPtr<IUnknown> object;
        // AtlAxWinInit answers FALSE when an earlier test registered its window class already.
        if (!init || !create || !getControl) return object;
        init();
        frame_ = CreateWindowExW(0, L"STATIC", L"Arbolet tool window test",
                                 WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 260, 360, nullptr,
                                 nullptr, GetModuleHandleW(nullptr), nullptr);
        HWND host = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 240, 320,
                                    frame_, nullptr, GetModuleHandleW(nullptr), nullptr);
        if (create(L"Quorlin.docAddIn", host, nullptr, container.Put()) != S_OK) return object;
        PumpMessagesFor(200);
        getControl(host, object.Put());
        return object;
    }

    HMODULE atl_ = nullptr;
    HWND frame_ = nullptr;
    std::string logPath_;
};

TEST_F(ControlInAtlHost, IsCreatedByProgIdActivatedInPlaceFollowsItsSiteAndDraws) {
    ASSERT_NE(atl_, nullptr) << "Wine's atl.dll";
    auto init = Resolve<AtlAxWinInitFunction>(atl_, "AtlAxWinInit");
    auto create = Resolve<AtlAxCreateControlFunction>(atl_, "AtlAxCreateControl");
    auto getControl = Resolve<AtlAxGetControlFunction>(atl_, "AtlAxGetControl");
    ASSERT_TRUE(init && create && getControl);
    ASSERT_TRUE(init());

    frame_ =
        CreateWindowExW(0, L"STATIC", L"Arbolet tool window test", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                        40, 40, 260, 360, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(frame_, nullptr);
    const SIZE frameSize = ClientSize(frame_);
    HWND host = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, frameSize.cx,
                                frameSize.cy, frame_, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(host, nullptr);

    ComPtr<IUnknown> container;
    ASSERT_EQ(create(L"Quorlin.docAddIn", host, nullptr, container.Put()), S_OK);
    PumpMessagesFor(200);

    HWND control = FindDescendant(frame_, L"ArboletToolWindowControl");
    ASSERT_NE(control, nullptr) << "the control made its window inside the host";
    HWND document = FindDescendant(control, L"ArboletDocument");
    ASSERT_NE(document, nullptr) << "the document lives in the control's window";
    EXPECT_TRUE(IsWindowVisible(control));
    EXPECT_EQ(ClientSize(control).cx, ClientSize(host).cx);
    EXPECT_EQ(ClientSize(control).cy, ClientSize(host).cy);

    MoveWindow(host, 0, 0, 220, 300, TRUE);
    PumpMessagesFor(100);
    EXPECT_EQ(ClientSize(control).cx, 220) << "the control follows its site's size";
    EXPECT_EQ(ClientSize(control).cy, 300);
    EXPECT_EQ(ClientSize(document).cx, 220) << "and the document follows the control";
    EXPECT_EQ(ClientSize(document).cy, 300);

    // The container's own view of the control: IViewObject draws the document.
    ComPtr<IUnknown> object;
    ASSERT_EQ(getControl(host, object.Put()), S_OK);
    ComPtr<IViewObject2> view = object.As<IViewObject2>(IID_IViewObject2);
    ASSERT_TRUE(view);
    ComPtr<IOleObject> oleObject = object.As<IOleObject>(IID_IOleObject);
    DWORD misc = 0;
    ASSERT_TRUE(oleObject);
    oleObject->GetMiscStatus(DVASPECT_CONTENT, &misc);
    EXPECT_EQ(misc, 131473u);

    PumpMessagesFor(200);
    RECT area{};
    GetWindowRect(frame_, &area);
    const RgbImage picture = CaptureScreen(area);
    ASSERT_GT(picture.width, 0);
    ASSERT_TRUE(testing::SaveArtifact("addin_tool_window.png", picture));
    EXPECT_GT(CountPixels(picture, GetSysColor(COLOR_WINDOWTEXT)), 20)
        << "the document's text is on the screen";

    const std::string log = ReadText(logPath_);
    std::printf("what the host asked for:\n%s", log.c_str());
    EXPECT_NE(log.find("docAddIn QueryInterface IOleObject"), std::string::npos) << log;
    EXPECT_NE(log.find("IOleInPlaceObject"), std::string::npos) << log;

    object.Reset();
    oleObject.Reset();
    view.Reset();
    container.Reset();
    DestroyWindow(frame_);
    frame_ = nullptr;
    PumpMessagesFor(50);
    EXPECT_FALSE(IsWindow(control)) << "the control's window goes with its container";
}

// What a host calls on DocObj to read the tool window back: the members are found by name in
// any letter case, check their arguments, and report a failure with its reason.
TEST_F(ControlInAtlHost, DocObjDumpsTheDocumentAndSaysWhyWhenItCannot) {
    ASSERT_NE(atl_, nullptr) << "Wine's atl.dll";
    ComPtr<IUnknown> container;
    const ComPtr<IUnknown> object = CreateInFrame(container);
    ASSERT_TRUE(object);
    const ComPtr<IDispatch> document = object.As<IDispatch>(IID_IDispatch);
    ASSERT_TRUE(document);

    DISPID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"dumpMENU"), const_cast<LPOLESTR>(L"Key")};
    EXPECT_EQ(document->GetIDsOfNames(IID_NULL, names, 1, 0, &id), S_OK);
    LPOLESTR unknown[] = {const_cast<LPOLESTR>(L"DumpEverything")};
    DISPID none = 0;
    EXPECT_EQ(document->GetIDsOfNames(IID_NULL, unknown, 1, 0, &none), DISP_E_UNKNOWNNAME);
    DISPID pair[2] = {};
    EXPECT_EQ(document->GetIDsOfNames(IID_NULL, names, 2, 0, pair), DISP_E_UNKNOWNNAME)
        << "parameter names are not known";
    DISPPARAMS tooFew{nullptr, nullptr, 0, 0};
    EXPECT_EQ(
        document->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &tooFew, nullptr, nullptr, nullptr),
        DISP_E_BADPARAMCOUNT);

    // Without projects the tree is empty, and no node has any key.
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    const std::string out = std::string(folder) + "arbolet_docobj_tree.json";
    std::remove(out.c_str());
    const com::Dispatch late(document.Get());
    EXPECT_NO_THROW(late.Call({L"DumpTree", DISPID_UNKNOWN, "docAddIn"}, {com::Variant(out)}));
    EXPECT_EQ(ReadText(out).rfind("{\"nodes\":[]", 0), 0u) << ReadText(out);
    try {
        late.Call({L"DumpMenu", DISPID_UNKNOWN, "docAddIn"},
                  {com::Variant("NoSuchNode~"), com::Variant(out + ".menu")});
        ADD_FAILURE() << "a menu for a node that does not exist";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Description, "No node has the key NoSuchNode~");
    }
    std::remove(out.c_str());
}

}  // namespace
}  // namespace arbolet::windows

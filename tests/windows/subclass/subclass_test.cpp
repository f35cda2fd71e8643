// The subclassing service on real windows under the system's (or Wine's) window manager: the
// order in which clients and the window's own procedure run, the bookkeeping in the window's
// properties, and the windows it refuses.
#include "windows/subclass/subclass.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/vb_error.h"
#include "support/test_window.h"
#include "windows/base/module_name.h"

namespace arbolet::windows {
namespace {

using testing::kOwnProcResult;
using testing::TestWindow;
namespace props = subclass_properties;

constexpr UINT kMessage = WM_APP + 1;
constexpr UINT kOtherMessage = WM_APP + 2;

// A client that answers with a fixed response and result and notes what it saw, in a log that
// several clients can share to show their order.
class RecordingClient : public ISubclass {
  public:
    RecordingClient(EMsgResponse response, LRESULT result, std::vector<std::string>* log,
                    std::string name)
        : response_(response), result_(result), log_(log), name_(std::move(name)) {}

    EMsgResponse MsgResponse() override { return response_; }
    void MsgResponse(EMsgResponse response) override { response_ = response; }
    LRESULT WindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) override {
        if (log_ != nullptr) log_->push_back(name_);
        messages.push_back(iMsg);
        seenCurrentMessage = CurrentMessage();
        if (forwardFromInside) return CallOldWindowProc(hWnd, iMsg, wParam, lParam);
        return result_;
    }

    std::vector<UINT> messages;
    UINT seenCurrentMessage = 0;
    bool forwardFromInside = false;

  private:
    EMsgResponse response_;
    LRESULT result_;
    std::vector<std::string>* log_;
    std::string name_;
};

std::intptr_t Property(HWND hWnd, const std::string& name) {
    return reinterpret_cast<std::intptr_t>(GetPropA(hWnd, name.c_str()));
}

WNDPROC CurrentProc(HWND hWnd) {
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(hWnd, GWLP_WNDPROC));
}

template <typename Operation>
VbError Raised(Operation&& operation) {
    try {
        operation();
    } catch (const VbError& error) {
        return error;
    }
    return VbError(0, "", "nothing raised");
}

// The window's own procedure notes its calls in the shared log through this client-less check.
struct TwoClients : ::testing::Test {
    TestWindow window;
    std::vector<std::string> log;
    int OwnCalls() const { return window.OwnCalls(kMessage); }
};

TEST_F(TwoClients, FirstPostProcessLastConsumeNeverCallsTheWindowsProcedure) {
    RecordingClient first(emrPostProcess, 11, &log, "first");
    RecordingClient last(emrConsume, 22, &log, "last");
    AttachMessage(&first, window.get(), kMessage);
    AttachMessage(&last, window.get(), kMessage);

    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), 22);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "last"}));
    EXPECT_EQ(OwnCalls(), 0);

    DetachMessage(&last, window.get(), kMessage);
    DetachMessage(&first, window.get(), kMessage);
    EXPECT_EQ(CurrentProc(window.get()), TestWindow::OwnProc());
}

TEST_F(TwoClients, OnlyTheLastClientDecidesOnPostProcessing) {
    RecordingClient first(emrConsume, 11, &log, "first");
    RecordingClient last(emrPostProcess, 22, &log, "last");
    AttachMessage(&first, window.get(), kMessage);
    AttachMessage(&last, window.get(), kMessage);

    // The window's own answer replaces the clients' when it runs last.
    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), kOwnProcResult);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "last"}));
    EXPECT_EQ(OwnCalls(), 1);

    DetachMessage(&last, window.get(), kMessage);
    DetachMessage(&first, window.get(), kMessage);
}

TEST_F(TwoClients, PreProcessingByTheFirstRunsTheWindowOnceAndKeepsTheClientsResult) {
    RecordingClient first(emrPreprocess, 11, &log, "first");
    RecordingClient last(emrPostProcess, 22, &log, "last");
    AttachMessage(&first, window.get(), kMessage);
    AttachMessage(&last, window.get(), kMessage);

    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), 22);
    EXPECT_EQ(OwnCalls(), 1);

    // A pre-processing answer from the last client counts for nothing.
    first.MsgResponse(emrConsume);
    last.MsgResponse(emrPreprocess);
    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), 22);
    EXPECT_EQ(OwnCalls(), 1);

    DetachMessage(&last, window.get(), kMessage);
    DetachMessage(&first, window.get(), kMessage);
}

TEST_F(TwoClients, AConsumingClientCanStillPassTheMessageOn) {
    RecordingClient only(emrConsume, 11, &log, "only");
    only.forwardFromInside = true;
    AttachMessage(&only, window.get(), kMessage);
    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), kOwnProcResult);
    EXPECT_EQ(OwnCalls(), 1);
    EXPECT_EQ(only.seenCurrentMessage, kMessage);
    DetachMessage(&only, window.get(), kMessage);
}

// A window with a procedure of its own, so that a call reaching it by mistake shows.
int innerOwnCalls = 0;
LRESULT CALLBACK InnerOwnProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    if (iMsg == kMessage) {
        ++innerOwnCalls;
        return 77;
    }
    return DefWindowProcA(hWnd, iMsg, wParam, lParam);
}

// While handling its message, sends one to another subclassed window, then passes its own on.
class NestingClient : public ISubclass {
  public:
    explicit NestingClient(HWND other) : other_(other) {}
    EMsgResponse MsgResponse() override { return emrConsume; }
    void MsgResponse(EMsgResponse) override {}
    LRESULT WindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) override {
        SendMessageA(other_, kMessage, 0, 0);
        seenCurrentMessage = CurrentMessage();
        return CallOldWindowProc(hWnd, iMsg, wParam, lParam);
    }
    UINT seenCurrentMessage = 0;

  private:
    HWND other_;
};

TEST(Subclass, PassingAMessageOnAfterANestedDispatchReachesTheWindowsOwnProcedure) {
    TestWindow outer;
    TestWindow inner;
    innerOwnCalls = 0;
    const auto innerProc = reinterpret_cast<LONG_PTR>(&InnerOwnProc);
    const LONG_PTR innerOriginal = SetWindowLongPtrA(inner.get(), GWLP_WNDPROC, innerProc);
    RecordingClient innerClient(emrPostProcess, 0, nullptr, "inner");
    AttachMessage(&innerClient, inner.get(), kMessage);
    NestingClient outerClient(inner.get());
    AttachMessage(&outerClient, outer.get(), kOtherMessage);

    EXPECT_EQ(SendMessageA(outer.get(), kOtherMessage, 0, 0), kOwnProcResult);
    EXPECT_EQ(innerOwnCalls, 1);  // only its own message, never the outer window's
    EXPECT_EQ(outerClient.seenCurrentMessage, kOtherMessage);

    DetachMessage(&outerClient, outer.get(), kOtherMessage);
    DetachMessage(&innerClient, inner.get(), kMessage);
    SetWindowLongPtrA(inner.get(), GWLP_WNDPROC, innerOriginal);
}

TEST_F(TwoClients, DetachingAClientThatIsNotAttachedRemovesTheLastClient) {
    RecordingClient first(emrConsume, 11, &log, "first");
    RecordingClient last(emrConsume, 22, &log, "last");
    RecordingClient stranger(emrConsume, 33, &log, "stranger");
    AttachMessage(&first, window.get(), kMessage);
    AttachMessage(&last, window.get(), kMessage);
    AttachMessage(&stranger, window.get(), kOtherMessage);

    DetachMessage(&stranger, window.get(), kMessage);
    EXPECT_EQ(Property(window.get(), props::ClientCountName(window.get(), kMessage)), 1);
    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), 11);
    EXPECT_EQ(log, (std::vector<std::string>{"first"}));

    // Detaching the first client moves nothing down and leaves no entry behind.
    DetachMessage(&first, window.get(), kMessage);
    EXPECT_EQ(Property(window.get(), props::ClientName(window.get(), kMessage, 1)), 0);
    DetachMessage(&stranger, window.get(), kOtherMessage);
}

TEST(Subclass, DetachingAMiddleClientMovesTheLaterOnesDown) {
    TestWindow window;
    std::vector<std::string> log;
    RecordingClient a(emrConsume, 1, &log, "a"), b(emrConsume, 2, &log, "b"),
        c(emrConsume, 3, &log, "c");
    for (ISubclass* client :
         {static_cast<ISubclass*>(&a), static_cast<ISubclass*>(&b), static_cast<ISubclass*>(&c)}) {
        AttachMessage(client, window.get(), kMessage);
    }
    DetachMessage(&b, window.get(), kMessage);
    EXPECT_EQ(Property(window.get(), props::ClientName(window.get(), kMessage, 1)),
              reinterpret_cast<std::intptr_t>(static_cast<ISubclass*>(&a)));
    EXPECT_EQ(Property(window.get(), props::ClientName(window.get(), kMessage, 2)),
              reinterpret_cast<std::intptr_t>(static_cast<ISubclass*>(&c)));
    EXPECT_EQ(SendMessageA(window.get(), kMessage, 0, 0), 3);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "c"}));
    DetachMessage(&a, window.get(), kMessage);
    DetachMessage(&c, window.get(), kMessage);
    EXPECT_EQ(CurrentProc(window.get()), TestWindow::OwnProc());
}

TEST(Subclass, OneClientOnTwoMessagesKeepsTheWindowSubclassedUntilBothGo) {
    TestWindow window;
    const HWND hWnd = window.get();
    RecordingClient client(emrConsume, 7, nullptr, "client");
    AttachMessage(&client, hWnd, kMessage);
    AttachMessage(&client, hWnd, kOtherMessage);

    EXPECT_EQ(Property(hWnd, props::WindowCountName(hWnd)), 2);
    EXPECT_EQ(Property(hWnd, props::PreviousProcName(hWnd)),
              reinterpret_cast<std::intptr_t>(TestWindow::OwnProc()));
    EXPECT_EQ(props::ClientName(hWnd, kMessage, 1),
              std::to_string(reinterpret_cast<std::uintptr_t>(hWnd)) + "#32769#1");
    EXPECT_EQ(SendMessageA(hWnd, kMessage, 0, 0), 7);
    EXPECT_EQ(SendMessageA(hWnd, kOtherMessage, 0, 0), 7);
    EXPECT_EQ(client.messages, (std::vector<UINT>{kMessage, kOtherMessage}));
    // Messages nobody asked for go straight to the window.
    EXPECT_EQ(SendMessageA(hWnd, WM_APP + 3, 0, 0), kOwnProcResult);

    DetachMessage(&client, hWnd, kMessage);
    EXPECT_NE(CurrentProc(hWnd), TestWindow::OwnProc());
    EXPECT_EQ(Property(hWnd, props::WindowCountName(hWnd)), 1);
    EXPECT_EQ(SendMessageA(hWnd, kMessage, 0, 0), kOwnProcResult);
    EXPECT_EQ(SendMessageA(hWnd, kOtherMessage, 0, 0), 7);

    DetachMessage(&client, hWnd, kOtherMessage);
    EXPECT_EQ(CurrentProc(hWnd), TestWindow::OwnProc());
    EXPECT_EQ(Property(hWnd, props::WindowCountName(hWnd)), 0);
    EXPECT_EQ(Property(hWnd, props::PreviousProcName(hWnd)), 0);
    EXPECT_EQ(SendMessageA(hWnd, kOtherMessage, 0, 0), kOwnProcResult);
}

TEST(Subclass, TheSameClientTwiceOnOneMessageIsRefusedAfterTheWindowCountRose) {
    TestWindow window;
    const HWND hWnd = window.get();
    RecordingClient client(emrConsume, 7, nullptr, "client");
    AttachMessage(&client, hWnd, kMessage);

    const VbError error = Raised([&] { AttachMessage(&client, hWnd, kMessage); });
    EXPECT_EQ(error.Number, static_cast<std::int32_t>(0x80040000u + 13082));
    EXPECT_EQ(error.Description, "Message already handled by another class");
    EXPECT_EQ(error.Source, RunningModuleName() + ".WindowProc");
    EXPECT_EQ(Property(hWnd, props::WindowCountName(hWnd)), 2);
    EXPECT_EQ(Property(hWnd, props::ClientCountName(hWnd, kMessage)), 1);

    // The extra count keeps the window subclassed after its one real client left.
    DetachMessage(&client, hWnd, kMessage);
    EXPECT_NE(CurrentProc(hWnd), TestWindow::OwnProc());
    DetachMessage(&client, hWnd, kMessage);
    EXPECT_EQ(CurrentProc(hWnd), TestWindow::OwnProc());
}

TEST(Subclass, ADestroyedWindowIsInvalid) {
    TestWindow window;
    const HWND hWnd = window.get();
    window.Destroy();
    RecordingClient client(emrConsume, 7, nullptr, "client");
    const VbError error = Raised([&] { AttachMessage(&client, hWnd, kMessage); });
    EXPECT_EQ(error.Number, static_cast<std::int32_t>(0x80040000u + 13083));
    EXPECT_EQ(error.Description, "Invalid window");
    EXPECT_EQ(error.Source, RunningModuleName() + ".WindowProc");
    // Detaching from it is harmless.
    DetachMessage(&client, hWnd, kMessage);
}

TEST(Subclass, AWindowDestroyedWhileSubclassedStopsDispatching) {
    TestWindow window;
    RecordingClient client(emrPostProcess, 7, nullptr, "client");
    AttachMessage(&client, window.get(), WM_DESTROY);
    window.Destroy();
    EXPECT_EQ(client.messages, (std::vector<UINT>{WM_DESTROY}));
    EXPECT_EQ(window.OwnCalls(WM_DESTROY), 1);
}

// The window of a second process: this test program started again with the argument below
// keeps a window open until the first one says it is done.
constexpr const char* kForeignWindowArgument = "--foreign-window";

std::string ForeignTitle(DWORD processId) {
    return "Arbolet foreign window " + std::to_string(processId);
}

int RunForeignWindow(const char* doneEventName) {
    const HANDLE done = OpenEventA(SYNCHRONIZE, FALSE, doneEventName);
    if (done == nullptr) return 2;
    TestWindow window(ForeignTitle(GetCurrentProcessId()).c_str(), false);
    while (MsgWaitForMultipleObjects(1, &done, FALSE, 30000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
        testing::PumpMessages();
    }
    CloseHandle(done);
    return 0;
}

TEST(Subclass, AWindowOfAnotherProcessCannotBeModified) {
    char path[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameA(nullptr, path, MAX_PATH), 0u);
    const std::string eventName = "ArboletForeignDone" + std::to_string(GetCurrentProcessId());
    const HANDLE done = CreateEventA(nullptr, TRUE, FALSE, eventName.c_str());
    ASSERT_NE(done, nullptr);
    std::string commandLine =
        std::string("\"") + path + "\" " + kForeignWindowArgument + " " + eventName;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessA(path, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &process));

    HWND foreign = nullptr;
    for (int attempt = 0; attempt < 300 && foreign == nullptr; ++attempt) {
        foreign = FindWindowA(nullptr, ForeignTitle(process.dwProcessId).c_str());
        if (foreign == nullptr) Sleep(20);
    }
    ASSERT_NE(foreign, nullptr);

    RecordingClient client(emrConsume, 7, nullptr, "client");
    const VbError error = Raised([&] { AttachMessage(&client, foreign, kMessage); });
    EXPECT_EQ(error.Number, static_cast<std::int32_t>(0x80040000u + 13084));
    EXPECT_EQ(error.Description, "Can't modify external window");
    EXPECT_EQ(GetPropA(foreign, props::WindowCountName(foreign).c_str()), nullptr);

    SetEvent(done);
    WaitForSingleObject(process.hProcess, 30000);
    DWORD exitCode = 1;
    GetExitCodeProcess(process.hProcess, &exitCode);
    EXPECT_EQ(exitCode, 0u);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(done);
}

// A client of the keyboard hook that notes the keys it sees.
class KeyClient : public ISubclass {
  public:
    EMsgResponse MsgResponse() override { return emrPostProcess; }
    void MsgResponse(EMsgResponse) override {}
    LRESULT WindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM) override {
        if (hWnd == nullptr && iMsg == WM_KEYDOWN) keysDown.push_back(wParam);
        return swallow ? 1 : 0;
    }
    std::vector<WPARAM> keysDown;
    bool swallow = false;
};

TEST(KeyboardHook, SharedClientsSeeKeysUntilTheyDetach) {
    TestWindow window("Arbolet keyboard", true);
    ASSERT_TRUE(testing::Activate(window.get()));
    KeyClient first, second;
    AttachKeyboard(&first);
    AttachKeyboard(&second);
    AttachKeyboard(&first);  // once is enough
    second.swallow = true;

    testing::PressKey('A');
    testing::PumpMessagesFor(200);
    EXPECT_EQ(first.keysDown, (std::vector<WPARAM>{'A'}));
    EXPECT_EQ(second.keysDown, (std::vector<WPARAM>{'A'}));
    EXPECT_EQ(window.OwnCalls(WM_KEYDOWN), 0);  // swallowed by the second client

    DetachKeyboard(&second);
    testing::PressKey('B');
    testing::PumpMessagesFor(200);
    EXPECT_EQ(first.keysDown, (std::vector<WPARAM>{'A', 'B'}));
    EXPECT_EQ(second.keysDown, (std::vector<WPARAM>{'A'}));
    EXPECT_EQ(window.OwnCalls(WM_KEYDOWN), 1);

    DetachKeyboard(&first);
    testing::PressKey('C');
    testing::PumpMessagesFor(200);
    EXPECT_EQ(first.keysDown, (std::vector<WPARAM>{'A', 'B'}));
    EXPECT_EQ(window.OwnCalls(WM_KEYDOWN), 2);
}

}  // namespace
}  // namespace arbolet::windows

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == arbolet::windows::kForeignWindowArgument) {
        return arbolet::windows::RunForeignWindow(argv[2]);
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

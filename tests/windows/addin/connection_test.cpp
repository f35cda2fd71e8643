// dVisualBasic against a scripted IDE: what it asks of the IDE on each kind of connection, the
// menu entry and toolbar button it adds (once), the clicks that show the tool window, the
// DisplayForm option it records, its messages, and what disconnecting removes.
#include "windows/addin/connection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "addin/fake_vbe.h"
#include "windows/addin/messages.h"
#include "windows/addin/tool_window_control.h"
#include "windows/com/class_factory.h"
#include "windows/com/event_sink.h"
#include "windows/com/vbide_ids.h"
#include "windows/options/settings.h"

namespace arbolet::windows::addin {
namespace {

using com::ComPtr;
using com::Variant;
using testing::FakeObject;
using testing::FakeVbe;
namespace ids = com::ids;

std::vector<std::string> g_messages;
void TakeMessage(std::string_view text) {
    g_messages.emplace_back(text);
}

class ConnectionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        g_messages.clear();
        previousHandler_ = SetMessageHandler(TakeMessage);
        ASSERT_EQ(
            com::CreateAndQuery<dVisualBasic>(ids::IID_IDTExtensibility2, connection_.PutVoid()),
            S_OK);
    }
    void TearDown() override { SetMessageHandler(previousHandler_); }

    HRESULT Connect(LONG mode) {
        return connection_->OnConnection(vbe_.Vbe(), mode, vbe_.AddInInst(), nullptr);
    }
    dVisualBasic& Object() { return *static_cast<dVisualBasic*>(connection_.Get()); }
    bool WindowVisible() const {
        return vbe_.ToolWindow() &&
               vbe_.ToolWindow()->PropertyValue(com::members::Window::Visible).ToBool() == true;
    }
    const ComPtr<FakeObject>& Entry() const { return vbe_.Controls("Add-Ins").at(0); }
    const ComPtr<FakeObject>& Button() const { return vbe_.Controls("Standard").at(0); }

    FakeVbe vbe_;
    ComPtr<com::IDTExtensibility2> connection_;
    MessageHandler previousHandler_ = nullptr;
};

TEST_F(ConnectionTest, AfterStartupCreatesTheWindowTheEntryAndTheButtonThenShows) {
    options::DisplayForm(false);
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK);

    EXPECT_EQ(vbe_.CallsStartingWith("call Windows.CreateToolWindow"), (std::vector<std::string>{}))
        << "CreateToolWindow returns a Window: it is read as a get";
    EXPECT_EQ(vbe_.CallsStartingWith("get Windows.CreateToolWindow"),
              (std::vector<std::string>{"get Windows.CreateToolWindow <AddIn> "
                                        "\"Quorlin.docAddIn\" \"Arbolet\" "
                                        "\"{AC3075C1-B54F-11d3-943A-00A0CC5F7B23}\" Nothing"}));
    ASSERT_EQ(vbe_.Controls("Add-Ins").size(), 1u);
    EXPECT_EQ(Entry()->PropertyValue(com::members::CommandBarControl::Caption).ToUtf8(), "Arbolet");
    ASSERT_EQ(vbe_.Controls("Standard").size(), 1u);
    EXPECT_EQ(vbe_.CallsStartingWith("put CommandBarButton."),
              (std::vector<std::string>{
                  "put CommandBarButton.Caption \"Arbolet\"",  // the menu entry
                  "put CommandBarButton.Caption \"Arbolet\"",
                  "put CommandBarButton.Visible True",
                  "put CommandBarButton.Style 0",
                  "put CommandBarButton.FaceId 2557",
                  "put CommandBarButton.OnAction \"oButton_Click\"",
                  "put CommandBarButton.Tag \"Arbolet\"",
                  "put CommandBarButton.TooltipText \"Arbolet\"",
              }));
    EXPECT_EQ(vbe_.ClickSource(Entry())->SinkCount(ids::DIID_CommandBarControlEvents), 1u);
    EXPECT_EQ(vbe_.ClickSource(Button())->SinkCount(ids::DIID_CommandBarControlEvents), 1u);
    EXPECT_TRUE(WindowVisible());
    EXPECT_TRUE(options::DisplayForm()) << "showing records DisplayForm";
    EXPECT_TRUE(g_messages.empty());
}

TEST_F(ConnectionTest, ClicksOnTheEntryAndTheButtonShowTheHiddenWindow) {
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK);
    Object().Hide();
    EXPECT_FALSE(WindowVisible());
    EXPECT_FALSE(options::DisplayForm());
    vbe_.Click(Entry());
    EXPECT_TRUE(WindowVisible());
    EXPECT_TRUE(options::DisplayForm());
    Object().Hide();
    vbe_.Click(Button());
    EXPECT_TRUE(Object().FormDisplayed());
    EXPECT_TRUE(WindowVisible());
}

TEST_F(ConnectionTest, AtStartupTheButtonWaitsForStartupCompleteAndDisplayFormDecides) {
    options::DisplayForm(false);
    ASSERT_EQ(Connect(ids::kConnectStartup), S_OK);
    EXPECT_TRUE(vbe_.Controls("Standard").empty());
    EXPECT_EQ(vbe_.Controls("Add-Ins").size(), 1u);
    EXPECT_FALSE(WindowVisible()) << "the window was closed when the IDE last ran";

    options::DisplayForm(true);
    ASSERT_EQ(connection_->OnStartupComplete(nullptr), S_OK);
    EXPECT_EQ(vbe_.Controls("Standard").size(), 1u);
    EXPECT_TRUE(WindowVisible());
}

TEST_F(ConnectionTest, ConnectingTwiceAddsNoSecondEntryButtonOrWindow) {
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK);
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK);
    ASSERT_EQ(connection_->OnStartupComplete(nullptr), S_OK);
    EXPECT_EQ(vbe_.Controls("Add-Ins").size(), 1u);
    EXPECT_EQ(vbe_.Controls("Standard").size(), 1u);
    EXPECT_EQ(vbe_.ToolWindowsCreated(), 1);
    EXPECT_EQ(vbe_.ClickSource(Button())->SinkCount(ids::DIID_CommandBarControlEvents), 1u)
        << "one handler per control, not one per connection";

    // A second connection object finds the first one's controls by caption.
    ComPtr<com::IDTExtensibility2> second;
    ASSERT_EQ(com::CreateAndQuery<dVisualBasic>(ids::IID_IDTExtensibility2, second.PutVoid()),
              S_OK);
    ASSERT_EQ(
        second->OnConnection(vbe_.Vbe(), ids::kConnectAfterStartup, vbe_.AddInInst(), nullptr),
        S_OK);
    EXPECT_EQ(vbe_.Controls("Add-Ins").size(), 1u);
    EXPECT_EQ(vbe_.Controls("Standard").size(), 1u);
    second->OnDisconnection(ids::kDisconnectUserClosed, nullptr);
}

TEST_F(ConnectionTest, DisconnectingRemovesTheEntryAndTheButtonAndEveryHandler) {
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK);
    const ComPtr<FakeObject> entry = Entry();
    const ComPtr<FakeObject> button = Button();
    ASSERT_EQ(connection_->OnDisconnection(ids::kDisconnectUserClosed, nullptr), S_OK);
    EXPECT_TRUE(vbe_.Controls("Add-Ins").empty());
    EXPECT_TRUE(vbe_.Controls("Standard").empty());
    EXPECT_EQ(vbe_.ClickSource(entry)->SinkCount(ids::DIID_CommandBarControlEvents), 0u);
    EXPECT_EQ(vbe_.ClickSource(button)->SinkCount(ids::DIID_CommandBarControlEvents), 0u);
}

TEST_F(ConnectionTest, DisconnectingWithoutAButtonDeletesOnlyTheEntry) {
    ASSERT_EQ(Connect(ids::kConnectStartup), S_OK);
    vbe_.Calls()->clear();
    ASSERT_EQ(connection_->OnDisconnection(ids::kDisconnectHostShutdown, nullptr), S_OK);
    EXPECT_EQ(vbe_.CallsStartingWith("call "),
              (std::vector<std::string>{"call CommandBarButton.Delete"}));
    EXPECT_TRUE(vbe_.Controls("Add-Ins").empty());
}

TEST_F(ConnectionTest, ShowingWithoutAnIdeSaysSoAndAFailedButtonShowsTheErrorNumber) {
    Object().Show();
    EXPECT_EQ(g_messages, (std::vector<std::string>{"no active VB Instance resolved"}));

    g_messages.clear();
    vbe_.RemoveBar("Standard");
    ASSERT_EQ(Connect(ids::kConnectAfterStartup), S_OK) << "a missing toolbar is not fatal";
    ASSERT_EQ(g_messages.size(), 1u);
    EXPECT_NE(g_messages[0].find("5: "), std::string::npos) << g_messages[0];
    EXPECT_TRUE(WindowVisible());
}

TEST_F(ConnectionTest, LateBoundCallersReachTheConnectionEventsAndShowAndHide) {
    // External connection through IDispatch::Invoke, arguments last to first.
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR name = const_cast<LPOLESTR>(L"OnConnection");
    ASSERT_EQ(connection_->GetIDsOfNames(IID_NULL, &name, 1, 0, &id), S_OK);
    EXPECT_EQ(id, ids::IDTExtensibility2::OnConnection);
    Variant args[] = {Variant(), Variant(static_cast<IDispatch*>(vbe_.AddInInst())),
                      Variant(std::int32_t{ids::kConnectExternal}), Variant(vbe_.Vbe())};
    VARIANTARG raw[] = {*args[0].Get(), *args[1].Get(), *args[2].Get(), *args[3].Get()};
    DISPPARAMS params{raw, nullptr, 4, 0};
    EXPECT_EQ(
        connection_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
        S_OK);
    EXPECT_EQ(vbe_.ToolWindowsCreated(), 0) << "an external connection makes no window";
    EXPECT_TRUE(vbe_.Controls("Add-Ins").empty());
    EXPECT_TRUE(Object().FormDisplayed());

    com::Dispatch late(connection_.Get());
    constexpr com::DispMember kHide{L"Hide", 0, "dVisualBasic"};
    constexpr com::DispMember kFormDisplayed{L"FormDisplayed", 0, "dVisualBasic"};
    late.Call(kHide);
    EXPECT_FALSE(late.GetBool(kFormDisplayed));

    DISPPARAMS tooFew{raw, nullptr, 3, 0};
    EXPECT_EQ(
        connection_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &tooFew, nullptr, nullptr, nullptr),
        DISP_E_BADPARAMCOUNT);
}

// The connection object, the tool-window control and the event sinks are only ever bound late:
// asked for type information they all give the same answer, none, and never a stale pointer.
TEST(ConnectionObject, TheLateBoundObjectsAllAnswerThatTheyHaveNoTypeInformation) {
    std::vector<ComPtr<IDispatch>> objects(2);
    ASSERT_EQ(com::CreateAndQuery<dVisualBasic>(IID_IDispatch, objects[0].PutVoid()), S_OK);
    ASSERT_EQ(com::CreateAndQuery<ToolWindowControl>(IID_IDispatch, objects[1].PutVoid()), S_OK);
    const ComPtr<com::EventSink> sink = com::EventSink::Create(IID_IDispatch, nullptr);
    objects.emplace_back(static_cast<IDispatch*>(sink.Get()));
    for (std::size_t i = 0; i < objects.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(objects[i]);
        UINT count = 7;
        EXPECT_EQ(objects[i]->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(objects[i]->GetTypeInfoCount(nullptr), E_POINTER);
        auto* info = reinterpret_cast<ITypeInfo*>(0x1234);
        EXPECT_EQ(objects[i]->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), DISP_E_BADINDEX);
        EXPECT_EQ(info, nullptr);
        EXPECT_EQ(objects[i]->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
    }
}

TEST(ConnectionObject, LeavesNoObjectBehindAfterAFullCycle) {
    const LONG before = com::module::ActiveCount();
    {
        FakeVbe vbe;
        MessageHandler previous = SetMessageHandler(TakeMessage);
        ComPtr<com::IDTExtensibility2> connection;
        ASSERT_EQ(
            com::CreateAndQuery<dVisualBasic>(ids::IID_IDTExtensibility2, connection.PutVoid()),
            S_OK);
        ASSERT_EQ(connection->OnConnection(vbe.Vbe(), ids::kConnectAfterStartup, vbe.AddInInst(),
                                           nullptr),
                  S_OK);
        vbe.Click(vbe.Controls("Standard").at(0));
        connection->OnDisconnection(ids::kDisconnectUserClosed, nullptr);
        SetMessageHandler(previous);
    }
    EXPECT_EQ(com::module::ActiveCount(), before);
}

}  // namespace
}  // namespace arbolet::windows::addin

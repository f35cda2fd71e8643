// CreateToolWindow as a real OLE container: the control is created by ProgID, sited and
// in-place activated in the docked frame, follows the frame's size, and is released on close.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "vb6host/host_fixture.h"
#include "vb6host/test_control.h"
#include "vb6host/tool_window.h"

namespace arbolet::vb6host::testing {
namespace {

constexpr const char* kPosition = "{AC3075C1-B54F-11d3-943A-00A0CC5F7B23}";

class ToolWindowTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        registration_ = std::make_unique<TestControlRegistration>();
    }
    void TearDown() override {
        registration_.reset();
        HostTest::TearDown();
    }

    // CreateToolWindow with DocObj passed by reference, as VB passes it.
    Dispatch Create(const char* progId, ComPtr<IDispatch>& docObj) {
        IDispatch* document = nullptr;
        VARIANT byRef;
        VariantInit(&byRef);
        byRef.vt = VT_DISPATCH | VT_BYREF;
        byRef.ppdispVal = &document;
        const Dispatch addIn = vbe_.GetObject(m::VBE::Addins).GetObject(m::VBProjects::Item, {1});
        const Variant args[] = {Variant(addIn.Object()), Variant(progId), Variant("Arbolet"),
                                Variant(kPosition), Variant::Copy(byRef)};
        Variant result;
        const HRESULT hr =
            vbe_.GetObject(m::VBE::Windows)
                .Invoke(m::Windows::CreateToolWindow, DISPATCH_METHOD, args, result.Put(), nullptr);
        docObj = ComPtr<IDispatch>::Attach(document);
        if (FAILED(hr)) return Dispatch();
        return Dispatch(result.ToDispatch());
    }

    std::unique_ptr<TestControlRegistration> registration_;
};

TEST_F(ToolWindowTest, TheControlIsSitedAndActivatedInTheDockedFrame) {
    ASSERT_TRUE(registration_->Ok());
    ControlCalls().clear();
    ComPtr<IDispatch> docObj;
    const Dispatch window = Create("Arbolet.HostTestControl", docObj);
    ASSERT_TRUE(window);
    ASSERT_TRUE(docObj);
    EXPECT_TRUE(docObj.As<IOleObject>(IID_IOleObject)) << "DocObj is the control itself";
    const std::vector<std::string> activation = {"GetMiscStatus", "SetClientSite", "InitNew",
                                                 "SetHostNames",  "SetExtent",     "DoVerb",
                                                 "SetObjectRects"};
    EXPECT_EQ(ControlCalls(), activation);
    EXPECT_EQ(window.GetText(m::Window::Caption), "Arbolet");
    EXPECT_FALSE(window.GetBool(m::Window::Visible)) << "tool windows start hidden";

    // Shown, the frame docks in the main window and the control fills its client area.
    window.Put(m::Window::Visible, true);
    const auto& tool = context_->ToolWindows().at(0);
    HWND control = LastControlWindow();
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(GetParent(control), tool->Client());
    EXPECT_EQ(GetParent(tool->Handle()), main_->Handle());
    EXPECT_TRUE(IsWindowVisible(tool->Handle()) || !IsWindowVisible(main_->Handle()));
    RECT client, placed;
    GetClientRect(tool->Client(), &client);
    GetClientRect(control, &placed);
    EXPECT_EQ(placed.right, client.right);
    EXPECT_EQ(placed.bottom, client.bottom);
    EXPECT_GT(client.bottom, 100);
    EXPECT_EQ(window.GetInt(m::Window::HWnd),
              static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(tool->Handle())));

    // One window per position: a second one is refused, the first stays.
    ComPtr<IDispatch> second;
    EXPECT_FALSE(Create("Arbolet.HostTestControl", second));
    EXPECT_EQ(context_->ToolWindows().size(), 1u);

    // The IDE closes its tool windows when the add-in goes: the control is deactivated,
    // closed, unsited, and freed once the add-in lets go of DocObj.
    ControlCalls().clear();
    context_->CloseToolWindows();
    EXPECT_EQ(ControlCalls(),
              (std::vector<std::string>{"InPlaceDeactivate", "Close", "SetClientSite(Nothing)"}));
    EXPECT_EQ(LastControlWindow(), nullptr);
    EXPECT_EQ(LiveControls(), 1);
    docObj.Reset();
    EXPECT_EQ(LiveControls(), 0);
}

TEST_F(ToolWindowTest, AControlThatCannotBeCreatedLeavesNoWindow) {
    ComPtr<IDispatch> docObj;
    EXPECT_FALSE(Create("Arbolet.NoSuchControl", docObj));
    EXPECT_FALSE(docObj);
    EXPECT_TRUE(context_->ToolWindows().empty());
}

}  // namespace
}  // namespace arbolet::vb6host::testing

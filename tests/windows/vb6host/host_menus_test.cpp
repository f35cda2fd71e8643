// The emulated IDE's command bars as an add-in and a user meet them: the add-in's own menu entry
// and button with their click events, and the IDE's built-in commands acting on the projects.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "vb6host/host_fixture.h"
#include "windows/com/connection_point.h"

namespace arbolet::vb6host::testing {
namespace {

using windows::com::Advised;
using windows::com::SameObject;
using windows::testing::FakeObject;
namespace ids = windows::com::ids;

// A click sink: records the control it was given and answers `cancel` in CancelDefault.
struct ClickRecorder {
    explicit ClickRecorder(bool cancel = false) {
        sink = FakeObject::Create("CommandBarEvents",
                                  std::make_shared<windows::testing::Transcript>());
        sink->Method({L"Click", 1, "CommandBarEvents"},
                     [this, cancel](WORD, const std::vector<Variant>& args, Variant&) {
                         clicks.push_back(args.at(0).ToDispatch());
                         const VARIANT& cancelDefault = *args.at(2).Get();
                         if (cancel && cancelDefault.vt == (VT_BOOL | VT_BYREF)) {
                             *cancelDefault.pboolVal = VARIANT_TRUE;
                         }
                         return S_OK;
                     });
    }
    HRESULT Advise(const Dispatch& vbe, IDispatch* control) {
        const Dispatch source =
            vbe.GetObject(m::VBE::Events).GetObject(m::Events::CommandBarEvents, {control});
        return advised.Advise(source.Object(), ids::DIID_CommandBarControlEvents,
                              static_cast<IDispatch*>(sink.Get()));
    }
    ComPtr<FakeObject> sink;
    std::vector<ComPtr<IDispatch>> clicks;
    Advised advised;
};

TEST_F(HostTest, TheAddInsEntryAndTheToolbarButtonRaiseClickOnTheirSinks) {
    const Dispatch bars = vbe_.GetObject(m::VBE::CommandBars);
    const Dispatch entry = bars.GetObject(m::CommandBars::Item, {"Add-Ins"})
                               .GetObject(m::CommandBar::Controls)
                               .GetObject(m::CommandBarControls::Add, {1});
    entry.Put(m::CommandBarControl::Caption, "Arbolet");
    const Dispatch button = bars.GetObject(m::CommandBars::Item, {"Standard"})
                                .GetObject(m::CommandBar::Controls)
                                .GetObject(m::CommandBarControls::Add, {1});
    button.Put(m::CommandBarControl::Caption, "Arbolet");
    button.Put(m::CommandBarButton::FaceId, 2557);
    ClickRecorder onEntry, onButton;
    ASSERT_HRESULT_SUCCEEDED(onEntry.Advise(vbe_, entry.Object()));
    ASSERT_HRESULT_SUCCEEDED(onButton.Advise(vbe_, button.Object()));

    // As a user: the entry in the menu bar's Add-Ins menu, the button on the toolbar.
    const BarControlRef entryModel = BuiltIn(L"Add-Ins", L"Arbolet");
    ASSERT_NE(entryModel, nullptr);
    EXPECT_TRUE(main_->ChooseMenuItem(entryModel));
    ASSERT_EQ(onEntry.clicks.size(), 1u);
    EXPECT_TRUE(SameObject(onEntry.clicks[0].Get(), entry.Object()));
    EXPECT_TRUE(onButton.clicks.empty());
    EXPECT_TRUE(main_->PressToolbarButton(BuiltIn(L"Standard", L"Arbolet")));
    ASSERT_EQ(onButton.clicks.size(), 1u);
    EXPECT_TRUE(SameObject(onButton.clicks[0].Get(), button.Object()));

    // Found again by caption, then deleted: the menu no longer offers it.
    const Dispatch found = bars.GetObject(m::CommandBars::Item, {"Add-Ins"})
                               .GetObject(m::CommandBar::Controls)
                               .GetObject(m::CommandBarControls::Item, {"Arbolet"});
    EXPECT_TRUE(SameObject(found.Object(), entry.Object()));
    entry.Call(m::CommandBarControl::Delete);
    EXPECT_FALSE(main_->ChooseMenuItem(entryModel));
    EXPECT_EQ(onEntry.clicks.size(), 1u);
    EXPECT_THROW(entry.GetText(m::CommandBarControl::Caption), VbError);
}

TEST_F(HostTest, AClickHandlerCanCancelTheIdesOwnCommand) {
    const Dispatch control = vbe_.GetObject(m::VBE::CommandBars)
                                 .GetObject(m::CommandBars::Item, {"Menu Bar"})
                                 .GetObject(m::CommandBar::Controls)
                                 .GetObject(m::CommandBarControls::Item, {"Project"})
                                 .GetObject(m::CommandBarPopup::Controls)
                                 .GetObject(m::CommandBarControls::Item, {"Add Class Module"});
    const Dispatch components = Project().GetObject(m::VBProject::VBComponents);
    {
        ClickRecorder cancelling(true);
        ASSERT_HRESULT_SUCCEEDED(cancelling.Advise(vbe_, control.Object()));
        control.Call(m::CommandBarControl::Execute);
        EXPECT_EQ(cancelling.clicks.size(), 1u);
        EXPECT_EQ(components.GetInt(m::VBComponents::Count), 6);
    }
    control.Call(m::CommandBarControl::accDoDefaultAction);
    ASSERT_EQ(components.GetInt(m::VBComponents::Count), 7);
    const Dispatch added = components.GetObject(m::VBComponents::Item, {7});
    EXPECT_EQ(added.GetText(m::VBComponent::Name), "Class1");
    EXPECT_EQ(added.GetInt(m::VBComponent::Type), 2);
    EXPECT_TRUE(std::filesystem::exists(folder_.Path() / "Class1.cls"));
    EXPECT_TRUE(context_->Errors().empty());
}

TEST_F(HostTest, BuiltInCommandsFollowTheSelectionAndTheProjectType) {
    const auto object = BuiltIn(L"View", L"Object");
    const auto code = BuiltIn(L"View", L"Code");
    ASSERT_TRUE(object && code);
    EXPECT_FALSE(object->Enabled()) << "nothing is selected";
    Component("modStock").Call(m::VBComponent::Activate);
    EXPECT_FALSE(object->Enabled()) << "a module has no designer";
    EXPECT_TRUE(code->Enabled());
    Component("frmMain").Call(m::VBComponent::Activate);
    EXPECT_TRUE(object->Enabled());
    EXPECT_EQ(context_->DesignerOpened(context_->SelectedComponent().get()), 1);

    // A standard EXE takes no user documents, and one MDI form at most.
    EXPECT_FALSE(BuiltIn(L"Project", L"Add User Document")->Enabled());
    const auto mdi = BuiltIn(L"Project", L"Add MDI Form");
    EXPECT_TRUE(main_->ChooseMenuItem(mdi));
    EXPECT_EQ(Component("MDIForm1").GetInt(m::VBComponent::Type), 6);
    EXPECT_FALSE(mdi->Enabled());
    EXPECT_FALSE(main_->ChooseMenuItem(mdi));

    // View Code shows the selected component's code window, whose selection the add-in sets.
    Component("modStock").Call(m::VBComponent::Activate);
    EXPECT_TRUE(main_->ChooseMenuItem(code));
    const Dispatch pane = vbe_.GetObject(m::VBE::ActiveCodePane);
    ASSERT_TRUE(pane);
    // A selection above the window scrolls it into view; one within it does not.
    pane.Put(m::CodePane::TopLine, 30);
    pane.Call(m::CodePane::SetSelection, {12, 1, 12, 5});
    EXPECT_EQ(pane.GetInt(m::CodePane::TopLine), 12);
    pane.Call(m::CodePane::SetSelection, {14, 1, 14, 5});
    EXPECT_EQ(pane.GetInt(m::CodePane::TopLine), 12);
    EXPECT_THROW(pane.Call(m::CodePane::SetSelection, {100000, 1, 100000, 1}), VbError);
}

TEST_F(HostTest, RemovingTheSelectedComponentAndTheActiveProject) {
    Component("modLegacy").Call(m::VBComponent::Activate);
    EXPECT_TRUE(main_->ChooseMenuItem(BuiltIn(L"Project", L"Remove")));
    EXPECT_EQ(Project().GetObject(m::VBProject::VBComponents).GetInt(m::VBComponents::Count), 5);
    EXPECT_TRUE(main_->ChooseMenuItem(BuiltIn(L"File", L"Remove Project")));
    EXPECT_EQ(vbe_.GetObject(m::VBE::VBProjects).GetInt(m::VBProjects::Count), 0);
    EXPECT_FALSE(vbe_.GetObject(m::VBE::ActiveVBProject));
    EXPECT_FALSE(BuiltIn(L"Project", L"Add Form")->Enabled());
}

}  // namespace
}  // namespace arbolet::vb6host::testing

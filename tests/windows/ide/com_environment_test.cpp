// The environment interfaces over a scripted IDE: reading projects, components and code, the
// IDE's errors as the explorer's VbErrors, event sources advised only while held, command bars,
// and going to a code line.
#include "windows/ide/com_environment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "com/fake_object.h"
#include "windows/com/error_info.h"

namespace arbolet::windows::ide {
namespace {

using com::ComPtr;
using com::Variant;
using testing::Answer;
using testing::FakeObject;
using testing::Transcript;
namespace m = com::members;
namespace ids = com::ids;

IDispatch* AsDispatch(const ComPtr<FakeObject>& object) {
    return static_cast<IDispatch*>(object.Get());
}

// One project "Inventory" with one form "frmMain" of two code lines, and the IDE around it.
class ScriptedIde {
  public:
    ScriptedIde() {
        vbe = Make("VBE");
        projects = Make("VBProjects");
        project = Make("VBProject");
        components = Make("VBComponents");
        form = Make("VBComponent");
        module = Make("CodeModule");
        pane = Make("CodePane");
        events = Make("Events");
        projectEvents = Make("VBProjectsEvents");
        projectEvents->AddEvents(ids::DIID_VBProjectsEvents);
        componentEvents = Make("VBComponentsEvents");
        componentEvents->AddEvents(ids::DIID_VBComponentsEvents);

        vbe->Property(m::VBE::VBProjects, Variant(AsDispatch(projects)));
        vbe->Property(m::VBE::Events, Variant(AsDispatch(events)));
        vbe->Property(m::VBE::ActiveVBProject, Variant(AsDispatch(project)));
        projects->Property(m::VBProjects::Count, Variant(std::int32_t{1}));
        projects->Method(m::VBProjects::Item, ByIndexOrName(project, "Inventory"));
        project->Property(m::VBProject::Name, Variant("Inventory"));
        project->Property(m::VBProject::VBComponents, Variant(AsDispatch(components)));
        project->Method(m::VBProject::ReadProperty, Fail(5));
        components->Property(m::VBComponents::Count, Variant(std::int32_t{1}));
        components->Method(m::VBComponents::Item, ByIndexOrName(form, "frmMain"));
        components->Property(m::VBComponents::Parent, Variant(AsDispatch(project)));
        form->Property(m::VBComponent::Name, Variant("frmMain"));
        form->Property(m::VBComponent::Type, Variant(std::int32_t{5}));
        form->Property(m::VBComponent::CodeModule, Variant(AsDispatch(module)));
        form->Property(m::VBComponent::Collection, Variant(AsDispatch(components)));
        module->Property(m::CodeModule::CountOfLines, Variant(std::int32_t{2}));
        module->Method(m::CodeModule::Lines, Answer(Variant("Option Explicit\r\nDim x")));
        module->Property(m::CodeModule::CodePane, Variant(AsDispatch(pane)));
        pane->Method(m::CodePane::Show, Answer(Variant()));
        pane->Property(m::CodePane::TopLine, Variant(std::int32_t{1}));
        pane->Method(m::CodePane::SetSelection, Answer(Variant()));
        events->Property(m::Events::VBProjectsEvents, Variant(AsDispatch(projectEvents)));
        events->Method(m::Events::VBComponentsEvents, Answer(Variant(AsDispatch(componentEvents))));
    }

    ComPtr<FakeObject> Make(const char* type) { return FakeObject::Create(type, transcript); }

    static FakeObject::Handler Fail(std::int32_t number) {
        return [number](WORD, const std::vector<Variant>&, Variant&) {
            return com::HResultFromVbNumber(number);
        };
    }
    static FakeObject::Handler ByIndexOrName(ComPtr<FakeObject> item, std::string name) {
        return [item, name](WORD, const std::vector<Variant>& args, Variant& result) {
            const Variant& index = args.at(0);
            const bool found = index.Type() == VT_BSTR
                                   ? _stricmp(index.ToUtf8()->c_str(), name.c_str()) == 0
                                   : index.ToInt32() == 1;
            if (!found) return com::HResultFromVbNumber(9);
            result = Variant(AsDispatch(item));
            return S_OK;
        };
    }

    std::shared_ptr<Transcript> transcript = std::make_shared<Transcript>();
    ComPtr<FakeObject> vbe, projects, project, components, form, module, pane, events,
        projectEvents, componentEvents;
};

TEST(ComEnvironment, ReadsProjectsComponentsAndCodeThroughTheIde) {
    ScriptedIde ide;
    auto vbe = WrapVbe(com::Dispatch(AsDispatch(ide.vbe)));
    auto projects = vbe->VBProjects();
    ASSERT_EQ(projects->Count(), 1);
    auto project = projects->Item(1);
    EXPECT_EQ(project->Name(), "Inventory");
    auto form = project->VBComponents()->Item("FRMMAIN");
    EXPECT_EQ(form->Name(), "frmMain");
    EXPECT_EQ(form->Type(), env::ComponentType::VBForm);
    EXPECT_EQ(form->CodeModule()->Lines(1, 2), "Option Explicit\r\nDim x");
    EXPECT_EQ(env::ProjectOf(*form)->Name(), "Inventory");
    EXPECT_EQ(vbe->ActiveVBProject()->Name(), "Inventory");

    ide.components->Method(m::VBComponents::Remove, Answer(Variant()));
    ide.transcript->clear();
    vbe->SetActiveVBProject(project);
    project->VBComponents()->Remove(form);
    EXPECT_EQ(*ide.transcript,
              (Transcript{"put VBE.ActiveVBProject <VBProject>", "get VBProject.VBComponents",
                          "call VBComponents.Remove <VBComponent>"}))
        << "the IDE gets its own objects back";
}

TEST(ComEnvironment, TheIdesErrorsArriveAsTheNumbersTheExplorerExpects) {
    ScriptedIde ide;
    auto vbe = WrapVbe(com::Dispatch(AsDispatch(ide.vbe)));
    auto project = vbe->VBProjects()->Item(1);
    try {
        project->ReadProperty("Quorlin", "QX-TypeName");
        FAIL() << "a missing extended property raises";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, env::enverr::kInvalidProcedureCall);
    }
    try {
        project->VBComponents()->Item("Missing");
        FAIL() << "an unknown component raises";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, env::enverr::kSubscriptOutOfRange);
    }
    EXPECT_THROW(vbe->CommandBars(), VbError) << "this IDE has no command bars";
}

// Records the events it receives.
struct RecordingSink final : env::VBProjectsEventsSink, env::VBComponentsEventsSink {
    std::vector<std::string> seen;
    void ItemRenamed(const env::VBProjectRef& project, std::string_view oldName) override {
        seen.push_back("project renamed " + std::string(oldName) + " -> " + project->Name());
    }
    void ItemRemoved(const env::VBComponentRef& component) override {
        seen.push_back("component removed " + component->Name());
    }
};

TEST(ComEnvironment, EventSourcesStayAdvisedExactlyWhileTheyAreHeld) {
    ScriptedIde ide;
    auto vbe = WrapVbe(com::Dispatch(AsDispatch(ide.vbe)));
    auto sink = std::make_shared<RecordingSink>();
    const ULONG formReferences = ide.form->References();
    {
        auto projectEvents = vbe->Events()->VBProjectsEvents();
        auto componentEvents = vbe->Events()->VBComponentsEvents(vbe->ActiveVBProject());
        projectEvents->Advise(sink);
        componentEvents->Advise(sink);
        EXPECT_EQ(ide.projectEvents->SinkCount(ids::DIID_VBProjectsEvents), 1u);
        EXPECT_EQ(ide.componentEvents->SinkCount(ids::DIID_VBComponentsEvents), 1u);

        ide.projectEvents->Raise(ids::DIID_VBProjectsEvents, ids::VBProjectsEvents::ItemRenamed,
                                 {Variant(AsDispatch(ide.project)), Variant("OldName")});
        ide.componentEvents->Raise(ids::DIID_VBComponentsEvents,
                                   ids::VBComponentsEvents::ItemRemoved,
                                   {Variant(AsDispatch(ide.form))});
    }
    EXPECT_EQ(sink->seen, (std::vector<std::string>{"project renamed OldName -> Inventory",
                                                    "component removed frmMain"}));
    EXPECT_EQ(ide.projectEvents->SinkCount(ids::DIID_VBProjectsEvents), 0u);
    EXPECT_EQ(ide.componentEvents->SinkCount(ids::DIID_VBComponentsEvents), 0u);
    EXPECT_EQ(ide.form->References(), formReferences)
        << "nothing of the IDE's is held after the events";
}

struct ClickSink final : env::CommandBarEventsSink {
    int clicks = 0;
    void Click(const env::CommandBarControlRef& control, bool& handled, bool&) override {
        ++clicks;
        handled = control->Caption() == "Save Project";
    }
};

TEST(ComEnvironment, CommandBarsFindMenusRunCommandsAndReportClicks) {
    ScriptedIde ide;
    auto bars = ide.Make("CommandBars");
    auto menuBar = ide.Make("CommandBar");
    auto menuControls = ide.Make("CommandBarControls");
    auto fileMenu = ide.Make("CommandBarPopup");
    auto fileControls = ide.Make("CommandBarControls");
    auto save = ide.Make("CommandBarButton");
    auto clicks = ide.Make("CommandBarEvents");
    clicks->AddEvents(ids::DIID_CommandBarControlEvents);
    ide.vbe->Property(m::VBE::CommandBars, Variant(AsDispatch(bars)));
    bars->Method(m::CommandBars::Item, ScriptedIde::ByIndexOrName(menuBar, "Menu Bar"));
    menuBar->Property(m::CommandBar::Controls, Variant(AsDispatch(menuControls)));
    menuControls->Method(m::CommandBarControls::Item, ScriptedIde::ByIndexOrName(fileMenu, "File"));
    menuControls->Method(m::CommandBarControls::Add, Answer(Variant(AsDispatch(save))));
    fileMenu->Property(m::CommandBarControl::Type, Variant(std::int32_t{10}));
    fileMenu->Property(m::CommandBarPopup::Controls, Variant(AsDispatch(fileControls)));
    fileControls->Method(m::CommandBarControls::Item,
                         ScriptedIde::ByIndexOrName(save, "Save Project"));
    save->Property(m::CommandBarControl::Caption, Variant("Save Project"));
    save->Property(m::CommandBarControl::Type, Variant(std::int32_t{1}));
    save->Property(m::CommandBarControl::Enabled, Variant(true));
    save->Method(m::CommandBarControl::Execute, Answer(Variant()));
    save->Method(m::CommandBarControl::accDoDefaultAction, Answer(Variant()));
    ide.events->Method(m::Events::CommandBarEvents, Answer(Variant(AsDispatch(clicks))));

    auto vbe = WrapVbe(com::Dispatch(AsDispatch(ide.vbe)));
    auto menus = vbe->CommandBars()->Item("Menu Bar")->Controls();
    auto saveProject = menus->Item("File")->Controls()->Item("Save Project");
    ASSERT_TRUE(saveProject->Enabled());
    EXPECT_EQ(saveProject->Controls(), nullptr) << "a button has no controls";
    ide.transcript->clear();
    saveProject->Execute();
    saveProject->DoDefaultAction();
    menus->Add(env::ControlType::Button, std::nullopt, true);
    EXPECT_EQ(*ide.transcript, (Transcript{"call CommandBarButton.Execute",
                                           "call CommandBarButton.accDoDefaultAction",
                                           "get CommandBarControls.Add 1 True"}));

    auto sink = std::make_shared<ClickSink>();
    auto source = vbe->Events()->CommandBarEvents(saveProject);
    source->Advise(sink);
    VARIANT_BOOL handled = VARIANT_FALSE;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT handledArg;
    VariantInit(&handledArg);
    handledArg.vt = VT_BOOL | VT_BYREF;
    handledArg.pboolVal = &handled;
    VARIANT cancelArg = handledArg;
    cancelArg.pboolVal = &cancel;
    clicks->Raise(ids::DIID_CommandBarControlEvents, ids::CommandBarControlEvents::Click,
                  {Variant(AsDispatch(save)), Variant::Copy(handledArg), Variant::Copy(cancelArg)});
    EXPECT_EQ(sink->clicks, 1);
    EXPECT_EQ(handled, VARIANT_TRUE) << "the handler's answer goes back to the IDE";
    EXPECT_EQ(cancel, VARIANT_FALSE);
}

TEST(ComEnvironment, GotoLineShowsTheCodePaneWithTheLineSelected) {
    ScriptedIde ide;
    auto vbe = WrapVbe(com::Dispatch(AsDispatch(ide.vbe)));
    auto form = vbe->VBProjects()->Item(1)->VBComponents()->Item(1);
    ide.transcript->clear();
    GotoLine(*form, 12);
    EXPECT_EQ(*ide.transcript, (Transcript{"get VBComponent.CodeModule", "get CodeModule.CodePane",
                                           "call CodePane.Show", "put CodePane.TopLine 12",
                                           "call CodePane.SetSelection 12 1 12 1"}));
}

}  // namespace
}  // namespace arbolet::windows::ide

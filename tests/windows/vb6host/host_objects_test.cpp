// The emulated IDE's object model as an add-in reaches it through IDispatch: projects and
// components read from disk, object identity, errors, the transcript, and events.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/file_io.h"
#include "vb6host/host_fixture.h"
#include "windows/base/ansi_text.h"
#include "windows/com/connection_point.h"

namespace arbolet::vb6host::testing {
namespace {

using windows::com::Advised;
using windows::com::SameObject;
using windows::testing::FakeObject;
namespace ids = windows::com::ids;

TEST_F(HostTest, ProjectsAndComponentsComeFromTheFilesOnDisk) {
    const Dispatch projects = vbe_.GetObject(m::VBE::VBProjects);
    EXPECT_EQ(projects.GetInt(m::VBProjects::Count), 1);
    const Dispatch project = Project();
    EXPECT_EQ(project.GetText(m::VBProject::Name), "Inventory");
    EXPECT_EQ(project.GetInt(m::VBProject::Type), 0);  // Standard EXE
    EXPECT_EQ(project.GetText(m::VBProject::ReadProperty, {"Quorlin", "QX-TypeName"}),
              ";Stock Logic;Data Access;Archive;");

    const Dispatch components = project.GetObject(m::VBProject::VBComponents);
    EXPECT_EQ(components.GetInt(m::VBComponents::Count), 6);
    const Dispatch stock = components.GetObject(m::VBComponents::Item, {"MODSTOCK"});
    EXPECT_EQ(stock.GetText(m::VBComponent::Name), "modStock");
    EXPECT_EQ(stock.GetInt(m::VBComponent::Type), 1);
    EXPECT_EQ(stock.GetText(m::VBComponent::ReadProperty, {"QX-TypeName"}), "Stock Logic");
    EXPECT_NE(stock.GetText(m::VBComponent::FileNames, {1}).find("modStock.bas"),
              std::string::npos);

    // The code window's text: attributes hidden, lines joined with CRLF.
    const Dispatch code = stock.GetObject(m::VBComponent::CodeModule);
    const std::int32_t count = code.GetInt(m::CodeModule::CountOfLines);
    const std::string text = code.GetText(m::CodeModule::Lines, {1, count});
    EXPECT_EQ(text.rfind("Option Explicit\r\n", 0), 0u) << text;
    EXPECT_EQ(text.find("Attribute"), std::string::npos);
    EXPECT_EQ(components.GetObject(m::VBComponents::Item, {1}).GetInt(m::VBComponent::Type), 5);
}

TEST_F(HostTest, RunTimeErrorsReachTheCallerWithTheirNumbers) {
    const Dispatch components = Project().GetObject(m::VBProject::VBComponents);
    try {
        components.GetObject(m::VBComponents::Item, {"NoSuchModule"});
        FAIL() << "an unknown component was found";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 9);
    }
    try {
        Project().GetText(m::VBProject::ReadProperty, {"Quorlin", "NoSuchKey"});
        FAIL() << "a missing extended property was read";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 5);
    }
    // A member the object does not have is refused by name and by DISPID alike.
    const DispMember unknown{L"NoSuchMember", 4242, "VBProject"};
    EXPECT_THROW(Project().Get(unknown), VbError);
}

TEST_F(HostTest, ObjectsKeepTheirIdentity) {
    const Dispatch first = Project();
    const Dispatch again = vbe_.GetObject(m::VBE::ActiveVBProject);
    EXPECT_TRUE(SameObject(first.Object(), again.Object()));
    const Dispatch byIndex =
        first.GetObject(m::VBProject::VBComponents).GetObject(m::VBComponents::Item, {2});
    const Dispatch byName = Component("modStock");
    EXPECT_TRUE(SameObject(byIndex.Object(), byName.Object()));
    const Dispatch parent =
        byName.GetObject(m::VBComponent::Collection).GetObject(m::VBComponents::Parent);
    EXPECT_TRUE(SameObject(parent.Object(), first.Object()));
}

TEST_F(HostTest, TheTranscriptHasOneLinePerCallInVbLiterals) {
    const std::size_t before = context_->Transcript().Size();
    const Dispatch project = Project();
    project.GetText(m::VBProject::ReadProperty, {"Quorlin", "QX-TypeName"});
    const Dispatch bars = vbe_.GetObject(m::VBE::CommandBars);
    const Dispatch button = bars.GetObject(m::CommandBars::Item, {"Standard"})
                                .GetObject(m::CommandBar::Controls)
                                .GetObject(m::CommandBarControls::Add, {1});
    button.Put(m::CommandBarButton::FaceId, 2557);
    button.Put(m::CommandBarControl::Caption, "Say \"Arbolet\"");
    button.Put(m::CommandBarControl::Visible, true);
    const DispMember add{L"Add", 0x60030000, "CommandBarControls"};
    bars.GetObject(m::CommandBars::Item, {"Add-Ins"})
        .GetObject(m::CommandBar::Controls)
        .Call(add, {1, Variant::Missing(), Variant::Missing(), Variant::Missing(), true});
    const std::vector<std::string> expected = {
        "get VBE.VBProjects",
        "call VBProjects.Item 1",
        "call VBProject.ReadProperty \"Quorlin\", \"QX-TypeName\"",
        "get VBE.CommandBars",
        "get CommandBars.Item \"Standard\"",
        "get CommandBar.Controls",
        "call CommandBarControls.Add 1",
        "put CommandBarButton.FaceId 2557",
        "put CommandBarButton.Caption \"Say \"\"Arbolet\"\"\"",
        "put CommandBarButton.Visible True",
        "get CommandBars.Item \"Add-Ins\"",
        "get CommandBar.Controls",
        "call CommandBarControls.Add 1, , , , True",
    };
    EXPECT_EQ(context_->Transcript().Since(before), expected);
}

// A sink that answers every event of `events` by recording "Event(name[, old name])".
ComPtr<FakeObject> RecordingSink(const char* type, std::vector<std::string>& seen) {
    auto sink = FakeObject::Create(type, std::make_shared<windows::testing::Transcript>());
    static constexpr const wchar_t* kNames[] = {L"ItemAdded",    L"ItemRemoved",   L"ItemRenamed",
                                                L"ItemSelected", L"ItemActivated", L"ItemReloaded"};
    for (DISPID id = 1; id <= 6; ++id) {
        const DispMember event{kNames[id - 1], id, type};
        sink->Method(event, [&seen, event](WORD, const std::vector<Variant>& args, Variant&) {
            const Dispatch item(args.at(0).ToDispatch());
            const DispMember name{L"Name", 0, ""};
            std::string line = windows::WideToUtf8(event.name) + "(" + item.GetText(name);
            if (args.size() > 1) line += ", " + args[1].ToUtf8().value_or("?");
            seen.push_back(line + ")");
            return S_OK;
        });
    }
    return sink;
}

TEST_F(HostTest, ComponentEventsReachAdvisedSinksUntilTheyUnadvise) {
    std::vector<std::string> seen;
    const auto sink = RecordingSink("VBComponentsEvents", seen);
    Advised advised;
    {
        const Dispatch source = vbe_.GetObject(m::VBE::Events)
                                    .GetObject(m::Events::VBComponentsEvents, {Project().Object()});
        ASSERT_HRESULT_SUCCEEDED(advised.Advise(source.Object(), ids::DIID_VBComponentsEvents,
                                                static_cast<IDispatch*>(sink.Get())));
    }
    const auto extra = folder_.Write("modExtra.bas", "Attribute VB_Name = \"modExtra\"\r\n");
    const Dispatch components = Project().GetObject(m::VBProject::VBComponents);
    const Dispatch added = components.GetObject(m::VBComponents::AddFile, {extra.string().c_str()});
    added.Put(m::VBComponent::Name, "modRenamed");
    components.Call(m::VBComponents::Remove, {added.Object()});
    EXPECT_EQ(seen,
              (std::vector<std::string>{"ItemAdded(modExtra)", "ItemRenamed(modRenamed, modExtra)",
                                        "ItemRemoved(modRenamed)"}));

    // Saved, the project file lists the components it listed before, byte for byte.
    const std::string before = folder_.Read("Inventory.vbp");
    context_->Environment().Save();
    EXPECT_EQ(folder_.Read("Inventory.vbp"), before);

    advised.Unadvise();
    components.GetObject(m::VBComponents::AddFile, {extra.string().c_str()});
    EXPECT_EQ(seen.size(), 3u);
}

TEST_F(HostTest, ProjectEventsFollowProjectsAddedRenamedAndRemoved) {
    std::vector<std::string> seen;
    const auto sink = RecordingSink("VBProjectsEvents", seen);
    Advised advised;
    ASSERT_HRESULT_SUCCEEDED(advised.Advise(
        vbe_.GetObject(m::VBE::Events).GetObject(m::Events::VBProjectsEvents).Object(),
        ids::DIID_VBProjectsEvents, static_cast<IDispatch*>(sink.Get())));
    folder_.Write("Second.vbp", "Type=Exe\r\nModule=modStock; modStock.bas\r\nName=\"Second\"\r\n");
    const Dispatch projects = vbe_.GetObject(m::VBE::VBProjects);
    const Dispatch second =
        projects.GetObject(kAddFromFile, {(folder_.Path() / "Second.vbp").string().c_str()});
    second.Put(m::VBProject::Name, "Third");
    projects.Call(kRemoveProject, {second.Object()});
    EXPECT_EQ(seen, (std::vector<std::string>{"ItemAdded(Second)", "ItemRenamed(Third, Second)",
                                              "ItemRemoved(Third)"}));
    EXPECT_EQ(projects.GetInt(m::VBProjects::Count), 1);
}

TEST_F(HostTest, EveryObjectIsReleasedWithTheLastReference) {
    {
        std::vector<std::string> seen;
        const auto sink = RecordingSink("VBProjectsEvents", seen);
        Advised advised;
        advised.Advise(
            vbe_.GetObject(m::VBE::Events).GetObject(m::Events::VBProjectsEvents).Object(),
            ids::DIID_VBProjectsEvents, static_cast<IDispatch*>(sink.Get()));
        Component("modStock")
            .GetObject(m::VBComponent::CodeModule)
            .GetObject(m::CodeModule::CodePane);
        EXPECT_GT(context_->LiveObjects(), 1);
    }
    vbe_ = Dispatch();
    EXPECT_EQ(context_->LiveObjects(), 0);
    const auto events = context_->Environment().Events()->VBProjectsEvents();
    EXPECT_EQ(events->ConnectionCount(), 0u);
}

}  // namespace
}  // namespace arbolet::vb6host::testing

// The in-memory environment: collections, extended properties, code and the events it raises.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "base/vb_error.h"
#include "environment/memory_environment.h"

namespace arbolet::env {
namespace {

std::int32_t ErrorNumber(auto&& call) {
    try {
        call();
    } catch (const VbError& e) {
        return e.Number;
    }
    return 0;
}

// Records every event as "Event(name)" or "Event(name, old name)".
struct Recorder : VBProjectsEventsSink, VBComponentsEventsSink {
    std::vector<std::string> log;
    void ItemAdded(const VBProjectRef& p) override {
        log.push_back("ProjectAdded(" + p->Name() + ")");
    }
    void ItemRemoved(const VBProjectRef& p) override {
        log.push_back("ProjectRemoved(" + p->Name() + ")");
    }
    void ItemRenamed(const VBProjectRef& p, std::string_view old) override {
        log.push_back("ProjectRenamed(" + p->Name() + ", " + std::string(old) + ")");
    }
    void ItemAdded(const VBComponentRef& c) override { log.push_back("Added(" + c->Name() + ")"); }
    void ItemRemoved(const VBComponentRef& c) override {
        log.push_back("Removed(" + c->Name() + ")");
    }
    void ItemRenamed(const VBComponentRef& c, std::string_view old) override {
        log.push_back("Renamed(" + c->Name() + ", " + std::string(old) + ")");
    }
};

TEST(MemoryEnvironment, CollectionsFindItemsByIndexAndName) {
    auto vbe = MemoryEnvironment::Create();
    EXPECT_EQ(vbe->ActiveVBProject(), nullptr);
    auto first = vbe->AddProject("First", "C:\\p\\First.vbp");
    auto second = vbe->AddProject("Second");
    auto projects = vbe->VBProjects();
    EXPECT_EQ(projects->Count(), 2);
    EXPECT_EQ(projects->Item(2), second);
    EXPECT_EQ(projects->Item("FIRST"), first);
    EXPECT_EQ(projects->StartProject(), first);
    EXPECT_EQ(vbe->ActiveVBProject(), first);
    EXPECT_EQ(first->FileName(), "C:\\p\\First.vbp");
    EXPECT_EQ(first->Collection(), projects);
    EXPECT_EQ(ErrorNumber([&] { projects->Item(3); }), enverr::kSubscriptOutOfRange);
    EXPECT_EQ(ErrorNumber([&] { projects->Item("Third"); }), enverr::kSubscriptOutOfRange);

    auto module = first->AddComponent("modMain", ComponentType::StdModule);
    auto components = first->VBComponents();
    EXPECT_EQ(components->Count(), 1);
    EXPECT_EQ(components->Item("MODMAIN"), module);
    EXPECT_EQ(components->Parent(), first);
    EXPECT_EQ(ProjectOf(*module), first);
    EXPECT_EQ(ErrorNumber([&] { components->Item(0); }), enverr::kSubscriptOutOfRange);

    first->RemoveComponent(module);
    EXPECT_EQ(components->Count(), 0);
    EXPECT_EQ(ErrorNumber([&] { ProjectOf(*module); }), enverr::kObjectNotSet);
}

TEST(MemoryEnvironment, ExtendedPropertiesRaiseLikeTheIde) {
    auto vbe = MemoryEnvironment::Create();
    auto project = vbe->AddProject("P");
    EXPECT_EQ(ErrorNumber([&] { project->ReadProperty("Quorlin", "QX-TypeName"); }),
              enverr::kInvalidProcedureCall);
    project->WriteProperty("Quorlin", "QX-TypeName", ";A;");
    EXPECT_EQ(project->ReadProperty("quorlin", "qx-typename"), ";A;");
    EXPECT_EQ(ErrorNumber([&] { project->ReadProperty("Other", "QX-TypeName"); }),
              enverr::kInvalidProcedureCall);

    auto form = project->AddComponent("frmMain", ComponentType::VBForm);
    EXPECT_EQ(ErrorNumber([&] { form->ReadProperty("QX-TypeName"); }),
              enverr::kInvalidProcedureCall);
    form->WriteProperty("QX-TypeName", "Screens");
    EXPECT_EQ(form->ReadProperty("qx-typename"), "Screens");

    for (auto type : {ComponentType::ResFile, ComponentType::RelatedDocument}) {
        auto plain = project->AddComponent("", type);
        EXPECT_EQ(ErrorNumber([&] { plain->ReadProperty("QX-TypeName"); }), enverr::kNotSupported);
        EXPECT_EQ(ErrorNumber([&] { plain->WriteProperty("QX-TypeName", "X"); }),
                  enverr::kNotSupported);
        EXPECT_EQ(plain->CodeModule(), nullptr);
    }
    form->SetHasPropertyStore(false);
    EXPECT_EQ(ErrorNumber([&] { form->ReadProperty("QX-TypeName"); }), enverr::kNotSupported);
}

TEST(MemoryEnvironment, CodeModuleHandsOutLineRanges) {
    auto vbe = MemoryEnvironment::Create();
    auto module = vbe->AddProject("P")->AddComponent("m", ComponentType::StdModule,
                                                     "Option Explicit\r\n\r\nSub A()\r\nEnd Sub");
    auto code = module->CodeModule();
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->CountOfLines(), 4);
    EXPECT_EQ(code->Lines(1, code->CountOfLines()), "Option Explicit\r\n\r\nSub A()\r\nEnd Sub");
    EXPECT_EQ(code->Lines(3, 1), "Sub A()");
    EXPECT_EQ(code->Lines(3, 10), "Sub A()\r\nEnd Sub");
    EXPECT_EQ(code->Lines(9, 1), "");
    EXPECT_EQ(code->Lines(2, 0), "");
    EXPECT_EQ(ErrorNumber([&] { code->Lines(0, 1); }), enverr::kInvalidProcedureCall);
    EXPECT_EQ(ErrorNumber([&] { code->Lines(1, -1); }), enverr::kInvalidProcedureCall);

    module->SetCode("");
    EXPECT_EQ(module->CodeModule()->CountOfLines(), 0);
}

TEST(MemoryEnvironment, RaisesProjectEvents) {
    auto vbe = MemoryEnvironment::Create();
    auto recorder = std::make_shared<Recorder>();
    auto source = vbe->Events()->VBProjectsEvents();
    const auto cookie = source->Advise(recorder);
    auto project = vbe->AddProject("A");
    vbe->RenameProject(project, "B");
    vbe->RemoveProject(project);
    source->Unadvise(cookie);
    vbe->AddProject("C");
    EXPECT_EQ(recorder->log, (std::vector<std::string>{"ProjectAdded(A)", "ProjectRenamed(B, A)",
                                                       "ProjectRemoved(B)"}));
    EXPECT_EQ(vbe->VBProjects()->Count(), 1);
}

TEST(MemoryEnvironment, ComponentEventsReachTheProjectsAndTheAllProjectsSources) {
    auto vbe = MemoryEnvironment::Create();
    auto one = vbe->AddProject("One");
    auto two = vbe->AddProject("Two");
    auto ofOne = std::make_shared<Recorder>();
    auto ofAll = std::make_shared<Recorder>();
    vbe->Events()->VBComponentsEvents(one)->Advise(ofOne);
    vbe->Events()->VBComponentsEvents(nullptr)->Advise(ofAll);

    auto a = one->AddComponent("a", ComponentType::ClassModule);
    auto b = two->AddComponent("b", ComponentType::ClassModule);
    one->RenameComponent(a, "a2");
    two->RemoveComponent(b);
    EXPECT_EQ(ofOne->log, (std::vector<std::string>{"Added(a)", "Renamed(a2, a)"}));
    EXPECT_EQ(ofAll->log,
              (std::vector<std::string>{"Added(a)", "Added(b)", "Renamed(a2, a)", "Removed(b)"}));
}

TEST(EventSource, AFailingSinkDoesNotStopTheOthers) {
    struct Failing : VBProjectsEventsSink {
        void ItemAdded(const VBProjectRef&) override { throw std::runtime_error("handler failed"); }
    };
    VBProjectsEvents source;
    auto recorder = std::make_shared<Recorder>();
    source.Advise(std::make_shared<Failing>());
    source.Advise(recorder);
    auto vbe = MemoryEnvironment::Create();
    auto project = vbe->AddProject("P");
    source.Raise([&](VBProjectsEventsSink& sink) { sink.ItemAdded(project); });
    EXPECT_EQ(recorder->log, std::vector<std::string>{"ProjectAdded(P)"});
    EXPECT_EQ(source.ConnectionCount(), 2u);
    source.Unadvise(12345);
    EXPECT_EQ(source.ConnectionCount(), 2u);
}

}  // namespace
}  // namespace arbolet::env

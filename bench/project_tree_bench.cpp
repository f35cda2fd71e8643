// Loading a large project into the keyed tree: 20,000 components in 50 custom folders, from
// memory and from files on disk, and in one fixed group listed in name order; re-expanding a
// component whose 20,000 code nodes stayed in the tree while its folder was closed. Each must
// grow linearly with the project (the 5,000-component load was once 1 s, and 20,000 took 12 s).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "disk/disk_environment.h"
#include "environment/memory_environment.h"
#include "explorer/node_keys.h"
#include "explorer/project_explorer.h"
#include "treemodel/memory_tree.h"

namespace {

using arbolet::env::ComponentType;
namespace fs = std::filesystem;

constexpr int kComponents = 20000;
constexpr int kFolders = 50;

struct SilentUi : arbolet::explorer::UiServices {
    void MsgBox(std::string_view, arbolet::explorer::MsgBoxIcon, std::string_view) override {}
    std::string InputBox(std::string_view, std::string_view, std::string_view) override {
        return {};
    }
    void Beep() override {}
};

struct GeneratedComponent {
    std::string name;
    ComponentType type;
    std::string folder;
};

// Components in shuffled order, so that sorted insertion has real work to do.
std::vector<GeneratedComponent> GenerateComponents() {
    std::vector<GeneratedComponent> components;
    const ComponentType types[] = {ComponentType::StdModule, ComponentType::ClassModule,
                                   ComponentType::VBForm};
    for (int i = 0; i < kComponents; ++i) {
        components.push_back({"Component" + std::to_string(i), types[i % 3],
                              "Folder " + std::to_string(i % kFolders)});
    }
    std::shuffle(components.begin(), components.end(), std::mt19937(42));
    return components;
}

std::string FolderList() {
    std::string list = ";";
    for (int i = kFolders - 1; i >= 0; --i)
        list += "Folder " + std::to_string(i) + ";";
    return list;
}

void LoadIntoTree(benchmark::State& state, const std::shared_ptr<arbolet::env::VBE>& vbe) {
    SilentUi ui;
    for (auto _ : state) {
        arbolet::tree::MemoryTreeView view;
        arbolet::explorer::ProjectExplorer explorer(vbe, view, ui);
        explorer.RefreshProjects();
        if (view.Nodes().Count() != 1 + kFolders + 2 * kComponents) {
            state.SkipWithError("the tree is incomplete");
        }
        benchmark::DoNotOptimize(view.Nodes().Count());
    }
}

void BM_LoadProjectFromMemory(benchmark::State& state) {
    auto vbe = arbolet::env::MemoryEnvironment::Create();
    auto project = vbe->AddProject("Big");
    project->WriteProperty("Quorlin", "QX-TypeName", FolderList());
    for (const auto& generated : GenerateComponents()) {
        project->AddComponent(generated.name, generated.type)
            ->WriteProperty("QX-TypeName", generated.folder);
    }
    LoadIntoTree(state, vbe);
}
BENCHMARK(BM_LoadProjectFromMemory)->Unit(benchmark::kMillisecond);

// Listed in the order their names sort in, every module lands after all the others.
void BM_LoadOneGroupInNameOrder(benchmark::State& state) {
    auto vbe = arbolet::env::MemoryEnvironment::Create();
    auto project = vbe->AddProject("Big");
    for (int i = 0; i < kComponents; ++i) {
        char name[16];
        std::snprintf(name, sizeof(name), "mod%05d", i);
        project->AddComponent(name, ComponentType::StdModule);
    }
    SilentUi ui;
    for (auto _ : state) {
        arbolet::tree::MemoryTreeView view;
        arbolet::explorer::ProjectExplorer explorer(vbe, view, ui);
        explorer.RefreshProjects();
        benchmark::DoNotOptimize(view.Nodes().Count());
    }
}
BENCHMARK(BM_LoadOneGroupInNameOrder)->Unit(benchmark::kMillisecond);

// A folder closed over an open component keeps its code nodes; opening the component again
// replaces them.
void BM_ReExpandAfterFolderCollapse(benchmark::State& state) {
    auto vbe = arbolet::env::MemoryEnvironment::Create();
    auto project = vbe->AddProject("Big");
    std::string code = "Attribute VB_Name = \"modBig\"\r\nSub Main()\r\n";
    for (int i = 0; i < kComponents; ++i)
        code += "    x = " + std::to_string(i) + "\r\n";
    project->AddComponent("modBig", ComponentType::StdModule)->SetCode(code + "End Sub\r\n");
    SilentUi ui;
    arbolet::tree::MemoryTreeView view;
    arbolet::explorer::ProjectExplorer explorer(vbe, view, ui);
    explorer.RefreshProjects();
    const std::string key = arbolet::explorer::ComponentKey("modBig", "Big");
    explorer.ExpandNode(*view.Nodes().Item(key));
    for (auto _ : state) {
        explorer.CollapseNode(*view.Nodes().Item(key)->Parent());
        if (!explorer.ExpandNode(*view.Nodes().Item(key)).done()) {
            state.SkipWithError("the component did not open");
        }
        benchmark::DoNotOptimize(view.Nodes().Count());
    }
}
BENCHMARK(BM_ReExpandAfterFolderCollapse)->Unit(benchmark::kMillisecond);

void WriteFile(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The same project as files; opening and reading them is part of what is measured.
void BM_LoadProjectFromDisk(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / "arbolet-bench-project";
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::string vbp = "Type=Exe\r\n";
    for (const auto& generated : GenerateComponents()) {
        const bool form = generated.type == ComponentType::VBForm;
        const std::string file = generated.name + (form ? ".frm" : ".bas");
        vbp += form ? "Form=" + file + "\r\n" : "Module=" + generated.name + "; " + file + "\r\n";
        std::string text =
            form ? "VERSION 5.00\r\nBegin VB.Form " + generated.name + "\r\nEnd\r\n" : "";
        text += "Attribute VB_Name = \"" + generated.name +
                "\"\r\nAttribute VB_Ext_KEY = " + "\"QX-TypeName\" ,\"" + generated.folder +
                "\"\r\nOption Explicit\r\n";
        WriteFile(folder / file, text);
    }
    WriteFile(folder / "Big.vbp",
              vbp + "Name=\"Big\"\r\n[Quorlin]\r\nQX-TypeName=" + FolderList() + "\r\n");
    SilentUi ui;
    for (auto _ : state) {
        auto vbe = arbolet::disk::DiskEnvironment::Open({folder / "Big.vbp"});
        arbolet::tree::MemoryTreeView view;
        arbolet::explorer::ProjectExplorer explorer(vbe, view, ui);
        explorer.RefreshProjects();
        benchmark::DoNotOptimize(view.Nodes().Count());
    }
    fs::remove_all(folder);
}
BENCHMARK(BM_LoadProjectFromDisk)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

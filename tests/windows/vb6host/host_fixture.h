// An emulated IDE session over a copy of the example project, driven through IDispatch with the
// add-in's own late-bound calls, as an add-in drives the real IDE.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "disk/temp_folder.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_commands.h"
#include "vb6host/ide_objects.h"
#include "vb6host/main_window.h"
#include "windows/com/dispatch.h"
#include "windows/com/fake_object.h"

namespace arbolet::vb6host::testing {

using windows::com::Dispatch;
using windows::com::DispMember;
using windows::com::Variant;
namespace m = windows::com::members;

class HostTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
        const std::filesystem::path example =
            std::filesystem::path(ARBOLET_SOURCE_DIR) / "examples" / "Inventory";
        for (const auto& entry : std::filesystem::directory_iterator(example))
            std::filesystem::copy_file(entry.path(), folder_.Path() / entry.path().filename());
        context_ = std::make_shared<HostContext>(
            disk::DiskEnvironment::Open({folder_.Path() / "Inventory.vbp"}));
        BuildIdeCommandBars(*context_);
        main_ = std::make_unique<MainWindow>(*context_);
        vbe_ = Dispatch(VbeObjectFor(*context_));
    }

    void TearDown() override {
        vbe_ = Dispatch();
        main_.reset();
        context_.reset();
        OleUninitialize();
    }

    // The model control behind a caption path such as {"Project", "Add Class Module"}.
    BarControlRef BuiltIn(const wchar_t* menu, const wchar_t* item) const {
        const auto bar = context_->Bars().FindBar(menu);
        return bar ? bar->controls->FindByCaption(item) : nullptr;
    }

    Dispatch Project() const {
        return vbe_.GetObject(m::VBE::VBProjects).GetObject(m::VBProjects::Item, {1});
    }
    Dispatch Component(const char* name) const {
        return Project()
            .GetObject(m::VBProject::VBComponents)
            .GetObject(m::VBComponents::Item, {name});
    }

    disk::testing::TempFolder folder_;
    std::shared_ptr<HostContext> context_;
    std::unique_ptr<MainWindow> main_;
    Dispatch vbe_;
};

// Members the add-in itself never calls, for the tests that act as the IDE's user.
inline constexpr DispMember kAddFromFile{L"AddFromFile", 130, "VBProjects"};
inline constexpr DispMember kRemoveProject{L"Remove", 131, "VBProjects"};
inline constexpr DispMember kGetSelection{L"GetSelection", 0x60020003, "CodePane"};
inline constexpr DispMember kParent{L"Parent", 0x6004001C, "CommandBarControl"};

}  // namespace arbolet::vb6host::testing

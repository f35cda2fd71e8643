// The menus and the dispatcher over projects written to a temporary folder and opened from disk,
// so that the environment's controls are the real ones, with a front end that records its calls.
#pragma once

#include <string>
#include <vector>

#include "commands/context_menus.h"
#include "commands/dispatcher.h"
#include "explorer/disk_explorer_fixture.h"

namespace arbolet::commands::testing {

using explorer::testing::Crlf;

struct RecordingFrontEnd : FrontEnd {
    std::vector<std::string> calls;
    bool propertiesAllowed = true;

    void ShowProperties() override { calls.push_back("ShowProperties"); }
    void ShowAbout() override { calls.push_back("ShowAbout"); }
    void ShowHelp() override { calls.push_back("ShowHelp"); }
    void Hide() override { calls.push_back("Hide"); }
    void ShowObject(const env::VBComponent& component) override {
        calls.push_back("Object " + component.Name());
    }
    void ShowCode(const env::VBComponent& component, std::int64_t line) override {
        calls.push_back("Code " + component.Name() + ":" + std::to_string(line));
    }
    bool SelectForProperties(const env::VBComponent& component) override {
        calls.push_back("Properties " + component.Name());
        return propertiesAllowed;
    }
};

// Shop (a standard EXE with a form, a module named Project and a class) and Tools (an ActiveX
// DLL with an MDI form), in one group.
class CommandsTest : public explorer::testing::DiskExplorerTest {
  protected:
    popupmenu::MenuItems menu;
    RecordingFrontEnd frontEnd;
    std::unique_ptr<ContextMenus> menus;
    std::unique_ptr<Dispatcher> dispatcher;

    void SetUp() override {
        folder.Write("All.vbg",
                     Crlf({"VBGROUP 5.0", "StartupProject=Shop.vbp", "Project=tools\\Tools.vbp"}));
        folder.Write("Shop.vbp",
                     Crlf({"Type=Exe", "Form=frmMain.frm", "Module=Project; Project.bas",
                           "Class=clsData; clsData.cls", "Name=\"Shop\""}));
        folder.Write("frmMain.frm",
                     Crlf({"VERSION 5.00", "Begin VB.Form frmMain", "End",
                           "Attribute VB_Name = \"frmMain\"", "Sub Form_Load()", "End Sub"}));
        folder.Write("Project.bas", Crlf({"Attribute VB_Name = \"Project\"", "Sub Main()",
                                          "    If a Then", "    End If", "End Sub"}));
        folder.Write("clsData.cls", Crlf({"VERSION 1.0 CLASS", "BEGIN", "END",
                                          "Attribute VB_Name = \"clsData\""}));
        folder.Write("tools/Tools.vbp",
                     Crlf({"Type=OleDll", "Form=frmFrame.frm", "Name=\"Tools\""}));
        folder.Write("tools/frmFrame.frm", Crlf({"VERSION 5.00", "Begin VB.MDIForm frmFrame", "End",
                                                 "Attribute VB_Name = \"frmFrame\""}));
        Open({"All.vbg"});
        menus = std::make_unique<ContextMenus>(menu, vbe, nodes(), *explorer);
        dispatcher = std::make_unique<Dispatcher>(vbe, view, *explorer, ui, frontEnd);
    }

    // Each item of a menu as "caption|key|data|enabled", sub-menu items indented.
    std::vector<std::string> Items(std::int32_t parent = 0) const {
        std::vector<std::string> lines;
        for (const std::int32_t i : menu.ChildrenOf(parent)) {
            lines.push_back((parent != 0 ? "  " : "") + menu.Caption(i) + "|" + menu.ItemKey(i) +
                            "|" + std::to_string(menu.ItemData(i)) + "|" +
                            (menu.Enabled(i) ? "on" : "off"));
        }
        return lines;
    }
    std::vector<std::string> AddItems() const { return Items(menu.IndexForKey("ProjectAdd")); }
    bool RightClick(const std::string& key) {
        return menus->BuildTreeMenu(MouseButton::Right, Node(key).get());
    }
    std::string Index(const std::string& key) { return std::to_string(Node(key)->Index()); }
    explorer::Outcome Choose(const std::string& key) {
        return dispatcher->ItemClicked(menu, menu.IndexForKey(key));
    }
};

}  // namespace arbolet::commands::testing

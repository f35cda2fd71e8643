// A scripted VB6 IDE for the connection object's tests: a VBE with the "Add-Ins" and
// "Standard" command bars whose controls can be added, found and deleted, an Events object that
// gives a CommandBarEvents source per control, and a Windows collection whose CreateToolWindow
// answers a Window. Every call lands in one transcript.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "com/fake_object.h"

namespace arbolet::windows::testing {

class FakeVbe {
  public:
    FakeVbe();

    IDispatch* Vbe() const { return vbe_.Get(); }
    IDispatch* AddInInst() const { return addIn_.Get(); }
    const std::shared_ptr<Transcript>& Calls() const { return transcript_; }
    // The controls of a bar, in order.
    const std::vector<ComPtr<FakeObject>>& Controls(const std::string& bar) const;
    // The click source of a control; empty when the add-in never asked for one.
    ComPtr<FakeObject> ClickSource(const ComPtr<FakeObject>& control) const;
    // Raises Click on every sink of a control, as a user's click would.
    void Click(const ComPtr<FakeObject>& control);
    // The tool window created by CreateToolWindow; empty before.
    const ComPtr<FakeObject>& ToolWindow() const { return toolWindow_; }
    int ToolWindowsCreated() const { return toolWindowsCreated_; }
    // Removes a bar, so that asking for it fails as the IDE does for unknown names.
    void RemoveBar(const std::string& bar) { bars_.erase(bar); }
    // Transcript lines that start with `prefix`.
    std::vector<std::string> CallsStartingWith(const std::string& prefix) const;

  private:
    ComPtr<FakeObject> MakeBar(const std::string& name);
    ComPtr<FakeObject> MakeControl(const std::string& bar);

    std::shared_ptr<Transcript> transcript_ = std::make_shared<Transcript>();
    ComPtr<FakeObject> vbe_;
    ComPtr<FakeObject> addIn_;
    ComPtr<FakeObject> toolWindow_;
    int toolWindowsCreated_ = 0;
    std::map<std::string, ComPtr<FakeObject>> bars_;
    std::map<std::string, std::vector<ComPtr<FakeObject>>> controls_;
    std::map<FakeObject*, ComPtr<FakeObject>> clickSources_;
};

}  // namespace arbolet::windows::testing

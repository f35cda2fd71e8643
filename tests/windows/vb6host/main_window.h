// The emulated IDE's main window: its menu bar and "Standard" toolbar drawn from the command bar
// model (so that a click on a menu item or a button runs the control as the IDE would, click
// events first), and the tool windows docked at its right edge.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "vb6host/command_bar_model.h"

namespace arbolet::vb6host {

class HostContext;

class MainWindow {
  public:
    // Creates the window, hidden, and ties it to the context: the context's command bars draw
    // in it and its tool windows dock in it.
    explicit MainWindow(HostContext& context);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND Handle() const { return window_; }
    void Show();
    // Chooses a menu item as a user does: the window gets the item's menu command. False when
    // the item is disabled, hidden or not on the menu.
    bool ChooseMenuItem(const BarControlRef& control);
    // Presses a button of the "Standard" toolbar. False when it is not on the toolbar.
    bool PressToolbarButton(const BarControlRef& control);
    // The toolbar's button window for a control; nullptr when it is not on the toolbar.
    HWND ButtonOf(const BarControl& control) const;
    // Draws the menu bar and the toolbar from the model again.
    void Rebuild();

  private:
    static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void LayOut(int width, int height);
    void UpdateMenuStates(HMENU menu);

    HostContext& context_;
    HWND window_ = nullptr;
    HMENU menu_ = nullptr;
    std::vector<std::pair<HWND, std::weak_ptr<BarControl>>> buttons_;
    bool rebuilding_ = false;
};

}  // namespace arbolet::vb6host

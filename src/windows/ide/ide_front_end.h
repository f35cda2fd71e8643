// What the commands ask of the add-in's front end, done in the IDE: its own code window and
// designer, its properties selection, its help (the F1 key), and the tool window's Hide. The
// options dialog and the about box belong to the document that hosts the commands, which hands
// them in.
#pragma once

#include <windows.h>

#include <functional>

#include "commands/front_end.h"

namespace arbolet::windows::ide {

class IdeFrontEnd final : public commands::FrontEnd {
  public:
    struct Actions {
        std::function<void()> hide;            // the connection object's Hide
        std::function<void()> showProperties;  // the display options dialog
        std::function<void()> showAbout;       // the about box
        HWND ideWindow = nullptr;              // receives the F1 key for the help
    };
    explicit IdeFrontEnd(Actions actions) : actions_(std::move(actions)) {}

    void ShowProperties() override;
    void ShowAbout() override;
    void ShowHelp() override;
    void Hide() override;
    void ShowObject(const env::VBComponent& component) override;
    void ShowCode(const env::VBComponent& component, std::int64_t line) override;
    bool SelectForProperties(const env::VBComponent& component) override;

  private:
    Actions actions_;
};

}  // namespace arbolet::windows::ide

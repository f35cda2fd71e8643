// What the commands ask of the standalone explorer: View Code, View Object and Goto open the
// component's file in the user's editor at the right line of the file; Hide minimises the
// window; Help opens the help file beside the program; the options dialog and the about box
// are Arbolet's own.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "commands/front_end.h"
#include "explorer/code_navigation.h"

namespace arbolet::explorer_app {

class ExplorerFrontEnd final : public commands::FrontEnd {
  public:
    explicit ExplorerFrontEnd(HWND window) noexcept : window_(window) {}
    void HelpFile(std::string file) { helpFile_ = std::move(file); }
    // After OK in the options dialog, for the code trees on show to follow the new options.
    std::function<void()> OptionsChanged;

    void ShowProperties() override;
    void ShowAbout() override;
    void ShowHelp() override;
    void Hide() override;
    void ShowObject(const env::VBComponent& component) override;
    void ShowCode(const env::VBComponent& component, std::int64_t line) override;
    // There is no properties window outside the IDE.
    bool SelectForProperties(const env::VBComponent& component) override;
    // The component and line the last View Code or Goto opened: where Locate goes.
    const std::optional<explorer::CodeLocation>& LastShownCode() const noexcept {
        return lastShown_;
    }

  private:
    HWND window_;
    std::string helpFile_;
    std::optional<explorer::CodeLocation> lastShown_;
};

}  // namespace arbolet::explorer_app

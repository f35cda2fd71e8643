// The commands' front end on the terminal: a component's code or designer is shown as the place
// it is (`path:line`, `path`) on the output stream; the tool window's own dialogs do not exist
// here and say so.
#pragma once

#include <ostream>

#include "commands/front_end.h"

namespace arbolet::cli {

class TerminalFrontEnd final : public commands::FrontEnd {
  public:
    TerminalFrontEnd(std::ostream& out, std::ostream& err, int codePage)
        : out_(out), err_(err), codePage_(codePage) {}

    void ShowProperties() override { NoWindow("the display options dialog"); }
    void ShowAbout() override { NoWindow("the about box"); }
    void ShowHelp() override { NoWindow("the help"); }
    void Hide() override { NoWindow("a tool window to hide"); }
    void ShowObject(const env::VBComponent& component) override;
    void ShowCode(const env::VBComponent& component, std::int64_t line) override;
    bool SelectForProperties(const env::VBComponent& component) override;

  private:
    void NoWindow(const char* what) {
        err_ << "arbolet: there is no " << what << " on the command line\n";
    }

    std::ostream& out_;
    std::ostream& err_;
    int codePage_;
};

}  // namespace arbolet::cli

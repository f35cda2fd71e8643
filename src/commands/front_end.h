// What the commands need from the front end they run in: its own dialogs, hiding its window,
// and showing a component's designer or code. The add-in opens them in the IDE, the standalone
// explorer in its own windows or an editor, the command-line tool prints where they are.
#pragma once

#include <cstdint>

#include "environment/vbide.h"

namespace arbolet::commands {

class FrontEnd {
  public:
    virtual ~FrontEnd() = default;
    // The display options dialog, modal, owned by the tool window.
    virtual void ShowProperties() = 0;
    // The about box, modal.
    virtual void ShowAbout() = 0;
    // The help (in the IDE: the F1 key sent to it).
    virtual void ShowHelp() = 0;
    // Hides the tool window and records that it is hidden.
    virtual void Hide() = 0;
    // Opens the component's designer.
    virtual void ShowObject(const env::VBComponent& component) = 0;
    // Opens the component's code with the 1-based code line `line` shown (1 for the top).
    virtual void ShowCode(const env::VBComponent& component, std::int64_t line) = 0;
    // Selects the component for the environment's properties window; false when the
    // environment refuses.
    virtual bool SelectForProperties(const env::VBComponent& component) = 0;
};

}  // namespace arbolet::commands

// The commands' front end in the IDE.
#include "windows/ide/ide_front_end.h"

#include <limits>

#include "windows/ide/com_environment.h"
#include "windows/ide/com_objects.h"

namespace arbolet::windows::ide {

void IdeFrontEnd::ShowProperties() {
    if (actions_.showProperties) actions_.showProperties();
}

void IdeFrontEnd::ShowAbout() {
    if (actions_.showAbout) actions_.showAbout();
}

void IdeFrontEnd::ShowHelp() {
    // The IDE opens its help for the F1 key; it has to have the focus to get it.
    if (actions_.ideWindow != nullptr) SetForegroundWindow(actions_.ideWindow);
    INPUT keys[2] = {};
    keys[0].type = INPUT_KEYBOARD;
    keys[0].ki.wVk = VK_F1;
    keys[1] = keys[0];
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, keys, sizeof(INPUT));
}

void IdeFrontEnd::Hide() {
    if (actions_.hide) actions_.hide();
}

void IdeFrontEnd::ShowObject(const env::VBComponent& component) {
    // Activate opens the component's designer, as the project window's "View Object" does.
    const com::Dispatch object = ObjectOf(&component);
    if (!object) env::enverr::RaiseNotSupported("VBComponent.Activate");
    object.Call(com::members::VBComponent::Activate);
}

void IdeFrontEnd::ShowCode(const env::VBComponent& component, std::int64_t line) {
    const std::int64_t limit = std::numeric_limits<std::int32_t>::max();
    GotoLine(component, static_cast<std::int32_t>(line < 1 ? 1 : (line > limit ? limit : line)));
}

bool IdeFrontEnd::SelectForProperties(const env::VBComponent& component) {
    try {
        const com::Dispatch object = ObjectOf(&component);
        if (!object) return false;
        const com::Dispatch collection = object.GetObject(com::members::VBComponent::Collection);
        const com::Dispatch project = collection.GetObject(com::members::VBComponents::Parent);
        const com::Dispatch vbe = project.GetObject(com::members::VBProject::VBE);
        vbe.PutRef(com::members::VBE::SelectedVBComponent, com::Variant(object.Object()));
        return true;
    } catch (const VbError&) {
        return false;
    }
}

}  // namespace arbolet::windows::ide

// The standalone explorer's side of the commands.
#include "explorer_front_end.h"

#include <exception>

#include "base/vb_error.h"
#include "disk/codepage.h"
#include "disk/component_file.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "editor_launch.h"
#include "explorer/node_keys.h"
#include "windows/base/ansi_text.h"
#include "windows/dialogs/about_box.h"
#include "windows/dialogs/help.h"
#include "windows/dialogs/properties_dialog.h"

namespace arbolet::explorer_app {
namespace {

constexpr const wchar_t* kTitle = L"Arbolet Explorer";

std::filesystem::path FileOf(const env::VBComponent& component) {
    return component.FileCount() >= 1 ? disk::PathFromUtf8(component.FileNames(1))
                                      : std::filesystem::path();
}

void Tell(HWND owner, const std::wstring& text) {
    MessageBoxW(owner, text.c_str(), kTitle, MB_OK | MB_ICONINFORMATION);
}

}  // namespace

// A registry that cannot be read or written is reported; the options stay as they were.
void ExplorerFrontEnd::ShowProperties() {
    bool changed = false;
    try {
        changed = windows::dialogs::ShowPropertiesDialog(window_);
    } catch (const VbError& error) {
        Tell(window_, windows::Utf8ToWide(error.Description));
        return;
    }
    if (changed && OptionsChanged) OptionsChanged();
}

void ExplorerFrontEnd::ShowAbout() {
    windows::dialogs::ShowAboutBox(window_);
}

void ExplorerFrontEnd::ShowHelp() {
    if (!windows::dialogs::ShowHelp(window_, helpFile_)) {
        Tell(window_, L"Cannot open the help file " + windows::Utf8ToWide(helpFile_) + L".");
    }
}

void ExplorerFrontEnd::Hide() {
    ShowWindow(window_, SW_MINIMIZE);
}

void ExplorerFrontEnd::ShowObject(const env::VBComponent& component) {
    const std::filesystem::path file = FileOf(component);
    if (!file.empty()) OpenInEditor(window_, file, 1);
}

// The code line is turned into the line of the file, past its designer block and attributes.
void ExplorerFrontEnd::ShowCode(const env::VBComponent& component, std::int64_t line) {
    try {
        lastShown_ = explorer::CodeLocation{env::ProjectOf(component)->Name(),
                                            explorer::ComponentDisplayName(component), line};
    } catch (const std::exception&) {
        lastShown_.reset();
    }
    const std::filesystem::path file = FileOf(component);
    if (file.empty()) return;
    std::int64_t fileLine = line;
    try {
        const disk::ComponentFile parsed =
            disk::ParseComponentFile(disk::ReadFileBytes(file), disk::kDefaultCodePage);
        if (const auto mapped = parsed.FileLineOfCodeLine(static_cast<std::int32_t>(line - 1)))
            fileLine = *mapped;
    } catch (const std::exception&) {
        // An unreadable file still opens, at the code line.
    }
    OpenInEditor(window_, file, static_cast<std::int32_t>(fileLine));
}

bool ExplorerFrontEnd::SelectForProperties(const env::VBComponent&) {
    return false;
}

}  // namespace arbolet::explorer_app

// The standalone explorer's frame window: a menu bar (File, Options), the document filling the
// rest, the projects on disk it shows, and the thread that follows their files.
#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "analysis/display_options.h"
#include "disk/disk_environment.h"
#include "disk_follower.h"
#include "explorer_front_end.h"
#include "windows/document/doc_addin.h"

namespace arbolet::explorer_app {

class MainWindow {
  public:
    // `remember`: whether the window reads and writes its settings (placement, recent files);
    // automation runs leave them alone. `ui` answers the document's dialogs (nullptr: real ones).
    MainWindow(bool remember, explorer::UiServices* ui = nullptr);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND hWnd() const noexcept { return hWnd_; }
    windows::docAddin& Document() noexcept { return *document_; }
    const std::shared_ptr<disk::DiskEnvironment>& Environment() const noexcept {
        return environment_;
    }

    // Shows the window where it was last time, or at its default place.
    void ShowAtSavedPlace(int showCommand);
    // Opens project and group files in place of what was open; false (with a message box, or the
    // error on `error` when given) when they could not be opened. `displayOptions`: fixed options
    // for the code view (nullptr: the option store).
    bool Open(const std::vector<std::filesystem::path>& files,
              analysis::IDisplayOptionSource* displayOptions = nullptr,
              std::string* error = nullptr);
    // Saves what the tree changed; a refusal is shown and leaves every file as it was.
    void SaveChanges();
    // Takes in the changes the follower saw.
    void FollowDisk();

    bool TranslateAccelerator(MSG& message) const;

  private:
    static LRESULT CALLBACK Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT iMsg, WPARAM wParam, LPARAM lParam);
    void OnCommand(UINT id);
    void AskToOpen();
    void OpenRecent(const std::filesystem::path& file);
    // A message box, or the message through the test's `ui_`.
    void Tell(const std::string& text);
    void AskForEditor();
    void BuildMenu();
    void UpdateTitle();
    void OnSelectionChanged(tree::Node* node);

    bool remember_;
    explorer::UiServices* ui_;
    HWND hWnd_ = nullptr;
    HACCEL accelerators_ = nullptr;
    std::unique_ptr<ExplorerFrontEnd> frontEnd_;
    std::unique_ptr<windows::docAddin> document_;
    std::shared_ptr<disk::DiskEnvironment> environment_;
    std::vector<std::filesystem::path> openFiles_;
    std::unique_ptr<DiskFollower> follower_;
};

// The saved window rectangle, moved onto the nearest screen when it is on none.
RECT OnSomeScreen(const RECT& place);

// Makes the process aware of each monitor's DPI, where the system knows how.
void BecomeDpiAware();

}  // namespace arbolet::explorer_app

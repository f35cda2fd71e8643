// The tool window's help for big projects: the search box above the tree (find as you type by
// component, folder or, after ":", procedure name), the Locate button that selects the node of
// the line at the caret, stepping from red node to red node (F8, Shift+F8), and the status line
// under the tree that counts the components with block errors. The document owns one and
// hands it the keys, commands and menu items that are its own.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "explorer/code_navigation.h"
#include "explorer/procedure_metrics.h"
#include "explorer/tree_search.h"
#include "popupmenu/menu_items.h"

namespace arbolet::windows {

class docAddin;

class DocNavigation final {
  public:
    // Creates the search box, the Locate button and the status line as children of the document.
    DocNavigation(docAddin& document, HWND parent, UINT searchId, UINT locateId);
    ~DocNavigation();
    DocNavigation(const DocNavigation&) = delete;
    DocNavigation& operator=(const DocNavigation&) = delete;

    HWND SearchBox() const noexcept { return search_; }
    HWND LocateButton() const noexcept { return locate_; }
    HWND StatusLine() const noexcept { return status_; }
    bool StatusShown() const noexcept { return !statusText_.empty(); }
    const std::string& StatusText() const noexcept { return statusText_; }
    void SetFont(HFONT font);

    // After the full reload: no search, the census taken anew, changes to code followed.
    void Reloaded();

    // ---- find as you type ----
    // Puts text into the search box as typing it does (the tree follows at once).
    void SetSearchText(std::string_view text);
    std::string SearchText() const;
    // The search box's text changed.
    void OnSearchChanged();
    // Enter in the search box: the first match's code.
    void OpenFirstMatch();
    // Esc: the search box empties, the tree comes back as it was and gets the focus.
    void ClearSearch();
    bool Searching() const noexcept { return before_.has_value(); }

    // ---- where the caret is, and the errors ----
    // Selects the node of the host's current code line; false when the host knows none or its
    // component is not in the tree.
    bool LocateCurrentLine();
    bool Locate(const explorer::CodeLocation& location);
    // Selects the next or previous red node; false (with a beep) when there is none.
    bool StepToError(bool forward);

    // A key pressed on the tree; true when it was one of these commands'.
    bool OnTreeKey(WORD virtualKey);
    // The background menu's items of these commands, and running one by its key.
    void AddMenuItems(popupmenu::MenuItems& menu) const;
    bool RunMenuItem(std::string_view key);

  private:
    static LRESULT CALLBACK SearchProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR id, DWORD_PTR self);
    void UpdateStatus();
    void ShowMetricsOf(tree::Node& component, std::string_view code);
    // The quality limits of the .arbolet.json found from the component's project folder.
    explorer::MetricLimits LimitsFor(const tree::Node& component);
    void Select(const tree::NodeRef& node);
    std::string FirstVisibleKey() const;
    void ScrollTo(const std::string& firstVisible);

    docAddin& document_;
    HWND search_ = nullptr;
    HWND locate_ = nullptr;
    HWND status_ = nullptr;
    std::string statusText_;
    // The tree as it was before the search began; none while there is no search.
    std::optional<explorer::TreeSnapshot> before_;
    explorer::ProcedureIndex procedures_;
    explorer::BlockErrorCensus census_;
    // Per project folder, the limits read at the first code tree shown since the last reload.
    std::map<std::string, explorer::MetricLimits> limits_;
    // Set while the box is changed from code, which must not search again.
    bool quiet_ = false;
};

}  // namespace arbolet::windows

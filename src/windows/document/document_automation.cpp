// Reading the real tree view and its context menus back, and pictures of the window.
#include "windows/document/document_automation.h"

#include <fstream>
#include <set>
#include <sstream>
#include <vector>

#include "base/json_writer.h"
#include "base/utf8.h"
#include "explorer/tree_json.h"
#include "windows/base/ansi_text.h"
#include "windows/icons/tree_icons.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::windows {
namespace {

// The component names asked for, lower-cased; `all` for every component.
struct Expansion {
    bool all = false;
    std::set<std::string> names;

    explicit Expansion(const std::string& list) {
        all = list == "all";
        std::stringstream items(list);
        std::string item;
        while (!all && std::getline(items, item, ',')) {
            const std::string_view name = text::Trim(item);
            if (!name.empty()) names.insert(text::ToLower(name));
        }
    }
    // The tree says which nodes are components; their names may look like anything.
    bool Wants(const tree::Node& node) const {
        return node.Kind() == tree::NodeKind::Component &&
               (all || names.contains(text::ToLower(node.Text())));
    }
};

// What the control itself holds for an item; the image is the model's number for the node (the
// control shows the icon chosen for it, which says less).
struct ItemState {
    std::string text;
    std::optional<std::int32_t> image;
    bool bold = false;
    int picture = I_IMAGENONE;  // the image-list index the control draws
};

ItemState ReadItem(HWND tree, HTREEITEM handle, const tree::Node* node) {
    wchar_t buffer[1024] = L"";
    TVITEMW item{};
    item.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_STATE | TVIF_IMAGE;
    item.hItem = handle;
    item.stateMask = TVIS_BOLD;
    item.pszText = buffer;
    item.cchTextMax = static_cast<int>(std::size(buffer));
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return {WideToUtf8(item.pszText), node != nullptr ? node->Image() : std::nullopt,
            (item.state & TVIS_BOLD) != 0, item.iImage};
}

// Handles the messages already waiting, so that work the document put off has run.
void Settle() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// A key press on the tree, as the keyboard would deliver it to the focused control.
void PressOn(HWND tree, HTREEITEM item, WPARAM key) {
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
    SendMessageW(tree, WM_KEYDOWN, key, 0);
    SendMessageW(tree, WM_KEYUP, key, 0);
    Settle();
}

HTREEITEM ItemOf(TreeControl& tree, const std::string& key) {
    if (!tree.Exists(key)) return nullptr;
    return dynamic_cast<const TreeItemNode&>(*tree.Item(key)).Item();
}

void WriteItem(text::JsonWriter& json, const ItemState& state, const tree::Node& node) {
    json.BeginObject();
    json.Key("key");
    json.String(node.Key());
    json.Key("text");
    json.String(state.text);
    json.Key("bold");
    json.Bool(state.bold);
    json.Key("image");
    json.OptionalInteger(state.image ? std::optional<std::int64_t>(*state.image) : std::nullopt);
    json.Key("colour");
    json.Integer(static_cast<std::uint32_t>(node.ForeColor()));
    json.Key("tag");
    json.String(node.Tag());
    // Only marked items have the member, so dumps of trees without marks stay as they were.
    if (state.picture == icons::IconIndex(icons::TreeIcon::OverLimits)) {
        json.Key("mark");
        json.String("over-limits");
    }
    json.Key("children");
    json.BeginArray();
}

// Opens a component as a click on its button does; the explorer says why when it cannot.
void Open(TreeControl& tree, explorer::ProjectExplorer* explorer, tree::Node& node,
          std::vector<explorer::NotExpandedComponent>& notExpanded) {
    if (explorer == nullptr) {
        PressOn(tree.hWnd(), ItemOf(tree, node.Key()), VK_RIGHT);
        return;
    }
    const explorer::Outcome outcome = explorer->ExpandNode(node);
    Settle();
    if (!outcome.done()) notExpanded.push_back({node.Key(), node.Text(), outcome.message()});
}

// Depth first without recursion; a component that is asked for is opened when it is reached
// and closed again once its code is written, so only one code tree at a time counts against
// the tree's node limit.
void WriteTree(TreeControl& tree, explorer::ProjectExplorer* explorer, const Expansion& expansion,
               text::JsonWriter& json, std::vector<explorer::NotExpandedComponent>& notExpanded) {
    const HWND control = tree.hWnd();
    struct Frame {
        std::string key;
        bool opened;
    };
    std::vector<Frame> frames;
    HTREEITEM item = TreeView_GetRoot(control);
    while (true) {
        if (item != nullptr) {
            const tree::NodeRef node = tree.NodeOf(item);
            ItemState state = ReadItem(control, item, node.get());
            const bool opened = node && expansion.Wants(*node);
            if (opened) {
                Open(tree, explorer, *node, notExpanded);
                item = ItemOf(tree, node->Key());
                state = ReadItem(control, item, tree.NodeOf(item).get());
            }
            if (node) WriteItem(json, state, *node);
            frames.push_back({node ? node->Key() : std::string(), opened});
            item = TreeView_GetChild(control, item);
            continue;
        }
        if (frames.empty()) break;
        const Frame done = frames.back();
        frames.pop_back();
        json.EndArray();
        json.EndObject();
        HTREEITEM at = ItemOf(tree, done.key);
        if (done.opened && at != nullptr && TreeView_GetChild(control, at) != nullptr) {
            PressOn(control, at, VK_LEFT);
            at = ItemOf(tree, done.key);
        }
        item = at != nullptr ? TreeView_GetNextSibling(control, at) : nullptr;
    }
}

// Reads the open menu from a thread timer, which the menu's own message loop dispatches.
class MenuReader {
  public:
    MenuReader(cPopupMenu& menu, HWND window, std::filesystem::path screenshot)
        : menu_(menu), window_(window), screenshot_(std::move(screenshot)) {
        current_ = this;
        timer_ = SetTimer(nullptr, 0, 100, &MenuReader::Tick);
    }
    ~MenuReader() {
        KillTimer(nullptr, timer_);
        current_ = nullptr;
    }
    MenuReader(const MenuReader&) = delete;
    MenuReader& operator=(const MenuReader&) = delete;

    bool Read() const { return read_; }
    const std::string& Json() const { return json_; }
    bool PictureSaved() const { return pictureSaved_; }

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        if (current_ != nullptr) current_->OnTick();
    }

    void OnTick() {
        const HWND open = FindWindowExW(nullptr, nullptr, L"#32768", nullptr);
        if (open == nullptr || !IsWindowVisible(open)) {
            if (++waited_ > 30) EndMenu();  // no menu came up; do not wait for ever
            return;
        }
        const auto root = reinterpret_cast<HMENU>(SendMessageW(open, MN_GETHMENU, 0, 0));
        std::ostringstream text;
        {
            text::JsonWriter json(text);
            json.BeginObject();
            json.Key("items");
            WriteMenu(json, root);
            json.EndObject();
        }
        text << '\n';
        json_ = text.str();
        read_ = root != nullptr;
        if (!screenshot_.empty()) pictureSaved_ = SaveWindowPicture(window_, screenshot_);
        EndMenu();
    }

    // The model's item behind an entry of a system menu: by its command, or by its sub-menu.
    std::int32_t ItemOf(const MENUITEMINFOW& info) const {
        const auto id = info.hSubMenu != nullptr ? reinterpret_cast<std::intptr_t>(info.hSubMenu)
                                                 : static_cast<std::intptr_t>(info.wID);
        for (std::int32_t i = 1; i <= menu_.Count(); ++i) {
            if (menu_.IDForItem(i) == id) return i;
        }
        return 0;
    }

    void WriteMenu(text::JsonWriter& json, HMENU handle) const {
        json.BeginArray();
        const int count = GetMenuItemCount(handle);
        for (int position = 0; position < count; ++position) {
            MENUITEMINFOW info{};
            info.cbSize = sizeof(info);
            info.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU;
            if (!GetMenuItemInfoW(handle, static_cast<UINT>(position), TRUE, &info)) continue;
            const std::int32_t item = ItemOf(info);
            const std::string caption = item > 0 ? menu_.Caption(item) : std::string();
            json.BeginObject();
            json.Key("caption");
            json.String(caption);
            json.Key("key");
            json.String(item > 0 ? menu_.ItemKey(item) : std::string());
            json.Key("enabled");
            json.Bool((info.fState & (MFS_DISABLED | MFS_GRAYED)) == 0);
            json.Key("separator");
            json.Bool((info.fType & MFT_SEPARATOR) != 0 || caption == "-");
            json.Key("items");
            if (info.hSubMenu != nullptr) {
                WriteMenu(json, info.hSubMenu);
            } else {
                json.BeginArray();
                json.EndArray();
            }
            json.EndObject();
        }
        json.EndArray();
    }

    static inline MenuReader* current_ = nullptr;
    cPopupMenu& menu_;
    HWND window_;
    std::filesystem::path screenshot_;
    UINT_PTR timer_ = 0;
    int waited_ = 0;
    bool read_ = false;
    bool pictureSaved_ = false;
    std::string json_;
};

// Where a right click on the node lands, in screen co-ordinates: the middle of its caption;
// for empty tree space, below the last item.
bool ClickPoint(TreeControl& tree, const tree::Node* node, POINT& screen) {
    RECT area{};
    if (node != nullptr) {
        const auto& item = dynamic_cast<const TreeItemNode&>(*node);
        if (!ItemRect(tree.hWnd(), item.Item(), true, area)) return false;
        screen = {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    } else {
        GetClientRect(tree.hWnd(), &area);
        screen = {area.right / 2, area.bottom - 4};
    }
    ClientToScreen(tree.hWnd(), &screen);
    return true;
}

}  // namespace

bool DumpDocumentMenu(docAddin& document, HWND window, const std::string& key,
                      const std::filesystem::path& out, const std::filesystem::path& screenshot,
                      std::string& error) {
    TreeControl& tree = document.treMain();
    MenuReader reader(document.PopupMenu(), window, screenshot);
    if (key == "#background") {
        POINT corner{2, 2};
        ClientToScreen(document.hWnd(), &corner);
        document.ShowBackgroundMenu(corner);
    } else {
        if (!key.empty() && !tree.Exists(key)) {
            error = "No node has the key " + key;
            return false;
        }
        const tree::NodeRef node = key.empty() ? nullptr : tree.Item(key);
        if (node) node->EnsureVisible();
        POINT at{};
        if (!ClickPoint(tree, node.get(), at)) {
            error = "The node " + key + " cannot be shown";
            return false;
        }
        // As a right click: the node is selected first.
        if (node) node->SetSelected(true);
        document.ShowTreeMenu(node.get(), at);
    }
    if (!reader.Read()) {
        error = "No menu opened for " + (key.empty() ? std::string("empty tree space") : key);
        return false;
    }
    std::ofstream file(out, std::ios::binary);
    file << reader.Json();
    if (!file) {
        error = "Cannot write " + WideToUtf8(out.wstring());
        return false;
    }
    if (!screenshot.empty() && !reader.PictureSaved()) {
        error = "Cannot write " + WideToUtf8(screenshot.wstring());
        return false;
    }
    return true;
}

std::vector<std::string> OpenDocumentComponents(docAddin& document, const std::string& expand) {
    TreeControl& tree = document.treMain();
    const Expansion expansion(expand);
    // The keys first: opening a component adds items under it, which the walk need not visit.
    std::vector<std::string> keys;
    const HWND control = tree.hWnd();
    std::vector<HTREEITEM> pending;
    for (HTREEITEM item = TreeView_GetRoot(control); item != nullptr;
         item = TreeView_GetNextSibling(control, item))
        pending.push_back(item);
    while (!pending.empty()) {
        const HTREEITEM item = pending.back();
        pending.pop_back();
        const tree::NodeRef node = tree.NodeOf(item);
        if (node && expansion.Wants(*node)) keys.push_back(node->Key());
        for (HTREEITEM child = TreeView_GetChild(control, item); child != nullptr;
             child = TreeView_GetNextSibling(control, child))
            pending.push_back(child);
    }
    std::vector<explorer::NotExpandedComponent> notExpanded;
    for (const std::string& key : keys) {
        if (!tree.Exists(key)) continue;
        const tree::NodeRef node = tree.Item(key);
        if (!node->Expanded()) Open(tree, document.Explorer(), *node, notExpanded);
    }
    std::vector<std::string> problems;
    for (const auto& component : notExpanded)
        problems.push_back(component.name + ": " + component.reason);
    return problems;
}

bool DumpDocumentTree(docAddin& document, const std::string& expand,
                      const std::filesystem::path& out, bool withSelection) {
    std::ostringstream text;
    {
        text::JsonWriter json(text);
        json.BeginObject();
        json.Key("nodes");
        json.BeginArray();
        std::vector<explorer::NotExpandedComponent> notExpanded;
        WriteTree(document.treMain(), document.Explorer(), Expansion(expand), json, notExpanded);
        json.EndArray();
        explorer::WriteNotExpanded(json, notExpanded);
        if (withSelection) {
            json.Key("selected");
            const tree::NodeRef selected = document.treMain().SelectedItem();
            if (selected) {
                json.String(selected->Key());
            } else {
                json.Null();
            }
        }
        json.EndObject();
    }
    text << '\n';
    std::ofstream file(out, std::ios::binary);
    file << text.str();
    return static_cast<bool>(file);
}

}  // namespace arbolet::windows

// The project tree: one node per open project, its folders (fixed groups by component type and
// the developer's own folders) and its components, built from the environment and kept in a
// keyed tree; the custom folders, stored with the projects' and components' own files; the code
// view below each component; the handlers that keep the tree in step with the environment; and
// renaming and dropping in the tree.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/cls_line.h"
#include "analysis/display_options.h"

#include "environment/vbide.h"
#include "explorer/node_keys.h"
#include "explorer/outcome.h"
#include "explorer/ui_services.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

// The tree view copes with this many nodes; a code tree that would pass it is not shown.
inline constexpr std::int32_t kNodeLimit = 32300;
// The limit once the other code trees have been closed to make room.
inline constexpr std::int32_t kNodeLimitAfterClosing = kNodeLimit + 395;
// Code node texts are cut to this many characters ("..." included); the tag keeps more.
inline constexpr std::size_t kCodeTextLength = 50;
inline constexpr std::size_t kCodeTagLength = 150;

class ProjectExplorer {
  public:
    // The environment may be nullptr (not connected): the tree then stays empty. Without an
    // option source the code view shows everything, unsorted.
    ProjectExplorer(std::shared_ptr<env::VBE> vbe, tree::TreeView& treeView, UiServices& ui,
                    analysis::IDisplayOptionSource* displayOptions = nullptr);
    ~ProjectExplorer();
    ProjectExplorer(const ProjectExplorer&) = delete;
    ProjectExplorer& operator=(const ProjectExplorer&) = delete;

    // ---- the tree ----

    // Whether the tree holds a node with the key; asked before every creation and look-up so
    // that a missing key never raises.
    bool NodeExists(std::string_view key) const;
    // The component's custom folder, or the fixed group of its type when it has none or its
    // store cannot be read.
    std::string GetComponentFolder(const env::VBComponent& component) const;
    // The folder node, created in sorted position when missing; nullptr without project node.
    tree::NodeRef GetFolderNode(std::string_view projectName, std::string_view folderName);
    // Ensures the component node under its folder, in sorted position, with its "Code List"
    // placeholder child. Returns the component node, nullptr without project node.
    tree::NodeRef AddComponentNode(std::string_view componentName, std::string_view folderName,
                                   std::string_view projectName);
    // Builds or completes the subtree of one project.
    void LoadProject(const env::VBProject& project);
    // The full reload: takes the event sources again and rebuilds every project's subtree.
    void RefreshProjects();

    // ---- custom folders ----

    void AddProjectFolder(env::VBProject& project, std::string_view folderName);
    void RemoveProjectFolder(env::VBProject& project, std::string_view folderName);
    // Moves the component into a folder ("" for its fixed group); refused, with the message
    // shown, for a component that keeps no folder.
    Outcome SetComponentFolder(env::VBComponent& component, std::string_view folderName);
    // Why the project cannot take the name for a new folder: not a valid folder name, blank, or
    // the name of a folder it has (ignoring case and surrounding blanks); empty when it can.
    std::string NewFolderRefusal(const env::VBProject& project, std::string_view folderName) const;
    // Shows the folder and records it in the project's list; refused, with the message shown,
    // for a name NewFolderRefusal gives a reason for.
    Outcome AddFolder(env::VBProject& project, std::string_view folderName);
    void RemoveFolder(env::VBProject& project, std::string_view folderName);
    // The interactive command: asks for a name and adds the folder to the project of the node.
    // A cancelled dialog is a refusal without message.
    Outcome NewFolder(std::string_view nodeKey);

    // The project's folder list as stored (";A;B;"), empty when it cannot be read.
    static std::string ReadFolderList(const env::VBProject& project);

    // ---- the code view ----

    // The tree's Expand event: on a component node, replaces the placeholder by the code tree.
    // Other nodes open as the control opens them (done, nothing to build).
    Outcome HandleExpand(tree::Node& node);
    // The tree's Collapse event: a component node keeps only its placeholder (the node itself
    // stays, as the control is notifying about it), a folder node closes its components, a
    // project node is left alone.
    Outcome HandleCollapse(tree::Node& node);
    // What a click on the control does: sets the state, then runs the handler.
    Outcome ExpandNode(tree::Node& node);
    Outcome CollapseNode(tree::Node& node);
    // Analyses the code of the component being expanded and shows it, within the node limits.
    void BuildCodeTree(std::string_view componentKey, std::string_view codeText);
    // Adds a code node for each line below `parentLine`, under `parentNode`, depth first.
    void ShowLines(std::string_view componentKey, const analysis::clsLine& parentLine,
                   const tree::NodeRef& parentNode);

    // ---- keeping in step with the environment ----

    // Removes the component's node with everything below it; a missing node is skipped.
    void RemoveComponentNode(std::string_view componentName, std::string_view projectName);

    void ProjectAdded(const env::VBProject& project);
    void ProjectRemoved(const env::VBProject& project);
    void ProjectRenamed(const env::VBProject& project, std::string_view oldName);
    void ComponentAdded(const env::VBComponent& component);
    void ComponentRemoved(const env::VBComponent& component);
    void ComponentRenamed(const env::VBComponent& component, std::string_view oldName);
    void ComponentReloaded(const env::VBComponent& component);
    void ComponentActivated(const env::VBComponent& component);

    // ---- editing the tree ----

    // After the caption of `node` was edited to `newText`: renames the project, component or
    // folder. Anything but done means the old caption stays.
    Outcome AfterLabelEdit(tree::Node& node, std::string_view newText);
    // A component node (its key dragged as text) dropped on a folder node.
    Outcome DropComponent(std::string_view draggedKey, tree::Node& target);
    // Files from the file system dropped on a project or folder node: done when every
    // component file among them was added, else the first refusal or failure.
    Outcome DropFiles(const std::vector<std::string>& files, tree::Node& target);

    // ---- commands on the node a menu was opened on ----

    // The project a node belongs to (any kind of node), and the component of a component,
    // placeholder or code node; nullptr when there is none.
    env::VBProjectRef ProjectOfNode(const tree::Node& node) const;
    env::VBComponentRef ComponentOfNode(const tree::Node& node) const;
    // Makes the node's project the start-up project; its node becomes the one bold project.
    Outcome SetStartUpProject(const tree::Node& node);
    // Takes the node's component out of its project ("Must Be Saved First." for one that has no
    // file yet). The environment's removal event takes the node away.
    Outcome RemoveComponent(const tree::Node& node);

    // The event sources taken at the last full reload (nullptr before it).
    std::shared_ptr<env::VBProjectsEvents> projEvents;
    std::shared_ptr<env::VBComponentsEvents> compEvents;

  private:
    class ProjectSink;
    class ComponentSink;
    // What the code view keeps of a component whose code tree is shown.
    struct CodeTreeState {
        std::int32_t lineCount = 0;
    };

    tree::Nodes& Nodes() const { return treeView_.Nodes(); }
    tree::NodeRef AddSortedFolderNode(const tree::Node& projectNode, std::string_view projectName,
                                      std::string_view folderName);
    tree::NodeRef AddSortedComponentNode(const tree::Node& folderNode, const std::string& key,
                                         std::string_view componentName);
    void LoadFolders(const env::VBProject& project, const std::string& projectName);
    void LoadComponents(const env::VBProject& project, const std::string& projectName);
    void MarkStartProject(const std::string& projectName, tree::Node& projectNode) const;
    void TakeEventSources();
    void DisconnectEventSources();
    std::string AskFolderName(const env::VBProject& project);

    env::VBComponentRef FindComponent(std::string_view componentKey) const;
    tree::NodeRef ProjectNodeOf(const tree::Node& node) const;
    void ShowPlaceholder(tree::Node& componentNode);
    env::VBProjectRef FindProject(std::string_view projectName) const;
    std::string CodeOf(std::string_view componentKey) const;
    bool MakeRoomFor(std::int32_t lineCount, const std::string& expandingKey);
    tree::NodeRef AddCodeNode(std::string_view componentKey, const analysis::clsLine& line,
                              tree::Node& parent);
    void ShowComponentAgain(const env::VBComponent& component, const std::string& projectName);
    void RemoveNodeAndEmptyFolder(const std::string& componentKey);
    Outcome RenameProject(tree::Node& node, std::string_view newText);
    Outcome RenameComponent(tree::Node& node, std::string_view newText);
    Outcome RenameFolder(tree::Node& node, std::string_view newText);
    Outcome AddDroppedFile(env::VBProject& project, const std::string& file,
                           const std::string& customFolder);
    // Shows a refusal and returns it.
    Outcome Refuse(std::string_view prompt, MsgBoxIcon icon, std::string_view title);

    std::shared_ptr<env::VBE> vbe_;
    tree::TreeView& treeView_;
    UiServices& ui_;
    analysis::FixedDisplayOptions defaultOptions_;
    analysis::IDisplayOptionSource& displayOptions_;
    // Per component key, the components whose code tree is shown; made anew at every reload.
    std::map<std::string, CodeTreeState> d_components;
    std::shared_ptr<ProjectSink> projectSink_;
    std::shared_ptr<ComponentSink> componentSink_;
    env::VBProjectsEvents::Cookie projectCookie_ = 0;
    env::VBComponentsEvents::Cookie componentCookie_ = 0;
};

}  // namespace arbolet::explorer

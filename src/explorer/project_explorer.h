// The project tree: one node per open project, its folders (fixed groups by component type and
// the developer's own folders) and its components, built from the environment and kept in a
// keyed tree; and the custom folders, stored with the projects' and components' own files.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "environment/vbide.h"
#include "explorer/node_keys.h"
#include "explorer/ui_services.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

class ProjectExplorer {
  public:
    // The environment may be nullptr (not connected): the tree then stays empty.
    ProjectExplorer(std::shared_ptr<env::VBE> vbe, tree::TreeView& treeView, UiServices& ui);

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
    void SetComponentFolder(env::VBComponent& component, std::string_view folderName);
    void AddFolder(env::VBProject& project, std::string_view folderName);
    void RemoveFolder(env::VBProject& project, std::string_view folderName);
    // The interactive command: asks for a name and adds the folder to the project of the node.
    void NewFolder(std::string_view nodeKey);

    // The project's folder list as stored (";A;B;"), empty when it cannot be read.
    static std::string ReadFolderList(const env::VBProject& project);

    // The event sources taken at the last full reload (nullptr before it).
    std::shared_ptr<env::VBProjectsEvents> projEvents;
    std::shared_ptr<env::VBComponentsEvents> compEvents;

  private:
    tree::Nodes& Nodes() const { return treeView_.Nodes(); }
    tree::NodeRef AddSortedFolderNode(const tree::Node& projectNode, std::string_view projectName,
                                      std::string_view folderName);
    tree::NodeRef AddSortedComponentNode(const tree::Node& folderNode, const std::string& key,
                                         std::string_view componentName);
    void LoadFolders(const env::VBProject& project, const std::string& projectName);
    void LoadComponents(const env::VBProject& project, const std::string& projectName);
    void MarkStartProject(const std::string& projectName, tree::Node& projectNode) const;
    void TakeEventSources();
    std::string AskFolderName();

    std::shared_ptr<env::VBE> vbe_;
    tree::TreeView& treeView_;
    UiServices& ui_;
};

}  // namespace arbolet::explorer

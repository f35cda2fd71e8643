// arbolet/projectTree: the explorer's project tree over the workspace's disk environment.
#include <set>
#include <vector>

#include "disk/file_io.h"
#include "disk/group_file.h"
#include "disk/vb_path.h"
#include "explorer/node_keys.h"
#include "explorer/project_explorer.h"
#include "lsp/project_features.h"
#include "treemodel/memory_tree.h"

namespace arbolet::lsp {
namespace {

namespace fs = std::filesystem;

// The tree asks nothing while it is built; a message it would show has nobody to read it.
class SilentUi final : public explorer::UiServices {
  public:
    void MsgBox(std::string_view, explorer::MsgBoxIcon, std::string_view) override {}
    std::string InputBox(std::string_view, std::string_view, std::string_view) override {
        return {};
    }
    void Beep() override {}
};

const char* ComponentIcon(env::ComponentType type) {
    switch (type) {
        case env::ComponentType::ClassModule:
            return "class";
        case env::ComponentType::VBForm:
            return "form";
        case env::ComponentType::VBMDIForm:
            return "mdiform";
        case env::ComponentType::UserControl:
            return "usercontrol";
        case env::ComponentType::PropPage:
            return "propertypage";
        case env::ComponentType::DocObject:
            return "userdocument";
        case env::ComponentType::MSForm:
        case env::ComponentType::ActiveXDesigner:
            return "designer";
        case env::ComponentType::RelatedDocument:
            return "relateddoc";
        case env::ComponentType::ResFile:
            return "resource";
        case env::ComponentType::StdModule:
            break;
    }
    return "module";
}

class TreeWriter {
  public:
    explicit TreeWriter(explorer::ProjectExplorer& explorer) : explorer_(explorer) {}

    // The node and everything below it, without recursion so that no tree is too deep.
    Json Write(const tree::NodeRef& root) {
        struct Frame {
            tree::NodeRef node;
            Json json;
        };
        std::vector<Frame> frames;
        frames.push_back({root, Describe(*root)});
        tree::NodeRef next = root->Child();
        while (true) {
            while (next && next->Kind() == tree::NodeKind::Placeholder)
                next = next->Next();
            if (next) {
                frames.push_back({next, Describe(*next)});
                next = next->Child();
                continue;
            }
            Frame done = std::move(frames.back());
            frames.pop_back();
            if (frames.empty()) return std::move(done.json);
            frames.back().json["children"].push_back(std::move(done.json));
            next = done.node->Next();
        }
    }

  private:
    Json Describe(const tree::Node& node) {
        Json json{{"key", node.Key()}, {"text", node.Text()}, {"bold", node.Bold()}};
        const auto image = node.Image();
        json["image"] = image ? Json(*image) : Json(nullptr);
        const env::VBProjectRef project = explorer_.ProjectOfNode(node);
        if (project)
            json["project"] =
                UriFromPath(disk::AbsolutePath(disk::PathFromUtf8(project->FileName())));
        switch (node.Kind()) {
            case tree::NodeKind::Project:
                json["kind"] = "project";
                json["icon"] = node.Bold() ? "project-startup" : "project";
                if (project) json["uri"] = json["project"];
                break;
            case tree::NodeKind::Folder: {
                json["kind"] = "folder";
                const bool custom = !explorer::IsFixedGroupName(node.Text());
                json["custom"] = custom;
                json["icon"] =
                    custom ? "custom-folder" : (node.Expanded() ? "folder-open" : "folder-closed");
                break;
            }
            default: {
                json["kind"] = "component";
                const env::VBComponentRef component = explorer_.ComponentOfNode(node);
                json["icon"] = component ? ComponentIcon(component->Type()) : "module";
                if (component && component->FileCount() > 0) {
                    try {
                        json["uri"] = UriFromPath(
                            disk::AbsolutePath(disk::PathFromUtf8(component->FileNames(1))));
                    } catch (const std::exception&) {
                        // A component without a file yet has no uri.
                    }
                }
                break;
            }
        }
        json["children"] = Json::array();
        return json;
    }

    explorer::ProjectExplorer& explorer_;
};

// The projects a .vbp or .vbg names, as identity paths.
std::set<fs::path> ProjectsNamedBy(const fs::path& file, int codePage) {
    std::set<fs::path> projects;
    if (!disk::HasExtension(file, ".vbg")) {
        projects.insert(disk::PathIdentity(file));
        return projects;
    }
    try {
        const disk::GroupFile group = disk::ParseGroupFile(disk::ReadFileBytes(file), codePage);
        for (const auto& member : group.projects) {
            if (auto path = disk::ResolveVbPath(file.parent_path(), member.path)) {
                projects.insert(disk::PathIdentity(*path));
            }
        }
    } catch (const disk::FileError& error) {
        throw RequestError(error_code::kRequestFailed, error.what());
    }
    return projects;
}

}  // namespace

Json ProjectTree(const std::shared_ptr<disk::DiskEnvironment>& environment,
                 const std::optional<fs::path>& project) {
    Json nodes = Json::array();
    if (!environment) return Json{{"nodes", nodes}};
    std::set<fs::path> wanted;
    if (project) wanted = ProjectsNamedBy(*project, disk::kDefaultCodePage);
    tree::MemoryTreeView view;
    SilentUi ui;
    explorer::ProjectExplorer explorer(environment, view, ui);
    explorer.RefreshProjects();
    TreeWriter writer(explorer);
    for (tree::NodeRef node = tree::FirstRoot(view.Nodes()); node; node = node->Next()) {
        if (project) {
            const env::VBProjectRef owner = explorer.ProjectOfNode(*node);
            if (!owner ||
                !wanted.contains(disk::PathIdentity(disk::PathFromUtf8(owner->FileName())))) {
                continue;
            }
        }
        nodes.push_back(writer.Write(node));
    }
    return Json{{"nodes", std::move(nodes)}};
}

}  // namespace arbolet::lsp

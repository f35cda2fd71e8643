// The layers ARCHITECTURE.md draws, held against the code: its table says which library folders
// each library may use; CMake must link nothing beyond that, and every #include of a library
// folder in src/ and apps/ must name the folder's own library or one it links (directly or
// through the libraries it links).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace arbolet::architecture {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = ARBOLET_SOURCE_DIR;

struct Layer {
    std::string folder;                  // "explorer", "windows/base", "apps/explorer"
    std::vector<std::string> libraries;  // the CMake targets the folder builds
    std::set<std::string> uses;          // folders, as in `folder`
};
using Layers = std::map<std::string, Layer>;

std::string ReadText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> Cells(const std::string& row) {
    std::vector<std::string> cells;
    std::stringstream items(row);
    std::string cell;
    std::getline(items, cell, '|');  // before the first bar
    while (std::getline(items, cell, '|')) {
        std::erase(cell, '`');
        const auto first = cell.find_first_not_of(' ');
        const auto last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    return cells;
}

std::vector<std::string> List(const std::string& cell) {
    std::vector<std::string> items;
    std::stringstream stream(cell);
    std::string item;
    while (std::getline(stream, item, ',')) {
        const auto first = item.find_first_not_of(' ');
        if (first != std::string::npos) items.push_back(item.substr(first));
    }
    return items;
}

// The table whose header is "| folder | library | uses |"; `error` says what is wrong with it.
Layers ParseLayers(const std::string& markdown, std::string& error) {
    Layers layers;
    std::stringstream lines(markdown);
    std::string line;
    bool inTable = false;
    while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!inTable) {
            inTable = Cells(line) == std::vector<std::string>{"folder", "library", "uses"};
            continue;
        }
        if (!line.starts_with("|")) break;
        if (line.starts_with("|---")) continue;
        const std::vector<std::string> cells = Cells(line);
        if (cells.size() < 3) {
            error = "a row without three cells: " + line;
            return {};
        }
        Layer layer;
        layer.folder = cells[0].starts_with("src/") ? cells[0].substr(4) : cells[0];
        layer.libraries = List(cells[1]);
        for (const std::string& used : List(cells[2]))
            layer.uses.insert(used);
        layers[layer.folder] = layer;
    }
    if (layers.empty()) error = "no table | folder | library | uses |";
    for (const auto& [folder, layer] : layers) {
        for (const std::string& used : layer.uses) {
            if (!layers.contains(used)) error = folder + " uses " + used + ", which has no row";
        }
    }
    return layers;
}

// The folders reachable from `start` over `edges`, `start` included.
std::set<std::string> Reachable(const std::map<std::string, std::set<std::string>>& edges,
                                const std::string& start) {
    std::set<std::string> seen{start};
    std::vector<std::string> pending{start};
    while (!pending.empty()) {
        const std::string folder = pending.back();
        pending.pop_back();
        const auto found = edges.find(folder);
        if (found == edges.end()) continue;
        for (const std::string& next : found->second) {
            if (seen.insert(next).second) pending.push_back(next);
        }
    }
    return seen;
}

// A folder that uses itself through others.
std::string FindCycle(const Layers& layers) {
    std::map<std::string, std::set<std::string>> edges;
    for (const auto& [folder, layer] : layers)
        edges[folder] = layer.uses;
    for (const auto& [folder, layer] : layers) {
        for (const std::string& used : layer.uses) {
            if (Reachable(edges, used).contains(folder)) return folder + " and " + used;
        }
    }
    return {};
}

fs::path FolderPath(const std::string& folder) {
    return folder.starts_with("apps/") ? kSource / folder : kSource / "src" / folder;
}

// What the folder's CMakeLists.txt links its libraries to, as folders of the table.
std::set<std::string> LinkedFolders(const Layers& layers, const Layer& layer) {
    std::map<std::string, std::string> folderOf;
    for (const auto& [folder, other] : layers) {
        for (const std::string& library : other.libraries)
            folderOf[library] = folder;
    }
    std::set<std::string> linked;
    const std::string cmake = ReadText(FolderPath(layer.folder) / "CMakeLists.txt");
    static const std::regex kLink(R"(target_link_libraries\(\s*([^\s)]+)([^)]*)\))");
    for (auto it = std::sregex_iterator(cmake.begin(), cmake.end(), kLink);
         it != std::sregex_iterator(); ++it) {
        const std::string target = (*it)[1];
        if (std::find(layer.libraries.begin(), layer.libraries.end(), target) ==
            layer.libraries.end())
            continue;
        std::stringstream tokens((*it)[2].str());
        std::string token;
        while (tokens >> token) {
            const auto found = folderOf.find(token);
            if (found != folderOf.end() && found->second != layer.folder)
                linked.insert(found->second);
        }
    }
    return linked;
}

Layers TheLayers() {
    std::string error;
    Layers layers = ParseLayers(ReadText(kSource / "ARCHITECTURE.md"), error);
    EXPECT_EQ(error, "");
    return layers;
}

bool Exists(const Layer& layer) {
    return fs::is_directory(FolderPath(layer.folder));
}

TEST(Layers, TheTableParsesAndAFolderNeverUsesItselfThroughOthers) {
    const Layers layers = TheLayers();
    ASSERT_TRUE(layers.contains("base"));
    EXPECT_TRUE(layers.at("base").uses.empty()) << "the bottom layer";
    EXPECT_EQ(FindCycle(layers), "");
    for (const auto& [folder, layer] : layers)
        EXPECT_FALSE(layer.libraries.empty()) << folder;

    // The checks themselves: a broken table is reported.
    std::string error;
    const Layers cyclic = ParseLayers(
        "| folder | library | uses |\n|---|---|---|\n| `src/a` | `la` | `b` |\n"
        "| `src/b` | `lb` | `a` |\n",
        error);
    EXPECT_EQ(error, "");
    EXPECT_NE(FindCycle(cyclic), "");
    ParseLayers("| folder | library | uses |\n|---|---|---|\n| `src/a` | `la` | `nowhere` |\n",
                error);
    EXPECT_EQ(error, "a uses nowhere, which has no row");
}

TEST(Layers, CMakeLinksOnlyWhatTheTableLetsEachLibraryUse) {
    const Layers layers = TheLayers();
    for (const auto& [folder, layer] : layers) {
        if (!Exists(layer) || !fs::exists(FolderPath(folder) / "CMakeLists.txt")) continue;
        for (const std::string& linked : LinkedFolders(layers, layer)) {
            EXPECT_TRUE(layer.uses.contains(linked))
                << folder << " links " << linked << ", which the table does not let it use";
        }
    }
}

TEST(Layers, EveryIncludeNamesTheOwnLibraryOrOneItLinks) {
    const Layers layers = TheLayers();
    std::map<std::string, std::set<std::string>> links;
    for (const auto& [folder, layer] : layers) {
        if (Exists(layer) && fs::exists(FolderPath(folder) / "CMakeLists.txt"))
            links[folder] = LinkedFolders(layers, layer);
    }
    static const std::regex kInclude(R"(^\s*#\s*include\s*"([^"]+)\")");
    int checked = 0;
    for (const auto& [folder, layer] : layers) {
        if (!Exists(layer)) continue;
        const std::set<std::string> allowed = Reachable(links, folder);
        const fs::path root = FolderPath(folder);
        for (auto it = fs::recursive_directory_iterator(root);
             it != fs::recursive_directory_iterator(); ++it) {
            const fs::path relative = fs::relative(it->path(), FolderPath(folder));
            // A sub-folder with a row of its own is checked as that row.
            if (it->is_directory()) {
                const std::string inner = (fs::path(folder) / relative).generic_string();
                if (layers.contains(inner)) it.disable_recursion_pending();
                continue;
            }
            const std::string extension = it->path().extension().string();
            if (extension != ".h" && extension != ".cpp") continue;
            std::stringstream lines(ReadText(it->path()));
            std::string line;
            for (int number = 1; std::getline(lines, line); ++number) {
                std::smatch match;
                if (!std::regex_search(line, match, kInclude)) continue;
                const std::string included =
                    fs::path(match[1].str()).parent_path().generic_string();
                if (included.empty()) continue;  // a header beside the file
                ++checked;
                const std::string where =
                    (root / relative).lexically_relative(kSource).generic_string() + ":" +
                    std::to_string(number);
                if (!layers.contains(included)) {
                    EXPECT_FALSE(fs::is_directory(kSource / "src" / included))
                        << where << " includes " << match[1] << " from a folder the table lacks";
                    continue;
                }
                EXPECT_TRUE(allowed.contains(included))
                    << where << " includes " << match[1] << ", but " << folder << " does not link "
                    << included;
            }
        }
    }
    EXPECT_GT(checked, 300) << "the includes of src/ and apps/ were read";
}

}  // namespace
}  // namespace arbolet::architecture

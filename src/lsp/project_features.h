// The project tree and its commands, for editors that show Arbolet's tree beside the code:
// arbolet/projectTree, and workspace/executeCommand over the same explorer operations the
// command line runs.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "disk/disk_environment.h"
#include "lsp/protocol.h"

namespace arbolet::lsp {

// {"nodes": Node[]}: projects, folders and components as the explorer builds them from the
// environment, without the "Code List" placeholders. With `project`, only that project (a
// .vbp) or the projects of that group (a .vbg).
Json ProjectTree(const std::shared_ptr<disk::DiskEnvironment>& environment,
                 const std::optional<std::filesystem::path>& project);

// The commands workspace/executeCommand runs.
inline constexpr const char* kProjectCommands[] = {
    "arbolet.folders.add",  "arbolet.folders.remove", "arbolet.folders.rename",
    "arbolet.folders.move", "arbolet.rename",
};

// Says why the files may not be written (a file open in the editor with unsaved changes), or
// nothing when they may.
using WriteGuard =
    std::function<std::optional<std::string>(const std::vector<std::filesystem::path>&)>;

// Runs a command on the project its first argument names and saves what it changed. Raises
// RequestError: RequestFailed with the command line's message for a refusal, InvalidParams for
// arguments of the wrong form. Returns the .vbp that changed.
std::filesystem::path RunProjectCommand(const std::string& command, const Json& arguments,
                                        int codePage, const WriteGuard& mayWrite);

}  // namespace arbolet::lsp

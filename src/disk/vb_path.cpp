// Case-insensitive resolution of the paths in project and group files (see vb_path.h).
#include "disk/vb_path.h"

#include <algorithm>
#include <cwctype>
#include <system_error>
#include <vector>

#include "base/utf8.h"

namespace arbolet::disk {
namespace fs = std::filesystem;
namespace {

std::vector<std::string_view> SplitParts(std::string_view path) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= path.size(); ++i) {
        if (i == path.size() || path[i] == '\\' || path[i] == '/') {
            if (i > start) parts.push_back(path.substr(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

bool HasDriveLetter(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' &&
           ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
}

// Where resolution starts: the folder for a relative path, a root for an absolute one.
std::optional<fs::path> StartOf(const fs::path& folder, std::string_view vbPath,
                                [[maybe_unused]] std::vector<std::string_view>& parts) {
    if (HasDriveLetter(vbPath)) {
#ifdef _WIN32
        parts.erase(parts.begin());
        return PathFromUtf8(std::string(vbPath.substr(0, 2)) + "\\");
#else
        return std::nullopt;
#endif
    }
    if (!vbPath.empty() && (vbPath[0] == '\\' || vbPath[0] == '/')) {
#ifdef _WIN32
        if (vbPath.starts_with("\\\\") && parts.size() >= 2) {
            fs::path share =
                PathFromUtf8("\\\\" + std::string(parts[0]) + "\\" + std::string(parts[1]) + "\\");
            parts.erase(parts.begin(), parts.begin() + 2);
            return share;
        }
        return folder.root_path();
#else
        return fs::path("/");
#endif
    }
    return AbsolutePath(folder);
}

}  // namespace

fs::path PathFromUtf8(std::string_view text) {
    return fs::path(std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

std::string PathToUtf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

std::optional<fs::path> ResolveVbPath(const fs::path& folder, std::string_view vbPath) {
    return VbPathResolver().Resolve(folder, vbPath);
}

std::optional<fs::path> VbPathResolver::FindIgnoringCase(const fs::path& folder,
                                                         std::string_view part) {
    auto [listing, fresh] = listings_.try_emplace(folder);
    if (fresh) {
        std::error_code ec;
        for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
            listing->second.try_emplace(text::ToLower(PathToUtf8(it->path().filename())),
                                        it->path());
        }
    }
    const auto found = listing->second.find(text::ToLower(part));
    if (found == listing->second.end()) return std::nullopt;
    return found->second;
}

std::optional<fs::path> VbPathResolver::Resolve(const fs::path& folder, std::string_view vbPath) {
    std::vector<std::string_view> parts = SplitParts(vbPath);
    std::optional<fs::path> current = StartOf(folder, vbPath, parts);
    if (!current || parts.empty()) return std::nullopt;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::string_view part = parts[i];
        if (part == ".") continue;
        if (part == "..") {
            current = current->parent_path();
            continue;
        }
        // One look-up per part: folders on the way, the file itself at the end.
        const bool last = i + 1 == parts.size();
        fs::path exact = *current / PathFromUtf8(part);
        std::error_code ec;
        if (last ? fs::is_regular_file(exact, ec) : fs::is_directory(exact, ec)) {
            current = std::move(exact);
        } else if (auto found = FindIgnoringCase(*current, part)) {
            current = std::move(*found);
        } else {
            return std::nullopt;
        }
    }
    std::error_code ec;
    if (!fs::is_regular_file(*current, ec)) return std::nullopt;
    return current;
}

fs::path AbsolutePath(const fs::path& path) {
    std::error_code ec;
    fs::path absolute = path.empty() ? fs::current_path(ec) : fs::absolute(path, ec);
    if (ec) return path;
    absolute = absolute.lexically_normal();
    if (!absolute.has_filename() && absolute != absolute.root_path()) {
        absolute = absolute.parent_path();
    }
    return absolute;
}

fs::path Canonical(const fs::path& path) {
    std::error_code ec;
    fs::path canonical = fs::weakly_canonical(path, ec);
    return ec ? path : canonical;
}

fs::path PathIdentity(const fs::path& path) {
#ifdef _WIN32
    std::wstring text = Canonical(path).wstring();
    for (wchar_t& c : text)
        c = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
    return fs::path(text);
#else
    return Canonical(path);
#endif
}

bool SameFileOnWindows(const fs::path& a, const fs::path& b) {
    return text::ToLower(PathToUtf8(PathIdentity(a).generic_u8string())) ==
           text::ToLower(PathToUtf8(PathIdentity(b).generic_u8string()));
}

bool FileNameTaken(const fs::path& folder, std::string_view fileName) {
    return ResolveVbPath(folder, fileName).has_value();
}

std::optional<std::string> SpellingInFolder(const fs::path& folder, std::string_view fileName) {
    const std::string wanted = text::ToLower(fileName);
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec); !ec && it != fs::directory_iterator();
         it.increment(ec)) {
        std::string name = PathToUtf8(it->path().filename());
        if (text::ToLower(name) == wanted) return name;
    }
    return std::nullopt;
}

std::string VbPathFor(const fs::path& file, const fs::path& projectFolder) {
    const fs::path folder = AbsolutePath(projectFolder);
    fs::path relative = AbsolutePath(file).lexically_relative(folder);
    // Through a linked folder the lexical path can climb out of the project's folder although
    // the file lies inside it; the resolved paths tell.
    if (relative.empty() || *relative.begin() == "..") {
        const fs::path resolved = Canonical(file).lexically_relative(Canonical(folder));
        if (!resolved.empty() && (relative.empty() || *resolved.begin() != "..")) {
            relative = resolved;
        }
    }
    std::string text = PathToUtf8(relative.empty() ? AbsolutePath(file) : relative);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::string ShownBeside(const std::string& namingFile, std::string_view vbPath) {
    std::string relative(vbPath);
    std::replace(relative.begin(), relative.end(), '\\', '/');
    const fs::path shown = (PathFromUtf8(namingFile).parent_path() / PathFromUtf8(relative));
    return PathToUtf8(shown.lexically_normal().generic_u8string());
}

bool HasExtension(const fs::path& path, std::string_view lowerExtension) {
    return text::ToLower(PathToUtf8(path.extension())) == lowerExtension;
}

std::string ShownPath(const std::filesystem::path& file) {
    std::error_code ec;
    const std::filesystem::path relative =
        file.lexically_relative(std::filesystem::current_path(ec));
    const bool below = !ec && !relative.empty() && *relative.begin() != "..";
    return PathToUtf8((below ? relative : file).generic_u8string());
}

}  // namespace arbolet::disk

// Golden-file loading, comparison and update mode (see golden.h).
#include "support/golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace arbolet::testing {
namespace {

constexpr const char* kInputMarker = "=== input";
constexpr const char* kExpectedMarker = "=== expected";

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::stringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string Join(const std::vector<std::string>& lines, std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t i = from; i < to; ++i)
        text += lines[i] + "\n";
    return text;
}

bool UpdateMode() {
    const char* value = std::getenv("ARBOLET_UPDATE_GOLDEN");
    return value != nullptr && std::string(value) == "1";
}

}  // namespace

GoldenCase LoadGolden(const std::filesystem::path& path) {
    GoldenCase golden;
    golden.path = path;
    const auto lines = SplitLines(ReadAll(path));
    const auto input = std::find(lines.begin(), lines.end(), kInputMarker);
    const auto expected = std::find(lines.begin(), lines.end(), kExpectedMarker);
    if (input == lines.end() || expected == lines.end() || expected < input) {
        ADD_FAILURE() << path << ": needs '" << kInputMarker << "' before '" << kExpectedMarker
                      << "'";
        return golden;
    }
    for (auto it = lines.begin(); it != input; ++it) {
        if (it->rfind("options:", 0) != 0) continue;
        std::stringstream words(it->substr(8));
        for (std::string word; words >> word;)
            golden.options.push_back(word);
    }
    const auto at = [&](auto it) { return static_cast<std::size_t>(it - lines.begin()); };
    golden.input = Join(lines, at(input) + 1, at(expected));
    golden.expected = Join(lines, at(expected) + 1, lines.size());
    return golden;
}

std::vector<std::filesystem::path> GoldenFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void CheckGolden(const GoldenCase& golden, const std::string& actual) {
    if (UpdateMode()) {
        const std::string text = ReadAll(golden.path);
        const auto marker = text.find(std::string(kExpectedMarker) + "\n");
        std::ofstream out(golden.path, std::ios::binary | std::ios::trunc);
        out << text.substr(0, marker) << kExpectedMarker << "\n" << actual;
        return;
    }
    if (actual == golden.expected) return;
    const auto want = SplitLines(golden.expected);
    const auto got = SplitLines(actual);
    std::size_t line = 0;
    while (line < want.size() && line < got.size() && want[line] == got[line])
        ++line;
    ADD_FAILURE() << golden.path.filename().string() << ": output differs at expected line "
                  << line + 1 << "\n  expected: " << (line < want.size() ? want[line] : "<end>")
                  << "\n  actual:   " << (line < got.size() ? got[line] : "<end>")
                  << "\n--- whole actual output ---\n"
                  << actual;
}

bool HasOption(const GoldenCase& golden, const std::string& option) {
    return std::find(golden.options.begin(), golden.options.end(), option) != golden.options.end();
}

}  // namespace arbolet::testing

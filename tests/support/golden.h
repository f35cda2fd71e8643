// Golden files: readable text holding an input and the output expected from it, checked by one
// helper. Run with ARBOLET_UPDATE_GOLDEN=1 to rewrite the expected sections from actual output.
//
// Layout of a golden file:
//   # comment lines describing the case
//   options: <words>          (optional)
//   === input
//   <input text>
//   === expected
//   <expected output>
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace arbolet::testing {

struct GoldenCase {
    std::filesystem::path path;
    std::vector<std::string> options;
    std::string input;
    std::string expected;
};

GoldenCase LoadGolden(const std::filesystem::path& path);

// Every golden file (*.txt) in a folder, sorted by name.
std::vector<std::filesystem::path> GoldenFiles(const std::filesystem::path& folder);

// Compares actual output with the case's expected output (a gtest failure on difference, naming
// the first differing line); in update mode rewrites the file instead.
void CheckGolden(const GoldenCase& golden, const std::string& actual);

bool HasOption(const GoldenCase& golden, const std::string& option);

}  // namespace arbolet::testing

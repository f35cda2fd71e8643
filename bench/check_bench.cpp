// `arbolet check` over a folder of 20 MB of generated component files, both cores working, under
// the VB6 rules (the default) and under the tool window's rules (the only ones before).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/cli.h"
#include "generated_code.h"

namespace {
namespace fs = std::filesystem;

fs::path MakeFolder(std::size_t totalBytes) {
    const fs::path folder = fs::temp_directory_path() / "arbolet-check-bench";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const std::string module = arbolet::bench::GenerateModule(3000);
    const std::size_t files = totalBytes / module.size() + 1;
    for (std::size_t i = 0; i < files; ++i) {
        std::ofstream(folder / ("mod" + std::to_string(i) + ".bas"), std::ios::binary)
            << "Attribute VB_Name = \"mod" << i << "\"\r\n"
            << module;
    }
    return folder;
}

void CheckTwentyMegabytes(benchmark::State& state, const char* rules) {
    const fs::path folder = MakeFolder(20u << 20);
    const std::string path = folder.string();
    const char* argv[] = {"arbolet", "check", "--rules", rules, path.c_str()};
    for (auto _ : state) {
        std::ostringstream out;
        std::ostringstream err;
        const int status = arbolet::cli::RunArbolet(5, argv, {out, err, false});
        if (status != 0) state.SkipWithError("check found errors in generated code");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * (20 << 20));
    fs::remove_all(folder);
}

}  // namespace

BENCHMARK_CAPTURE(CheckTwentyMegabytes, vb6, "vb6")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(CheckTwentyMegabytes, window, "window")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_MAIN();

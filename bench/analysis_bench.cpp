// Throughput of the whole analysis (preparation, build, validation) in bytes of code per second,
// and of the VB6 block check that `arbolet check` runs instead (target: 250 MB/s on one core).
#include <benchmark/benchmark.h>

#include "analysis/code_tree.h"
#include "analysis/vb6_blocks.h"
#include "generated_code.h"

namespace {

void BuildCodeTreeOfLargeModule(benchmark::State& state,
                                arbolet::analysis::DisplayOptions options) {
    const std::string code = arbolet::bench::GenerateModule(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto tree = arbolet::analysis::BuildCodeTree(code, options);
        benchmark::DoNotOptimize(tree.root);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(code.size()));
    state.counters["lines"] = static_cast<double>(state.range(0));
}

void DefaultOptions(benchmark::State& state) {
    BuildCodeTreeOfLargeModule(state, {});
}

void SortedByName(benchmark::State& state) {
    BuildCodeTreeOfLargeModule(state, arbolet::analysis::DisplayOptions{.SortByName = true});
}

void Vb6BlockCheck(benchmark::State& state) {
    const std::string code = arbolet::bench::GenerateModule(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto findings = arbolet::analysis::vb6::CheckBlocks(code);
        if (!findings.empty()) state.SkipWithError("the generated code has block errors");
        benchmark::DoNotOptimize(findings.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(code.size()));
}

}  // namespace

BENCHMARK(Vb6BlockCheck)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(DefaultOptions)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(SortedByName)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();

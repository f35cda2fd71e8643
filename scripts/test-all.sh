#!/usr/bin/env bash
# Builds everything (native, and Windows under Wine) and runs every test. What CI runs. Each step
# prints its duration, and the run ends with a table of them.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing "${NATIVE_PACKAGES[@]}"
# The language server's and the VS Code extension's tests run on Node and npm: the machine's own
# when it has them (a newer Node), else Debian's.
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
    install_packages_if_missing nodejs npm
fi
use_compiler_cache

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON

# Release rather than RelWithDebInfo: the same optimisation and assertions, without the debug
# information that makes every compile and link slower.
step "native build (warnings as errors: $werror)"
cmake -S . -B build/native -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DARBOLET_WERROR=$werror -DARBOLET_BUILD_BENCH=ON
cmake --build build/native -j "$jobs"

step "native tests"
ctest --test-dir build/native --output-on-failure -j "$jobs"

# The command-line layer's tests run in the native build; leaving it out here saves minutes.
# -O1 keeps the sanitizers' reports exact and runs the tests and fuzzers several times faster
# than -O0.
step "core build under AddressSanitizer and UndefinedBehaviorSanitizer, with the fuzzers"
cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g" \
    -DCMAKE_CXX_COMPILER=clang++ -DARBOLET_WERROR=$werror -DARBOLET_SANITIZE=ON \
    -DARBOLET_BUILD_FUZZ=ON -DARBOLET_BUILD_CLI=OFF
cmake --build build/sanitize -j "$jobs"

step "core tests under the sanitizers, and the fuzzers"
ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

step ""
scripts/windows-tests.sh

step_summary

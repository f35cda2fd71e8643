#!/usr/bin/env bash
# Builds everything (native, and Windows under Wine) and runs every test. What CI runs.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing "${NATIVE_PACKAGES[@]}"
use_compiler_cache

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON

step "native build (warnings as errors: $werror)"
cmake -S . -B build/native -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DARBOLET_WERROR=$werror -DARBOLET_BUILD_BENCH=ON
cmake --build build/native -j "$jobs"
ctest --test-dir build/native --output-on-failure -j "$jobs"

# The command-line layer's tests run in the native build; leaving it out here saves minutes.
step "core tests under AddressSanitizer and UndefinedBehaviorSanitizer, and the fuzzers"
cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
    -DARBOLET_WERROR=$werror -DARBOLET_SANITIZE=ON -DARBOLET_BUILD_FUZZ=ON -DARBOLET_BUILD_CLI=OFF
cmake --build build/sanitize -j "$jobs"
ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

scripts/windows-tests.sh

step "all builds and tests passed"

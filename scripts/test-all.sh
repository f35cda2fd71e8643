#!/usr/bin/env bash
# Builds everything (native, and Windows under Wine) and runs every test. What CI runs.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing "${NATIVE_PACKAGES[@]}"

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON

step "native build (warnings as errors: $werror)"
cmake -S . -B build/native -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DARBOLET_WERROR=$werror -DARBOLET_BUILD_BENCH=ON
cmake --build build/native -j "$jobs"
ctest --test-dir build/native --output-on-failure -j "$jobs"

step "core tests under AddressSanitizer and UndefinedBehaviorSanitizer"
cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
    -DARBOLET_WERROR=$werror -DARBOLET_SANITIZE=ON -DARBOLET_BUILD_FUZZ=ON
cmake --build build/sanitize -j "$jobs"
ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

if [[ -x scripts/windows-tests.sh ]]; then
    scripts/windows-tests.sh
fi

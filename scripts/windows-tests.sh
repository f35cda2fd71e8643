#!/usr/bin/env bash
# The Windows part of CI: cross-builds with mingw-w64, runs the x86_64 tests under wine64 and
# builds the i686 targets (what ships; no 32-bit Wine here to run them). Prints what Wine costs
# and how long this part took. Called by test-all.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing cmake ninja-build ccache mingw-w64 wine64 xvfb googletest fp-utils
use_compiler_cache

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON
# A regular expression of tests to leave out under Wine, for local runs; CI runs them all.
wine_excluded=${ARBOLET_WINE_EXCLUDE-}

started=$(date +%s)
elapsed() { echo $(($(date +%s) - $1)); }

step "Windows x86_64 build (mingw-w64, warnings as errors: $werror)"
t=$(date +%s)
cmake --preset windows-x64 -DARBOLET_WERROR=$werror >/dev/null
cmake --build --preset windows-x64 -j "$jobs"
x64_build=$(elapsed "$t")

step "Windows x86_64 tests under wine64"
t=$(date +%s)
if [[ -n "$wine_excluded" ]]; then
    echo "not run under Wine: $wine_excluded"
    ctest --preset windows-x64 -j "$jobs" -E "$wine_excluded"
else
    ctest --preset windows-x64 -j "$jobs"
fi
wine_tests=$(elapsed "$t")

step "Windows i686 build (mingw-w64, warnings as errors: $werror; built, not run)"
t=$(date +%s)
cmake --preset windows-x86 -DARBOLET_WERROR=$werror >/dev/null
cmake --build --preset windows-x86 -j "$jobs"
x86_build=$(elapsed "$t")

step "Windows part: $(elapsed "$started") s (x86_64 build ${x64_build} s, tests under Wine ${wine_tests} s, i686 build ${x86_build} s)"
cat build/windows-x64/wine-startup.txt

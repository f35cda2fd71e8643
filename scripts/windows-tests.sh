#!/usr/bin/env bash
# The Windows part of CI: cross-builds with mingw-w64 and runs the x86_64 tests under wine64,
# then builds what ships for the VB6 IDE (the i686 programs, the help file and the installer
# packages) and checks the add-in's exports. The i686 programs are never run here: this machine
# runs no 32-bit programs, and the x86_64 tests stand in for them. Called by test-all.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing cmake ninja-build ccache mingw-w64 wine64 xvfb googletest fp-utils
# wixl builds the Windows Installer packages, which a test installs and removes under Wine.
install_packages_if_missing wixl
use_compiler_cache

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON
# A regular expression of tests to leave out under Wine, for local runs; CI runs them all.
wine_excluded=${ARBOLET_WINE_EXCLUDE-}
# The Wine tests mostly wait for windows, timers and Wine's own processes: one more than the
# cores keeps both busy. Tests that share a display never overlap (see cmake/ArboletWine.cmake).
wine_jobs=${ARBOLET_WINE_JOBS:-$((jobs + 1))}

step "Windows x86_64 build (mingw-w64, warnings as errors: $werror)"
cmake --preset windows-x64 -DARBOLET_WERROR=$werror >/dev/null
cmake --build --preset windows-x64 -j "$jobs"

step "Windows x86_64 tests under wine64 ($wine_jobs at a time)"
ctest --preset windows-x64 -j "$wine_jobs" ${wine_excluded:+-E "$wine_excluded"} |
    tee build/windows-x64/wine-tests.log
cat build/windows-x64/wine-startup*.txt
# The ten slowest, to see where the time goes.
echo "slowest tests under Wine (seconds):"
sed -n 's/^ *[0-9]*\/[0-9]* Test *#[0-9]*: \([^ ]*\) .* \([0-9.]*\) sec$/\2 \1/p' \
    build/windows-x64/wine-tests.log | sort -rn | head -10

step "Windows i686 build of what ships (mingw-w64, warnings as errors: $werror)"
cmake --preset windows-x86 -DARBOLET_WERROR=$werror >/dev/null
cmake --build --preset windows-x86 -j "$jobs" --target arbolet_msi

step "Arbolet.dll (i686) exports its entry points undecorated"
scripts/check-dll-exports.sh build/windows-x86/apps/addin/Arbolet.dll

step ""
[[ -n "${ARBOLET_OWNS_STEP_LOG:-}" ]] && step_summary
exit 0

#!/usr/bin/env bash
# The Windows part of CI: cross-builds with mingw-w64 and runs the x86_64 tests under wine64,
# while it builds what ships for the VB6 IDE (the i686 programs, the help file and the installer
# packages), and checks the add-in's exports. The i686 programs are never run here: this machine
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

# The i686 build of what ships needs no Wine, and the Wine tests mostly wait for windows and
# timers: the build runs beside them, at the lowest priority, on the processor time they leave.
i686_log=build/windows-x86-build.log
mkdir -p build
# In a session of its own, so that a failing run stops the whole build with it.
setsid nice -n 19 bash -c 'cmake --preset windows-x86 -DARBOLET_WERROR="$1" >/dev/null &&
    cmake --build --preset windows-x86 -j "$2" --target arbolet_msi' - "$werror" "$jobs" \
    >"$i686_log" 2>&1 &
i686_build=$!
trap 'kill -- -"$i686_build" 2>/dev/null || true' EXIT

step "Windows x86_64 tests under wine64 ($wine_jobs at a time), beside the i686 build"
ctest --preset windows-x64 -j "$wine_jobs" ${wine_excluded:+-E "$wine_excluded"} |
    tee build/windows-x64/wine-tests.log
cat build/windows-x64/wine-startup*.txt
# The ten slowest, to see where the time goes.
echo "slowest tests under Wine (seconds):"
sed -n 's/^ *[0-9]*\/[0-9]* Test *#[0-9]*: \([^ ]*\) .* \([0-9.]*\) sec$/\2 \1/p' \
    build/windows-x64/wine-tests.log | sort -rn | head -10

step "Windows i686 build of what ships (mingw-w64, warnings as errors: $werror): what is left of it"
if ! wait "$i686_build"; then
    cat "$i686_log"
    echo "the i686 build failed" >&2
    exit 1
fi
trap - EXIT
tail -n 3 "$i686_log"

step "Arbolet.dll (i686) exports its entry points undecorated"
scripts/check-dll-exports.sh build/windows-x86/apps/addin/Arbolet.dll

step ""
[[ -n "${ARBOLET_OWNS_STEP_LOG:-}" ]] && step_summary
exit 0

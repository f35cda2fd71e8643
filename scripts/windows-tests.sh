#!/usr/bin/env bash
# The Windows part of CI: cross-builds with mingw-w64, runs the x86_64 tests under wine64, and
# builds the i686 targets (what ships), running them under 32-bit Wine when Debian's wine32 can
# be installed. Prints which Wine ran what, what Wine costs and how long this part took. Called
# by test-all.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing cmake ninja-build ccache mingw-w64 wine64 xvfb googletest
use_compiler_cache

jobs=$(nproc)
werror=OFF; [[ "${CI:-}" == "true" ]] && werror=ON
# A regular expression of tests to leave out under Wine, for local runs; CI runs them all.
wine_excluded=${ARBOLET_WINE_EXCLUDE-}

# Installs 32-bit Wine (wine32 from the i386 architecture), bounded in time. When it cannot be
# installed (the mirror's i386 index may lag behind the 64-bit one), every i386 package and the
# i386 architecture are removed again, so that apt stays healthy.
try_wine32() {
    dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed" && return 0
    [[ $(id -u) -eq 0 ]] || return 1
    dpkg --add-architecture i386
    if timeout 300 apt-get update -qq &&
        DEBIAN_FRONTEND=noninteractive timeout 600 apt-get install -y -qq wine32:i386 >/dev/null; then
        return 0
    fi
    local i386_packages
    i386_packages=$(dpkg-query -W -f='${Package}:${Architecture}\n' 2>/dev/null | grep ':i386$' || true)
    if [[ -n "$i386_packages" ]]; then
        DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq $i386_packages >/dev/null || true
    fi
    dpkg --remove-architecture i386 || true
    timeout 300 apt-get update -qq || true
    return 1
}

started=$(date +%s)

step "32-bit Wine (wine32:i386) for the i686 build"
if try_wine32; then
    wine32_ran=yes
    echo "32-bit Wine is installed: the i686 build's tests run under it"
else
    wine32_ran=no
    echo "32-bit Wine could not be installed: the i686 build is only built, and the x86_64 build's tests under wine64 stand in for it"
fi
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

step "Windows i686 build (mingw-w64, warnings as errors: $werror)"
t=$(date +%s)
cmake --preset windows-x86 -DARBOLET_WERROR=$werror >/dev/null
cmake --build --preset windows-x86 -j "$jobs"
x86_build=$(elapsed "$t")

step "Arbolet.dll (i686) exports its entry points undecorated"
scripts/check-dll-exports.sh build/windows-x86/apps/addin/Arbolet.dll

if [[ "$wine32_ran" == yes ]]; then
    step "Windows i686 tests under 32-bit Wine"
    ctest --test-dir build/windows-x86 --output-on-failure -j "$jobs"
fi

step "Wine that ran the tests: wine64 (x86_64 build)$([[ "$wine32_ran" == yes ]] && echo ", 32-bit wine (i686 build)")"
step "Windows part: $(elapsed "$started") s (x86_64 build ${x64_build} s, tests under Wine ${wine_tests} s, i686 build ${x86_build} s)"
cat build/windows-x64/wine-startup.txt

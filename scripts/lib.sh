# Helpers shared by the build scripts.
# neovim runs the language server's editor test; chromium photographs the VS Code extension's
# tree view in its end-to-end test.
NATIVE_PACKAGES=(cmake ninja-build g++ clang ccache libgtest-dev libbenchmark-dev libcli11-dev
                 nlohmann-json3-dev libfmt-dev neovim chromium)

ARBOLET_STARTED=${ARBOLET_STARTED:-$(date +%s)}
export ARBOLET_STARTED

# Prints a step heading with the seconds since the whole run started.
step() { printf '\n== [%4ss] %s\n' "$(($(date +%s) - ARBOLET_STARTED))" "$*"; }

# Lets CMake compile through ccache when it is installed. Paths are hashed relative to the
# checkout, so a fresh clone reuses what an earlier build of the same sources compiled.
use_compiler_cache() {
    command -v ccache >/dev/null || return 0
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR="$PWD"
    export CCACHE_NOHASHDIR=1
}

# Installs the Debian packages that are not installed yet (the scripts run as root).
install_packages_if_missing() {
    local missing=()
    for p in "$@"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    if ((${#missing[@]})); then
        step "installing ${missing[*]}"
        apt-get update -qq
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
    fi
}

# What scripts/package.sh needs beyond the native build: the Windows cross compilers, wixl for
# the installer, and dpkg-dev for the Debian package's library dependencies.
PACKAGE_PACKAGES=(cmake ninja-build g++ libcli11-dev nlohmann-json3-dev libfmt-dev mingw-w64 wixl
                  dpkg-dev man-db)

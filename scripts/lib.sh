# Helpers shared by the build scripts.
# neovim runs the language server's editor test; chromium photographs the VS Code extension's
# tree view in its end-to-end test.
NATIVE_PACKAGES=(cmake ninja-build g++ clang ccache libgtest-dev libbenchmark-dev libcli11-dev
                 nlohmann-json3-dev libfmt-dev neovim chromium)

ARBOLET_STARTED=${ARBOLET_STARTED:-$(date +%s)}
export ARBOLET_STARTED

# Every step's name and duration, one "seconds<TAB>name" line each, shared by the scripts that one
# run calls, for the summary at its end.
if [[ -z "${ARBOLET_STEP_LOG:-}" ]]; then
    ARBOLET_STEP_LOG=$(mktemp)
    ARBOLET_OWNS_STEP_LOG=1  # this script started the run: it prints the summary
fi
export ARBOLET_STEP_LOG

# The processor seconds (user and system) of every program this script has run and waited for,
# compilers under ninja included: on a machine others share, the wall time of a step says little,
# and this says what the step itself cost.
children_cpu_seconds() {
    # Fields 16 and 17 of /proc/PID/stat (after the command name in parentheses): cutime and
    # cstime, in clock ticks.
    local ticks
    ticks=$(getconf CLK_TCK)
    sed 's/^.*) //' "/proc/$$/stat" | awk -v ticks="$ticks" '{ printf "%d\n", ($14 + $15) / ticks }'
}

# Ends the step running (writing down how long it took, on the clock and in processor time) and,
# given a name, starts the next one: a heading with the seconds since the whole run started.
step() {
    local now cpu
    now=$(date +%s)
    cpu=$(children_cpu_seconds)
    if [[ -n "${ARBOLET_STEP_NAME:-}" ]]; then
        local took=$((now - ARBOLET_STEP_STARTED)) used=$((cpu - ARBOLET_STEP_CPU))
        printf '%s\t%s\t%s\n' "$took" "$used" "$ARBOLET_STEP_NAME" >>"$ARBOLET_STEP_LOG"
        printf -- '-- %s s (processor: %s s): %s\n' "$took" "$used" "$ARBOLET_STEP_NAME"
    fi
    ARBOLET_STEP_NAME="$*"
    ARBOLET_STEP_STARTED=$now
    ARBOLET_STEP_CPU=$cpu
    [[ -n "$*" ]] && printf '\n== [%4ss] %s\n' "$((now - ARBOLET_STARTED))" "$*"
    return 0
}

# Ends the last step and prints how long each step of the run took.
step_summary() {
    step ""
    printf '\n%7s %10s  %s\n' seconds processor step
    while IFS=$'\t' read -r took used name; do
        printf '%7s %10s  %s\n' "$took" "$used" "$name"
    done <"$ARBOLET_STEP_LOG"
    printf '%7s %10s  %s\n' "$(($(date +%s) - ARBOLET_STARTED))" "" "in all"
}

# Lets CMake compile through ccache when it is installed. Paths are hashed relative to the
# checkout, so a fresh clone reuses what an earlier build of the same sources compiled.
use_compiler_cache() {
    command -v ccache >/dev/null || return 0
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR="$PWD"
    export CCACHE_NOHASHDIR=1
    # Precompiled headers are included with -include, which ccache caches only when told that
    # their time stamps and macros may be ignored.
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
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

# Helpers shared by the build scripts.
NATIVE_PACKAGES=(cmake ninja-build g++ clang libgtest-dev libbenchmark-dev libcli11-dev
                 nlohmann-json3-dev libfmt-dev)

step() { printf '\n== %s\n' "$*"; }

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

#!/usr/bin/env bash
# Builds everything a release holds into dist/: the Debian package of the command-line tool
# (checked by unpacking it and running it), a zip of the Windows programs, the Windows
# Installer packages (for all users, and for one user), and the VS Code extension (.vsix) with
# the Linux and Windows x64 arbolet inside.
#
#   scripts/package.sh            packages whatever parts of the product this checkout builds
#   scripts/package.sh --release  stops unless the add-in, the explorer and the help file are
#                                 all in the installer
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

release=0
[[ "${1:-}" == "--release" ]] && release=1

install_packages_if_missing "${PACKAGE_PACKAGES[@]}"
use_compiler_cache
jobs=$(nproc)
version=$(sed -n 's/^project(Arbolet VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[[ -n "$version" ]] || { echo "no version in CMakeLists.txt" >&2; exit 2; }
rm -rf dist
mkdir -p dist

step "Debian package of arbolet $version"
cmake -S . -B build/package-linux -G Ninja -DCMAKE_BUILD_TYPE=Release -DARBOLET_BUILD_TESTS=OFF \
    >/dev/null
cmake --build build/package-linux -j "$jobs"
(cd build/package-linux && cpack -G DEB -B "$PWD/cpack" >/dev/null)
cp build/package-linux/cpack/arbolet_"$version"_*.deb dist/

step "checking the Debian package: unpacked, arbolet --version and its manual page"
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
dpkg-deb -x dist/arbolet_"$version"_*.deb "$unpacked"
shown=$("$unpacked/usr/bin/arbolet" --version)
[[ "$shown" == "arbolet $version" ]] || { echo "the packaged arbolet says '$shown'" >&2; exit 1; }
man -l "$unpacked/usr/share/man/man1/arbolet.1.gz" 2>/dev/null | grep -q "arbolet" ||
    { echo "the packaged manual page does not read" >&2; exit 1; }
echo "$shown; manual page usr/share/man/man1/arbolet.1.gz"

# The i686 build is what ships; the x86_64 build adds a 64-bit arbolet.exe to the zip.
for arch in x86 x64; do
    toolchain=cmake/toolchains/mingw-$([[ $arch == x86 ]] && echo i686 || echo x86_64).cmake
    step "Windows $arch build"
    # The flags of the CMake presets, so that the compiler cache serves both.
    cmake -S . -B "build/package-windows-$arch" -G Ninja --toolchain "$toolchain" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" -DARBOLET_WERROR=ON \
        -DARBOLET_BUILD_TESTS=OFF -DARBOLET_BUILD_CLI=ON >/dev/null
    # The packages and what they hold, nothing else.
    cmake --build "build/package-windows-$arch" -j "$jobs" --target arbolet_msi
done

installer=build/package-windows-x86/installer
missing=()
for file in Arbolet.dll arbolet-explorer.exe Arbolet.chm; do
    grep -qx "$file" "$installer/packaged-files.txt" || missing+=("$file")
done
if ((${#missing[@]})); then
    if ((release)); then
        echo "RELEASE STOPPED: the installer would lack ${missing[*]} (their targets are not built here)" >&2
        exit 1
    fi
    echo "NOT A RELEASE: the installer and zip lack ${missing[*]} (their targets are not built here)"
fi

step "zip of the Windows programs and the installers"
zipRoot=$(mktemp -d)
mkdir -p "$zipRoot/Arbolet-$version/x64"
cp "$installer"/stage/* "$zipRoot/Arbolet-$version/"
cp build/package-windows-x64/installer/stage/* "$zipRoot/Arbolet-$version/x64/"
(cd "$zipRoot" && cmake -E tar cf "$OLDPWD/dist/Arbolet-$version-windows.zip" --format=zip "Arbolet-$version")
rm -rf "$zipRoot"
cp "$installer/Arbolet-$version.msi" "$installer/Arbolet-$version-per-user.msi" dist/

step "VS Code extension (.vsix) with the Linux and Windows x64 arbolet"
extension=editors/vscode
vsix="dist/arbolet-vb6-$version.vsix"
if command -v npm >/dev/null; then
    rm -rf "$extension/bin"
    mkdir -p "$extension/bin/linux-x64" "$extension/bin/win32-x64"
    cp build/package-linux/apps/arbolet/arbolet "$extension/bin/linux-x64/arbolet"
    cp build/package-windows-x64/installer/stage/arbolet.exe "$extension/bin/win32-x64/arbolet.exe"
    (
        cd "$extension"
        if [[ ! -f node_modules/.package-lock.json || package-lock.json -nt node_modules/.package-lock.json ]]; then
            npm ci --no-audit --no-fund
        fi
        npm run build
        node scripts/package-vsix.js "$OLDPWD/$vsix"
        # What went in: the manifest, grammars, icons and both programs.
        ARBOLET_VSIX="$OLDPWD/$vsix" node --test out/test/vsix.test.js >/dev/null
    )
    rm -rf "$extension/bin"
    echo "$vsix: install with  code --install-extension $vsix"
elif ((release)); then
    echo "RELEASE STOPPED: npm is missing, so the VS Code extension cannot be built" >&2
    exit 1
else
    echo "NOT A RELEASE: npm is missing, so dist/ has no VS Code extension"
fi

step "dist/"
ls -l dist

#!/usr/bin/env bash
# Builds the arbolet command-line tool and runs it on the bundled example project.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

install_packages_if_missing cmake ninja-build g++ libcli11-dev nlohmann-json3-dev libfmt-dev

step "building arbolet"
cmake -S . -B build/example -G Ninja -DCMAKE_BUILD_TYPE=Release -DARBOLET_BUILD_TESTS=OFF >/dev/null
cmake --build build/example --target arbolet
arbolet=build/example/apps/arbolet/arbolet

if "$arbolet" tree --help >/dev/null 2>&1; then
    step "arbolet tree examples/Inventory/Inventory.vbp"
    "$arbolet" tree examples/Inventory/Inventory.vbp
fi

step "arbolet code examples/Inventory/modStock.bas"
"$arbolet" code examples/Inventory/modStock.bas

step "arbolet check examples/Inventory (modLegacy.bas holds deliberate block errors)"
"$arbolet" check examples/Inventory || echo "(exit status $?: errors found, as intended)"

#!/bin/sh
# Headless Neovim as the editor: its own LSP client opens a module with a missing End If,
# waits for the diagnostic, asks for document symbols and a definition (check.lua).
set -eu
nvim=$1
arbolet=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf 'Type=Exe\r\nModule=modMain; modMain.bas\r\nModule=modUtil; modUtil.bas\r\nName="Demo"\r\n' \
    > "$work/Demo.vbp"
printf 'Attribute VB_Name = "modMain"\r\nOption Explicit\r\n\r\nPublic Sub Main()\r\n    If Ready() Then\r\n        Twice 2\r\n    \r\nEnd Sub\r\n' \
    > "$work/modMain.bas"
printf 'Attribute VB_Name = "modUtil"\r\nPublic Function Twice(ByVal n As Long) As Long\r\n    Twice = 2 * n\r\nEnd Function\r\n' \
    > "$work/modUtil.bas"
ARBOLET="$arbolet" WORK="$work" "$nvim" --headless -u NONE -i NONE -n \
    -c "luafile $here/check.lua" 2>&1

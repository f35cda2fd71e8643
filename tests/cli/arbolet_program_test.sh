#!/usr/bin/env bash
# The arbolet program as a user runs it, natively or under Wine: --version, file and folder
# names outside ASCII, a file in another code page, and `tree --watch` printing the tree again
# after a real file is edited.
#   arbolet_program_test.sh VERSION COMMAND...    (COMMAND: the program, or wine and the .exe)
set -euo pipefail
version=$1
shift
arbolet=("$@")
# Wine turns file names and arguments into Windows text with the Unix locale's character set,
# and reads C.UTF-8 (the only UTF-8 locale of a bare Debian) as Latin-1: names outside ASCII
# would arrive garbled. Under Wine the names stay ASCII; the texts inside the files do not.
if [[ "$(basename "$1")" == wine* ]]; then
    folder_name="Cafe Nandu" module="modEte"
else
    folder_name="Café Ñandú" module="modÉté"
fi
# Windows programs end their lines with CR LF.
run() { "${arbolet[@]}" "$@" | tr -d '\r'; return "${PIPESTATUS[0]}"; }
unset NO_COLOR

work=$(mktemp -d)
watcher=""
cleanup() {
    local status=$?
    if [[ -n "$watcher" ]]; then
        kill "$watcher" 2>/dev/null || true
        wait "$watcher" 2>/dev/null || true
    fi
    rm -rf "$work"
    exit "$status"
}
trap cleanup EXIT
fail() {
    echo "FAILED: $*" >&2
    exit 1
}
# Waits up to `seconds` for `file` to hold `text`.
wait_for() {
    local file=$1 text=$2 seconds=$3
    for _ in $(seq $((seconds * 10))); do
        grep -qF -- "$text" "$file" 2>/dev/null && return 0
        sleep 0.1
    done
    return 1
}
cp1252() { iconv -f UTF-8 -t CP1252; }

out=$(run --version)
[[ "$out" == "arbolet $version" ]] || fail "--version printed '$out'"

folder="$work/$folder_name"
mkdir "$folder"
printf 'Type=Exe\r\nModule=%s; %s.bas\r\nName="Projet"\r\n' "$module" "$module" | cp1252 \
    >"$folder/Projet.vbp"
printf 'Attribute VB_Name = "%s"\r\nSub Crème()\r\n    If x Then\r\nEnd Sub\r\n' "$module" |
    cp1252 >"$folder/$module.bas"

out=$(run code "$folder/$module.bas")
grep -qF "Sub Crème()" <<<"$out" || fail "code: $out"
status=0
out=$(run check "$folder/Projet.vbp") || status=$?
[[ $status -eq 1 ]] || fail "check exit status $status: $out"
grep -qE "$module\.bas:[0-9]+: error:" <<<"$out" || fail "check: $out"

printf 'Attribute VB_Name = "modПривет"\r\nSub Мир()\r\nEnd Sub\r\n' | iconv -f UTF-8 -t CP1251 \
    >"$work/cyrillic.bas"
out=$(run --codepage 1251 code "$work/cyrillic.bas")
grep -qF "Sub Мир()" <<<"$out" || fail "code page 1251: $out"

"${arbolet[@]}" tree --watch --expand all "$folder/Projet.vbp" >"$work/watch.txt" 2>&1 &
watcher=$!
wait_for "$work/watch.txt" "Sub Crème()" 30 || fail "tree --watch: $(cat "$work/watch.txt")"
# The watch begins just after the first tree is printed: an edit made before it is not seen,
# so the edit is saved again until the tree shows it.
for attempt in $(seq 10); do
    printf 'Attribute VB_Name = "%s"\r\nSub Crème()\r\nEnd Sub\r\nSub Ajoutée()\r\nEnd Sub\r\n' \
        "$module" | cp1252 >"$folder/$module.bas"
    wait_for "$work/watch.txt" "Sub Ajoutée()" 3 && break
    ((attempt < 10)) || fail "tree --watch did not print the edit: $(cat "$work/watch.txt")"
done
echo "arbolet program: --version, file names, code pages and tree --watch work"

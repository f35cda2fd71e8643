#!/usr/bin/env bash
# Boots (start) or removes (stop) the throwaway Wine prefix of one CTest run of the Windows
# tests; CTest passes WINEPREFIX, WINELOADER and WINESERVER. "start" also measures what Wine
# costs: booting the prefix once, and starting one process in it afterwards.
set -euo pipefail

now() { date +%s.%N; }
seconds() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", b - a }'; }

case "${1:-}" in
start)
    report=${2:-/dev/null}
    "$WINESERVER" -k 2>/dev/null || true  # a server left by an interrupted run
    rm -rf "$WINEPREFIX"
    t0=$(now)
    mkdir -p "$WINEPREFIX"
    # The server and the services that wineboot starts outlive this script: they must not hold
    # on to CTest's output pipe, or CTest would wait for them.
    "$WINESERVER" -p </dev/null >/dev/null 2>&1     # stays up until "stop"
    "$WINELOADER" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1
    t1=$(now)
    for _ in 1 2 3; do "$WINELOADER" cmd.exe /c exit </dev/null >/dev/null 2>&1; done
    t2=$(now)
    boot=$(seconds "$t0" "$t1")
    process=$(awk -v a="$t1" -v b="$t2" 'BEGIN { printf "%.0f", (b - a) / 3 * 1000 }')
    printf 'Wine prefix boot: %s s; Wine process start: %s ms\n' "$boot" "$process" | tee "$report"
    ;;
stop)
    "$WINESERVER" -k 2>/dev/null || true
    "$WINESERVER" -w 2>/dev/null || true
    rm -rf "$WINEPREFIX"
    ;;
*)
    echo "usage: $0 start [report-file] | stop" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# The throwaway Wine prefix of one CTest run of the Windows tests. CTest passes WINEPREFIX,
# WINELOADER and WINESERVER.
#   start REPORT [--display]  boots the prefix (under a new Xvfb display with --display) and
#                             writes what Wine costs to REPORT: the boot, and one process start
#   run WINE PROGRAM ARGS...  runs a test program in the prefix, on the run's display if any, and
#                             passes its output on when it ends
#   stop                      ends the run's Wine server and Xvfb and removes the prefix
set -euo pipefail

display_file() { echo "$WINEPREFIX.display"; }
resources_file() { echo "$WINEPREFIX.Xresources"; }
xvfb_pid_file() { echo "$WINEPREFIX.xvfb-pid"; }
now() { date +%s.%N; }

# Starts Xvfb on a free display number and leaves it running for the run.
start_xvfb() {
    local fifo
    fifo=$(mktemp -u)
    mkfifo "$fifo"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$fifo" </dev/null >/dev/null 2>&1 &
    echo $! >"$(xvfb_pid_file)"
    local number
    read -r number <"$fifo"
    rm -f "$fifo"
    echo ":$number" >"$(display_file)"
    # A desktop session always loads some X resources. Without any, Xlib looks for them again
    # on every font selected into a window's DC (two failed file opens each time, hundreds per
    # paint of a tree), which slows every paint under Wine down against a user's display.
    echo "Wine.testDisplay: true" >"$(resources_file)"
}

use_display() {
    export DISPLAY=$(cat "$(display_file)")
    export XENVIRONMENT=$(resources_file)
}

stop_run() {
    "$WINESERVER" -k 2>/dev/null || true
    "$WINESERVER" -w 2>/dev/null || true
    if [[ -f "$(xvfb_pid_file)" ]]; then
        kill "$(cat "$(xvfb_pid_file)")" 2>/dev/null || true
    fi
    rm -rf "$WINEPREFIX" "$(display_file)" "$(xvfb_pid_file)" "$(resources_file)"
}

case "${1:-}" in
start)
    report=${2:-/dev/null}
    stop_run  # whatever an interrupted run left behind
    unset DISPLAY
    if [[ "${3:-}" == "--display" ]]; then
        start_xvfb
        use_display
    fi
    t0=$(now)
    mkdir -p "$WINEPREFIX"
    # The server and the services that wineboot starts outlive this script: they must not hold
    # on to CTest's output pipe, or CTest would wait for them.
    "$WINESERVER" -p </dev/null >/dev/null 2>&1  # stays up until "stop"
    "$WINELOADER" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1
    t1=$(now)
    for _ in 1 2 3; do "$WINELOADER" cmd.exe /c exit </dev/null >/dev/null 2>&1; done
    t2=$(now)
    awk -v t0="$t0" -v t1="$t1" -v t2="$t2" -v display="${DISPLAY:-none}" 'BEGIN {
        printf "Wine prefix boot: %.2f s; Wine process start: %.0f ms; X display: %s\n",
               t1 - t0, (t2 - t1) / 3 * 1000, display }' | tee "$report"
    ;;
run)
    shift
    if [[ -f "$(display_file)" ]]; then
        use_display
    else
        unset DISPLAY
    fi
    # The first program that needs the desktop starts Wine's explorer.exe for it, which inherits
    # the program's output and outlives it by twenty seconds or so; CTest reads a test's output
    # to its end and would wait for it after nearly every windowed test. The output goes through
    # files instead, so the test ends when its program does.
    out=$(mktemp)
    err=$(mktemp)
    status=0
    "$@" >"$out" 2>"$err" </dev/null || status=$?
    cat "$out"
    cat "$err" >&2
    rm -f "$out" "$err"
    exit "$status"
    ;;
stop)
    stop_run
    ;;
*)
    echo "usage: $0 start REPORT [--display] | run WINE PROGRAM [ARGS...] | stop" >&2
    exit 2
    ;;
esac

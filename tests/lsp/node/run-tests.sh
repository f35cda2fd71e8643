#!/bin/sh
# Runs the Node harness: installs its packages from the lock file unless node_modules already
# holds them (so that it works offline), then node's own test runner.
set -eu
cd "$(dirname "$0")"
if [ ! -f node_modules/.package-lock.json ] || ! cmp -s package-lock.json node_modules/.arbolet-lock; then
    if npm ci --no-audit --no-fund >/dev/null 2>&1; then
        cp package-lock.json node_modules/.arbolet-lock
    elif [ -d node_modules/vscode-languageserver-protocol ]; then
        echo "npm ci failed (offline?); using the node_modules present" >&2
    else
        echo "npm ci failed and no node_modules: cannot run the harness" >&2
        exit 1
    fi
fi
exec node --test lsp.test.js

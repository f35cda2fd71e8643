#!/usr/bin/env bash
# Runs the extension's tests: `npm ci` first when node_modules is missing or older than the
# lock file, then `npm test` (build, .vsix, unit and end-to-end tests).
set -euo pipefail
cd "$(dirname "$0")/.."
# npm writes node_modules/.package-lock.json on every install; older than package-lock.json means stale.
if [[ ! -f node_modules/.package-lock.json || package-lock.json -nt node_modules/.package-lock.json ]]; then
    npm ci --no-audit --no-fund
fi
npm test

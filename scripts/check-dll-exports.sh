#!/usr/bin/env bash
# Checks that a COM server DLL exports its entry points by their plain names (an i686 build
# without its .def file would export them decorated, as DllRegisterServer@0).
set -euo pipefail
dll=${1:?usage: check-dll-exports.sh DLL}
exports=$(objdump -p "$dll" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p')
status=0
for name in DllGetClassObject DllCanUnloadNow DllRegisterServer DllUnregisterServer DllInstall; do
    if grep -qE "\] ${name}\$" <<<"$exports"; then
        echo "exported: $name"
    else
        echo "MISSING OR DECORATED: $name" >&2
        status=1
    fi
done
exit $status

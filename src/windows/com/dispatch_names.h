// GetIDsOfNames over a fixed table of member names, the same for every late-bound object:
// names match without regard to letter case, and since parameter names are not known, asking
// for any makes the call fail with DISP_E_UNKNOWNNAME (callers pass arguments by position).
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace arbolet::windows::com {

// Compares member names as VB does, ignoring letter case.
bool SameMemberName(const wchar_t* left, const wchar_t* right) noexcept;

// `table` is a range of entries with `name` (const wchar_t*) and `id` (DISPID).
template <typename Table>
HRESULT IdsOfNames(const Table& table, LPOLESTR* names, UINT count, DISPID* ids) noexcept {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i)
        ids[i] = DISPID_UNKNOWN;
    for (const auto& entry : table) {
        if (names[0] != nullptr && SameMemberName(entry.name, names[0])) {
            ids[0] = entry.id;
            break;
        }
    }
    return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

}  // namespace arbolet::windows::com

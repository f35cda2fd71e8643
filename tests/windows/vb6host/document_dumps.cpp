// DocObj's dump members, called late-bound as a script in the IDE would call them.
#include "vb6host/document_dumps.h"

#include "windows/base/ansi_text.h"
#include "windows/com/dispatch.h"

namespace arbolet::vb6host {
namespace {

using windows::WideToUtf8;
using windows::com::Variant;

bool Call(IDispatch* document, const wchar_t* member, std::initializer_list<Variant> args,
          std::string& error) {
    if (document == nullptr) {
        error = "the tool window has no DocObj";
        return false;
    }
    try {
        windows::com::Dispatch(document).Call({member, DISPID_UNKNOWN, "docAddIn"}, args);
        return true;
    } catch (const VbError& failure) {
        error = failure.Description;
        return false;
    }
}

}  // namespace

bool DumpDocumentMenu(IDispatch* document, const std::wstring& key, const std::wstring& out,
                      const std::wstring& screenshot, std::string& error) {
    return Call(
        document, L"DumpMenu",
        {Variant(WideToUtf8(key)), Variant(WideToUtf8(out)), Variant(WideToUtf8(screenshot))},
        error);
}

bool DumpDocumentTree(IDispatch* document, const std::wstring& out, const std::wstring& expand,
                      std::string& error) {
    return Call(document, L"DumpTree", {Variant(WideToUtf8(out)), Variant(WideToUtf8(expand))},
                error);
}

}  // namespace arbolet::vb6host

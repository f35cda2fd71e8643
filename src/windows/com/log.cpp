// The diagnostic log and the names of the interfaces containers ask for.
#include "windows/com/log.h"

#include <objsafe.h>
#include <ocidl.h>
#include <oleidl.h>

#include <cstdio>
#include <iterator>

#include "windows/com/vbide_ids.h"

namespace arbolet::windows::com {
namespace {

struct KnownInterface {
    const IID* iid;
    const char* name;
};
const KnownInterface kKnownInterfaces[] = {
    {&IID_IUnknown, "IUnknown"},
    {&IID_IDispatch, "IDispatch"},
    {&IID_IOleObject, "IOleObject"},
    {&IID_IOleWindow, "IOleWindow"},
    {&IID_IOleInPlaceObject, "IOleInPlaceObject"},
    {&IID_IOleInPlaceActiveObject, "IOleInPlaceActiveObject"},
    {&IID_IOleControl, "IOleControl"},
    {&IID_IViewObject, "IViewObject"},
    {&IID_IViewObject2, "IViewObject2"},
    {&IID_IPersist, "IPersist"},
    {&IID_IPersistStreamInit, "IPersistStreamInit"},
    {&IID_IPersistStorage, "IPersistStorage"},
    {&IID_IPersistPropertyBag, "IPersistPropertyBag"},
    {&IID_IProvideClassInfo, "IProvideClassInfo"},
    {&IID_IProvideClassInfo2, "IProvideClassInfo2"},
    {&IID_IConnectionPointContainer, "IConnectionPointContainer"},
    {&IID_IQuickActivate, "IQuickActivate"},
    {&IID_IDataObject, "IDataObject"},
    {&IID_IOleInPlaceObjectWindowless, "IOleInPlaceObjectWindowless"},
    {&IID_IObjectSafety, "IObjectSafety"},
    {&IID_IMarshal, "IMarshal"},
    {&IID_IClassFactory, "IClassFactory"},
    {&IID_ISupportErrorInfo, "ISupportErrorInfo"},
    {&ids::IID_IDTExtensibility2, "_IDTExtensibility2"},
    {&ids::IID_IDTExtensibility, "IDTExtensibility"},
    {&ids::DIID_VBProjectsEvents, "_dispVBProjectsEvents"},
    {&ids::DIID_VBComponentsEvents, "_dispVBComponentsEvents"},
    {&ids::DIID_CommandBarControlEvents, "_dispCommandBarControlEvents"},
};

std::string LogPath() {
    char buffer[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableA("ARBOLET_LOG", buffer, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::string(buffer, length) : std::string();
}

}  // namespace

bool LogEnabled() noexcept {
    try {
        return !LogPath().empty();
    } catch (...) {
        return false;
    }
}

void Log(std::string_view line) noexcept {
    try {
        std::string text = "Arbolet: " + std::string(line) + "\n";
        OutputDebugStringA(text.c_str());
        const std::string path = LogPath();
        if (path.empty()) return;
        if (FILE* file = std::fopen(path.c_str(), "ab")) {
            std::fwrite(text.data(), 1, text.size(), file);
            std::fclose(file);
        }
    } catch (...) {
        // Logging never disturbs the add-in.
    }
}

std::string InterfaceName(REFIID iid) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(iid.Data1), iid.Data2, iid.Data3, iid.Data4[0],
                  iid.Data4[1], iid.Data4[2], iid.Data4[3], iid.Data4[4], iid.Data4[5],
                  iid.Data4[6], iid.Data4[7]);
    for (const KnownInterface& known : kKnownInterfaces) {
        if (*known.iid == iid) return std::string(known.name) + " " + text;
    }
    return text;
}

void LogQueryInterface(const char* object, REFIID iid, HRESULT hr) noexcept {
    if (!LogEnabled()) return;
    try {
        Log(std::string(object) + " QueryInterface " + InterfaceName(iid) +
            (SUCCEEDED(hr) ? " -> S_OK" : " -> E_NOINTERFACE"));
    } catch (...) {
    }
}

}  // namespace arbolet::windows::com

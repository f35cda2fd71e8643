// The identifiers of the members the add-in never calls, which the emulated IDE answers to as
// well. Everything the add-in calls is named once, in the add-in's own identifier header
// (windows/com/vbide_ids.h, reached here as vbide::ids and vbide::members), so that the add-in
// and the host always agree.
#pragma once

#include <windows.h>

#include "windows/com/vbide_ids.h"

namespace arbolet::vb6host::vbide {

using namespace windows::com;

// The classes behind the event sources.
inline constexpr IID kIidVBProjectsEventsClass = ids::OleGuid(0x0002E114);
inline constexpr IID kIidVBComponentsEventsClass = ids::OleGuid(0x0002E117);
inline constexpr IID kIidCommandBarEventsClass = ids::OleGuid(0x0002E199);
// Events2 {CC62AD84-99EE-11D1-B6E0-00A0C90F2744}
inline constexpr IID kIidEvents2 = {
    0xCC62AD84, 0x99EE, 0x11D1, {0xB6, 0xE0, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};

// VBProjects
inline constexpr DISPID kProjectsParent = 2;
inline constexpr DISPID kProjectsVBE = 20;
inline constexpr DISPID kProjectsAddFromFile = 130;
inline constexpr DISPID kProjectsRemove = 131;
// VBProject
inline constexpr DISPID kProjectIsDirty = 110;
inline constexpr DISPID kProjectVBE = 122;
// VBComponents
inline constexpr DISPID kComponentsVBE = 20;
// VBComponent
inline constexpr DISPID kComponentVBE = 53;
inline constexpr DISPID kComponentHasOpenDesigner = 55;
// CodeModule
inline constexpr DISPID kCodeModuleVBE = 0x60020001;
inline constexpr DISPID kCodeModuleName = 0;
// CodePane
inline constexpr DISPID kCodePaneVBE = 0x60020001;
inline constexpr DISPID kCodePaneCountOfVisibleLines = 0x60020007;
// Windows and Window
inline constexpr DISPID kWindowsVBE = 1;
inline constexpr DISPID kWindowsParent = 2;
inline constexpr DISPID kWindowVBE = 1;
inline constexpr DISPID kWindowCollection = 2;
inline constexpr DISPID kWindowLeft = 101;
inline constexpr DISPID kWindowTop = 103;
inline constexpr DISPID kWindowWidth = 105;
inline constexpr DISPID kWindowHeight = 107;
inline constexpr DISPID kWindowWindowState = 109;
inline constexpr DISPID kWindowType = 112;
// AddIn and Addins
inline constexpr DISPID kAddInDescription = 0;
inline constexpr DISPID kAddInVBE = 1;
inline constexpr DISPID kAddInCollection = 2;
inline constexpr DISPID kAddInGuid = 4;
inline constexpr DISPID kAddInConnect = 6;
inline constexpr DISPID kAddInsVBE = 1;
inline constexpr DISPID kAddInsParent = 2;
inline constexpr DISPID kAddInsCount = 40;

// Office 97 command bars.
inline constexpr DISPID kAccName = -5003;
// CommandBars
inline constexpr DISPID kBarsApplication = 0x60020000;
inline constexpr DISPID kBarsCreator = 0x60020001;
inline constexpr DISPID kBarsActiveMenuBar = 0x60030001;
inline constexpr DISPID kBarsParent = 0x6003000F;
// CommandBar
inline constexpr DISPID kBarApplication = 0x60030000;
inline constexpr DISPID kBarCreator = 0x60030001;
inline constexpr DISPID kBarBuiltIn = 0x60040000;
inline constexpr DISPID kBarDelete = 0x60040004;
inline constexpr DISPID kBarEnabled = 0x60040005;
inline constexpr DISPID kBarFindControl = 0x60040007;
inline constexpr DISPID kBarIndex = 0x6004000A;
inline constexpr DISPID kBarNameLocal = 0x60040010;
inline constexpr DISPID kBarParent = 0x60040012;
inline constexpr DISPID kBarType = 0x6004001D;
// CommandBarControls
inline constexpr DISPID kControlsApplication = 0x60020000;
inline constexpr DISPID kControlsCreator = 0x60020001;
inline constexpr DISPID kControlsParent = 0x60030004;
// CommandBarControl
inline constexpr DISPID kControlApplication = 0x60030000;
inline constexpr DISPID kControlCreator = 0x60030001;
inline constexpr DISPID kControlBuiltIn = 0x60040002;
inline constexpr DISPID kControlDescriptionText = 0x60040008;
inline constexpr DISPID kControlIndex = 0x60040014;
inline constexpr DISPID kControlParent = 0x6004001C;
inline constexpr DISPID kControlParameter = 0x6004001D;
// CommandBarButton
inline constexpr DISPID kButtonBuiltInFace = 0x60050000;
inline constexpr DISPID kButtonShortcutText = 0x60050006;
inline constexpr DISPID kButtonState = 0x60050008;
// CommandBarPopup
inline constexpr DISPID kPopupCommandBar = 0x60050000;

}  // namespace arbolet::vb6host::vbide

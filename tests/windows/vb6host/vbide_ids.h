// The identifiers of the VB6 extensibility library and the Office 97 command bars that the
// emulated IDE answers to: interface IDs, event interface IDs and DISPIDs.
#pragma once

#include <windows.h>

namespace arbolet::vb6host::vbide {

// {0002Exxx-0000-0000-C000-000000000046}
constexpr IID VbideIid(unsigned long first) {
    return {first, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
}

inline constexpr IID kIidVBE = VbideIid(0x0002E100);
inline constexpr IID kIidVBProjects = VbideIid(0x0002E102);
inline constexpr IID kIidVBProject = VbideIid(0x0002E106);
inline constexpr IID kIidAddIns = VbideIid(0x0002E109);
inline constexpr IID kIidAddIn = VbideIid(0x0002E10B);
inline constexpr IID kIidWindows = VbideIid(0x0002E10D);
inline constexpr IID kIidWindow = VbideIid(0x0002E10E);
inline constexpr IID kIidEvents = VbideIid(0x0002E112);
inline constexpr IID kIidVBComponents = VbideIid(0x0002E147);
inline constexpr IID kIidVBComponent = VbideIid(0x0002E148);
inline constexpr IID kIidCodeModule = VbideIid(0x0002E16D);
inline constexpr IID kIidCodePane = VbideIid(0x0002E175);
// The classes behind the event sources.
inline constexpr IID kIidVBProjectsEventsClass = VbideIid(0x0002E114);
inline constexpr IID kIidVBComponentsEventsClass = VbideIid(0x0002E117);
inline constexpr IID kIidCommandBarEventsClass = VbideIid(0x0002E199);
// Events2 {CC62AD84-99EE-11D1-B6E0-00A0C90F2744}
inline constexpr IID kIidEvents2 = {
    0xCC62AD84, 0x99EE, 0x11D1, {0xB6, 0xE0, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};

inline constexpr IID kDiidVBProjectsEvents = VbideIid(0x0002E190);
inline constexpr IID kDiidVBComponentsEvents = VbideIid(0x0002E193);
inline constexpr IID kDiidCommandBarControlEvents = VbideIid(0x0002E198);

// The add-in's connection interfaces.
// _IDTExtensibility2 {B65AD801-ABAF-11D0-BB8B-00A0C90F2744}
inline constexpr IID kIidIDTExtensibility2 = {
    0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
inline constexpr IID kIidIDTExtensibility = VbideIid(0x0002E151);
inline constexpr DISPID kOnConnection = 1;
inline constexpr DISPID kOnDisconnection = 2;
inline constexpr DISPID kOnAddInsUpdate = 3;
inline constexpr DISPID kOnStartupComplete = 4;
inline constexpr DISPID kOnBeginShutdown = 5;

// Event DISPIDs.
inline constexpr DISPID kItemAdded = 1;
inline constexpr DISPID kItemRemoved = 2;
inline constexpr DISPID kItemRenamed = 3;
inline constexpr DISPID kProjectActivated = 4;  // VBProjectsEvents.ItemActivated
inline constexpr DISPID kItemSelected = 4;      // VBComponentsEvents
inline constexpr DISPID kItemActivated = 5;
inline constexpr DISPID kItemReloaded = 6;
inline constexpr DISPID kClick = 1;

// VBE
inline constexpr DISPID kVbeName = 0;
inline constexpr DISPID kVbeVersion = 100;
inline constexpr DISPID kVbeVBProjects = 107;
inline constexpr DISPID kVbeCommandBars = 108;
inline constexpr DISPID kVbeWindows = 110;
inline constexpr DISPID kVbeEvents = 111;
inline constexpr DISPID kVbeAddins = 200;
inline constexpr DISPID kVbeActiveVBProject = 201;
inline constexpr DISPID kVbeSelectedVBComponent = 202;
inline constexpr DISPID kVbeMainWindow = 204;
inline constexpr DISPID kVbeActiveCodePane = 206;
// VBProjects
inline constexpr DISPID kItem = 0;
inline constexpr DISPID kNewEnum = DISPID_NEWENUM;
inline constexpr DISPID kProjectsParent = 2;
inline constexpr DISPID kProjectsCount = 10;
inline constexpr DISPID kProjectsVBE = 20;
inline constexpr DISPID kProjectsAddFromFile = 130;
inline constexpr DISPID kProjectsRemove = 131;
inline constexpr DISPID kProjectsStartProject = 132;
// VBProject
inline constexpr DISPID kProjectName = 0;
inline constexpr DISPID kProjectFileName = 109;
inline constexpr DISPID kProjectIsDirty = 110;
inline constexpr DISPID kProjectWriteProperty = 111;
inline constexpr DISPID kProjectReadProperty = 112;
inline constexpr DISPID kProjectVBE = 122;
inline constexpr DISPID kProjectCollection = 123;
inline constexpr DISPID kProjectType = 129;
inline constexpr DISPID kProjectSaved = 133;
inline constexpr DISPID kProjectVBComponents = 135;
// VBComponents
inline constexpr DISPID kComponentsParent = 2;
inline constexpr DISPID kComponentsCount = 10;
inline constexpr DISPID kComponentsRemove = 11;
inline constexpr DISPID kComponentsAdd = 12;
inline constexpr DISPID kComponentsVBE = 20;
inline constexpr DISPID kComponentsAddFile = 22;
// VBComponent
inline constexpr DISPID kComponentIsDirty = 10;
inline constexpr DISPID kComponentFileNames = 11;
inline constexpr DISPID kComponentFileCount = 13;
inline constexpr DISPID kComponentName = 48;
inline constexpr DISPID kComponentCodeModule = 50;
inline constexpr DISPID kComponentType = 51;
inline constexpr DISPID kComponentVBE = 53;
inline constexpr DISPID kComponentCollection = 54;
inline constexpr DISPID kComponentHasOpenDesigner = 55;
inline constexpr DISPID kComponentReadProperty = 58;
inline constexpr DISPID kComponentWriteProperty = 59;
inline constexpr DISPID kComponentActivate = 60;
// CodeModule
inline constexpr DISPID kCodeModuleParent = 0x60020000;
inline constexpr DISPID kCodeModuleVBE = 0x60020001;
inline constexpr DISPID kCodeModuleName = 0;
inline constexpr DISPID kCodeModuleLines = 0x60020006;
inline constexpr DISPID kCodeModuleCountOfLines = 0x60020007;
inline constexpr DISPID kCodeModuleCodePane = 0x60020012;
// CodePane
inline constexpr DISPID kCodePaneVBE = 0x60020001;
inline constexpr DISPID kCodePaneWindow = 0x60020002;
inline constexpr DISPID kCodePaneGetSelection = 0x60020003;
inline constexpr DISPID kCodePaneSetSelection = 0x60020004;
inline constexpr DISPID kCodePaneTopLine = 0x60020005;
inline constexpr DISPID kCodePaneCountOfVisibleLines = 0x60020007;
inline constexpr DISPID kCodePaneCodeModule = 0x60020008;
inline constexpr DISPID kCodePaneShow = 0x60020009;
// Windows and Window
inline constexpr DISPID kWindowsVBE = 1;
inline constexpr DISPID kWindowsParent = 2;
inline constexpr DISPID kWindowsCount = 201;
inline constexpr DISPID kWindowsCreateToolWindow = 300;
inline constexpr DISPID kWindowVBE = 1;
inline constexpr DISPID kWindowCollection = 2;
inline constexpr DISPID kWindowClose = 99;
inline constexpr DISPID kWindowCaption = 100;
inline constexpr DISPID kWindowLeft = 101;
inline constexpr DISPID kWindowTop = 103;
inline constexpr DISPID kWindowWidth = 105;
inline constexpr DISPID kWindowVisible = 106;
inline constexpr DISPID kWindowHeight = 107;
inline constexpr DISPID kWindowWindowState = 109;
inline constexpr DISPID kWindowSetFocus = 111;
inline constexpr DISPID kWindowType = 112;
inline constexpr DISPID kWindowHWnd = 120;
// Events
inline constexpr DISPID kEventsVBProjectsEvents = 200;
inline constexpr DISPID kEventsVBComponentsEvents = 201;
inline constexpr DISPID kEventsCommandBarEvents = 205;
// AddIn and Addins
inline constexpr DISPID kAddInDescription = 0;
inline constexpr DISPID kAddInVBE = 1;
inline constexpr DISPID kAddInCollection = 2;
inline constexpr DISPID kAddInProgId = 3;
inline constexpr DISPID kAddInGuid = 4;
inline constexpr DISPID kAddInConnect = 6;
inline constexpr DISPID kAddInObject = 7;
inline constexpr DISPID kAddInsVBE = 1;
inline constexpr DISPID kAddInsParent = 2;
inline constexpr DISPID kAddInsCount = 40;

// Office 97 command bars: {000C03xx-0000-0000-C000-000000000046}
inline constexpr IID kIidCommandBars = VbideIid(0x000C0302);
inline constexpr IID kIidCommandBar = VbideIid(0x000C0304);
inline constexpr IID kIidCommandBarControls = VbideIid(0x000C0306);
inline constexpr IID kIidCommandBarControl = VbideIid(0x000C0308);
inline constexpr IID kIidCommandBarPopup = VbideIid(0x000C030A);
inline constexpr IID kIidCommandBarButton = VbideIid(0x000C030E);

inline constexpr DISPID kAccName = -5003;
inline constexpr DISPID kAccDoDefaultAction = -5018;
// CommandBars
inline constexpr DISPID kBarsApplication = 0x60020000;
inline constexpr DISPID kBarsCreator = 0x60020001;
inline constexpr DISPID kBarsActiveMenuBar = 0x60030001;
inline constexpr DISPID kBarsAdd = 0x60030002;
inline constexpr DISPID kBarsCount = 0x60030003;
inline constexpr DISPID kBarsFindControl = 0x60030008;
inline constexpr DISPID kBarsParent = 0x6003000F;
// CommandBar
inline constexpr DISPID kBarApplication = 0x60030000;
inline constexpr DISPID kBarCreator = 0x60030001;
inline constexpr DISPID kBarBuiltIn = 0x60040000;
inline constexpr DISPID kBarControls = 0x60040003;
inline constexpr DISPID kBarDelete = 0x60040004;
inline constexpr DISPID kBarEnabled = 0x60040005;
inline constexpr DISPID kBarFindControl = 0x60040007;
inline constexpr DISPID kBarIndex = 0x6004000A;
inline constexpr DISPID kBarName = 0x6004000E;
inline constexpr DISPID kBarNameLocal = 0x60040010;
inline constexpr DISPID kBarParent = 0x60040012;
inline constexpr DISPID kBarType = 0x6004001D;
inline constexpr DISPID kBarVisible = 0x6004001E;
// CommandBarControls
inline constexpr DISPID kControlsApplication = 0x60020000;
inline constexpr DISPID kControlsCreator = 0x60020001;
inline constexpr DISPID kControlsAdd = 0x60030000;
inline constexpr DISPID kControlsCount = 0x60030001;
inline constexpr DISPID kControlsParent = 0x60030004;
// CommandBarControl
inline constexpr DISPID kControlApplication = 0x60030000;
inline constexpr DISPID kControlCreator = 0x60030001;
inline constexpr DISPID kControlBeginGroup = 0x60040000;
inline constexpr DISPID kControlBuiltIn = 0x60040002;
inline constexpr DISPID kControlCaption = 0x60040003;
inline constexpr DISPID kControlDelete = 0x60040007;
inline constexpr DISPID kControlDescriptionText = 0x60040008;
inline constexpr DISPID kControlEnabled = 0x6004000A;
inline constexpr DISPID kControlExecute = 0x6004000C;
inline constexpr DISPID kControlId = 0x60040013;
inline constexpr DISPID kControlIndex = 0x60040014;
inline constexpr DISPID kControlOnAction = 0x6004001A;
inline constexpr DISPID kControlParent = 0x6004001C;
inline constexpr DISPID kControlParameter = 0x6004001D;
inline constexpr DISPID kControlTag = 0x60040023;
inline constexpr DISPID kControlTooltipText = 0x60040025;
inline constexpr DISPID kControlType = 0x60040028;
inline constexpr DISPID kControlVisible = 0x60040029;
// CommandBarButton
inline constexpr DISPID kButtonBuiltInFace = 0x60050000;
inline constexpr DISPID kButtonFaceId = 0x60050003;
inline constexpr DISPID kButtonShortcutText = 0x60050006;
inline constexpr DISPID kButtonState = 0x60050008;
inline constexpr DISPID kButtonStyle = 0x6005000A;
// CommandBarPopup
inline constexpr DISPID kPopupCommandBar = 0x60050000;
inline constexpr DISPID kPopupControls = 0x60050001;

}  // namespace arbolet::vb6host::vbide

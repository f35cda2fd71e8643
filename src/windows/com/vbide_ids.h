// The identifiers of the VB6 IDE's extensibility object model and of the Office 97 command bars
// it exposes: IIDs, event DIIDs and the DISPIDs of the members the add-in calls, plus the
// add-in's own class identifiers. One place for the add-in and for the emulated IDE of the
// tests, so that both always agree.
//
// Members are called late-bound by name; the DISPID beside each name is used when a host does
// not answer GetIDsOfNames for it.
#pragma once

#include <windows.h>

#include <cstdint>

namespace arbolet::windows::com {

// A member of a dispatch interface: its name, its DISPID, and its interface for messages.
struct DispMember {
    const wchar_t* name;
    DISPID id;
    const char* interfaceName;
};

namespace ids {

// The VBIDE and Office GUIDs share one pattern: {xxxxxxxx-0000-0000-C000-000000000046}.
constexpr GUID OleGuid(unsigned long first) {
    return {first, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
}

// Add-in connection interfaces.
inline constexpr IID IID_IDTExtensibility2 = {
    0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
inline constexpr IID IID_IDTExtensibility = OleGuid(0x0002E151);

// VBIDE 6 interfaces.
inline constexpr IID IID_VBE = OleGuid(0x0002E100);
inline constexpr IID IID_VBProjects = OleGuid(0x0002E102);
inline constexpr IID IID_VBProject = OleGuid(0x0002E106);
inline constexpr IID IID_AddIns = OleGuid(0x0002E109);
inline constexpr IID IID_AddIn = OleGuid(0x0002E10B);
inline constexpr IID IID_Windows = OleGuid(0x0002E10D);
inline constexpr IID IID_Window = OleGuid(0x0002E10E);
inline constexpr IID IID_Events = OleGuid(0x0002E112);
inline constexpr IID IID_VBComponents = OleGuid(0x0002E147);
inline constexpr IID IID_VBComponent = OleGuid(0x0002E148);
inline constexpr IID IID_CodeModule = OleGuid(0x0002E16D);
inline constexpr IID IID_CodePanes = OleGuid(0x0002E171);
inline constexpr IID IID_CodePane = OleGuid(0x0002E175);

// VBIDE 6 event interfaces (the VBA library's differ).
inline constexpr IID DIID_VBProjectsEvents = OleGuid(0x0002E190);
inline constexpr IID DIID_VBComponentsEvents = OleGuid(0x0002E193);
inline constexpr IID DIID_CommandBarControlEvents = OleGuid(0x0002E198);

// Office 97 command bars.
inline constexpr IID IID_CommandBars = OleGuid(0x000C0302);
inline constexpr IID IID_CommandBar = OleGuid(0x000C0304);
inline constexpr IID IID_CommandBarControls = OleGuid(0x000C0306);
inline constexpr IID IID_CommandBarControl = OleGuid(0x000C0308);
inline constexpr IID IID_CommandBarPopup = OleGuid(0x000C030A);
inline constexpr IID IID_CommandBarButton = OleGuid(0x000C030E);

// The add-in's own classes: the connection object and the tool-window control.
inline constexpr CLSID CLSID_Connection = {
    0x3DED0A63, 0x1886, 0x4689, {0x82, 0xB8, 0x10, 0x08, 0x47, 0x3F, 0x85, 0x4C}};
inline constexpr CLSID CLSID_ToolWindowControl = {
    0x6386DC89, 0x55C6, 0x45B5, {0xAB, 0x6B, 0x2F, 0x53, 0x77, 0x4B, 0x22, 0xE5}};
inline constexpr const char* kConnectionProgId = "Arbolet.dVisualBasic";
inline constexpr const char* kToolWindowProgId = "Quorlin.docAddIn";
// Where the IDE remembers the dock position of the tool window.
inline constexpr const char* kToolWindowPosition = "{AC3075C1-B54F-11d3-943A-00A0CC5F7B23}";

// ext_ConnectMode and ext_DisconnectMode.
inline constexpr std::int32_t kConnectAfterStartup = 0;
inline constexpr std::int32_t kConnectStartup = 1;
inline constexpr std::int32_t kConnectExternal = 2;
inline constexpr std::int32_t kConnectCommandLine = 3;
inline constexpr std::int32_t kDisconnectHostShutdown = 0;
inline constexpr std::int32_t kDisconnectUserClosed = 1;

// MsoControlType and MsoButtonStyle values the add-in uses.
inline constexpr std::int32_t kControlButton = 1;
inline constexpr std::int32_t kControlPopup = 10;

// DISPIDs of the connection interface and of the event interfaces.
namespace IDTExtensibility2 {
inline constexpr DISPID OnConnection = 1;
inline constexpr DISPID OnDisconnection = 2;
inline constexpr DISPID OnAddInsUpdate = 3;
inline constexpr DISPID OnStartupComplete = 4;
inline constexpr DISPID OnBeginShutdown = 5;
}  // namespace IDTExtensibility2
namespace VBProjectsEvents {
inline constexpr DISPID ItemAdded = 1;
inline constexpr DISPID ItemRemoved = 2;
inline constexpr DISPID ItemRenamed = 3;
inline constexpr DISPID ItemActivated = 4;
}  // namespace VBProjectsEvents
namespace VBComponentsEvents {
inline constexpr DISPID ItemAdded = 1;
inline constexpr DISPID ItemRemoved = 2;
inline constexpr DISPID ItemRenamed = 3;
inline constexpr DISPID ItemSelected = 4;
inline constexpr DISPID ItemActivated = 5;
inline constexpr DISPID ItemReloaded = 6;
}  // namespace VBComponentsEvents
namespace CommandBarControlEvents {
inline constexpr DISPID Click = 1;
}  // namespace CommandBarControlEvents

}  // namespace ids

// The members the add-in calls, by interface.
namespace members {
#define ARBOLET_MEMBER(iface, name, id) \
    inline constexpr DispMember name{L## #name, static_cast<DISPID>(id), #iface};

namespace VBE {
ARBOLET_MEMBER(VBE, Name, 0)
ARBOLET_MEMBER(VBE, Version, 100)
ARBOLET_MEMBER(VBE, VBProjects, 107)
ARBOLET_MEMBER(VBE, CommandBars, 108)
ARBOLET_MEMBER(VBE, CodePanes, 109)
ARBOLET_MEMBER(VBE, Windows, 110)
ARBOLET_MEMBER(VBE, Events, 111)
ARBOLET_MEMBER(VBE, Addins, 200)
ARBOLET_MEMBER(VBE, ActiveVBProject, 201)
ARBOLET_MEMBER(VBE, SelectedVBComponent, 202)
ARBOLET_MEMBER(VBE, MainWindow, 204)
ARBOLET_MEMBER(VBE, ActiveWindow, 205)
ARBOLET_MEMBER(VBE, ActiveCodePane, 206)
}  // namespace VBE
namespace VBProjects {
ARBOLET_MEMBER(VBProjects, Item, 0)
ARBOLET_MEMBER(VBProjects, Count, 10)
ARBOLET_MEMBER(VBProjects, StartProject, 132)
}  // namespace VBProjects
namespace VBProject {
ARBOLET_MEMBER(VBProject, Name, 0)
ARBOLET_MEMBER(VBProject, FileName, 109)
ARBOLET_MEMBER(VBProject, WriteProperty, 111)
ARBOLET_MEMBER(VBProject, ReadProperty, 112)
ARBOLET_MEMBER(VBProject, VBE, 122)
ARBOLET_MEMBER(VBProject, Collection, 123)
ARBOLET_MEMBER(VBProject, Type, 129)
ARBOLET_MEMBER(VBProject, Saved, 133)
ARBOLET_MEMBER(VBProject, VBComponents, 135)
}  // namespace VBProject
namespace VBComponents {
ARBOLET_MEMBER(VBComponents, Item, 0)
ARBOLET_MEMBER(VBComponents, Parent, 2)
ARBOLET_MEMBER(VBComponents, Count, 10)
ARBOLET_MEMBER(VBComponents, Remove, 11)
ARBOLET_MEMBER(VBComponents, Add, 12)
ARBOLET_MEMBER(VBComponents, AddFile, 22)
}  // namespace VBComponents
namespace VBComponent {
ARBOLET_MEMBER(VBComponent, IsDirty, 10)
ARBOLET_MEMBER(VBComponent, FileNames, 11)
ARBOLET_MEMBER(VBComponent, FileCount, 13)
ARBOLET_MEMBER(VBComponent, Name, 48)
ARBOLET_MEMBER(VBComponent, Designer, 49)
ARBOLET_MEMBER(VBComponent, CodeModule, 50)
ARBOLET_MEMBER(VBComponent, Type, 51)
ARBOLET_MEMBER(VBComponent, Collection, 54)
ARBOLET_MEMBER(VBComponent, DesignerWindow, 57)
ARBOLET_MEMBER(VBComponent, ReadProperty, 58)
ARBOLET_MEMBER(VBComponent, WriteProperty, 59)
ARBOLET_MEMBER(VBComponent, Activate, 60)
}  // namespace VBComponent
namespace CodeModule {
ARBOLET_MEMBER(CodeModule, Parent, 0x60020000)
ARBOLET_MEMBER(CodeModule, Lines, 0x60020006)
ARBOLET_MEMBER(CodeModule, CountOfLines, 0x60020007)
ARBOLET_MEMBER(CodeModule, CodePane, 0x60020012)
}  // namespace CodeModule
namespace CodePane {
ARBOLET_MEMBER(CodePane, Window, 0x60020002)
ARBOLET_MEMBER(CodePane, GetSelection, 0x60020003)
ARBOLET_MEMBER(CodePane, SetSelection, 0x60020004)
ARBOLET_MEMBER(CodePane, TopLine, 0x60020005)
ARBOLET_MEMBER(CodePane, CodeModule, 0x60020008)
ARBOLET_MEMBER(CodePane, Show, 0x60020009)
}  // namespace CodePane
namespace Windows {
ARBOLET_MEMBER(Windows, Item, 0)
ARBOLET_MEMBER(Windows, Count, 201)
ARBOLET_MEMBER(Windows, CreateToolWindow, 300)
}  // namespace Windows
namespace Window {
ARBOLET_MEMBER(Window, Close, 99)
ARBOLET_MEMBER(Window, Caption, 100)
ARBOLET_MEMBER(Window, Visible, 106)
ARBOLET_MEMBER(Window, SetFocus, 111)
ARBOLET_MEMBER(Window, HWnd, 120)
}  // namespace Window
namespace Events {
ARBOLET_MEMBER(Events, VBProjectsEvents, 200)
ARBOLET_MEMBER(Events, VBComponentsEvents, 201)
ARBOLET_MEMBER(Events, CommandBarEvents, 205)
}  // namespace Events
namespace AddIn {
ARBOLET_MEMBER(AddIn, ProgId, 3)
ARBOLET_MEMBER(AddIn, Object, 7)
}  // namespace AddIn

namespace CommandBars {
ARBOLET_MEMBER(CommandBars, Item, 0)
ARBOLET_MEMBER(CommandBars, Add, 0x60030002)
ARBOLET_MEMBER(CommandBars, Count, 0x60030003)
ARBOLET_MEMBER(CommandBars, FindControl, 0x60030008)
}  // namespace CommandBars
namespace CommandBar {
ARBOLET_MEMBER(CommandBar, Controls, 0x60040003)
ARBOLET_MEMBER(CommandBar, Name, 0x6004000E)
ARBOLET_MEMBER(CommandBar, Visible, 0x6004001E)
}  // namespace CommandBar
namespace CommandBarControls {
ARBOLET_MEMBER(CommandBarControls, Item, 0)
ARBOLET_MEMBER(CommandBarControls, Add, 0x60030000)
ARBOLET_MEMBER(CommandBarControls, Count, 0x60030001)
}  // namespace CommandBarControls
// CommandBarControl's members; CommandBarButton and CommandBarPopup share them.
namespace CommandBarControl {
ARBOLET_MEMBER(CommandBarControl, accDoDefaultAction, -5018)
ARBOLET_MEMBER(CommandBarControl, BeginGroup, 0x60040000)
ARBOLET_MEMBER(CommandBarControl, Caption, 0x60040003)
ARBOLET_MEMBER(CommandBarControl, Delete, 0x60040007)
ARBOLET_MEMBER(CommandBarControl, Enabled, 0x6004000A)
ARBOLET_MEMBER(CommandBarControl, Execute, 0x6004000C)
ARBOLET_MEMBER(CommandBarControl, Id, 0x60040013)
ARBOLET_MEMBER(CommandBarControl, OnAction, 0x6004001A)
ARBOLET_MEMBER(CommandBarControl, Tag, 0x60040023)
ARBOLET_MEMBER(CommandBarControl, TooltipText, 0x60040025)
ARBOLET_MEMBER(CommandBarControl, Type, 0x60040028)
ARBOLET_MEMBER(CommandBarControl, Visible, 0x60040029)
}  // namespace CommandBarControl
namespace CommandBarButton {
ARBOLET_MEMBER(CommandBarButton, FaceId, 0x60050003)
ARBOLET_MEMBER(CommandBarButton, Style, 0x6005000A)
}  // namespace CommandBarButton
namespace CommandBarPopup {
ARBOLET_MEMBER(CommandBarPopup, Controls, 0x60050001)
}  // namespace CommandBarPopup

#undef ARBOLET_MEMBER
}  // namespace members

}  // namespace arbolet::windows::com

// The identifiers the emulated IDE answers to, by the names its objects use. They come from the
// add-in's own identifier header, so that the add-in and the host always agree; only members
// the add-in never calls (and so that header leaves out) have their values here.
#pragma once

#include <windows.h>

#include "windows/com/vbide_ids.h"

namespace arbolet::vb6host::vbide {

using namespace windows::com;

inline constexpr IID kIidVBE = ids::IID_VBE;
inline constexpr IID kIidVBProjects = ids::IID_VBProjects;
inline constexpr IID kIidVBProject = ids::IID_VBProject;
inline constexpr IID kIidAddIns = ids::IID_AddIns;
inline constexpr IID kIidAddIn = ids::IID_AddIn;
inline constexpr IID kIidWindows = ids::IID_Windows;
inline constexpr IID kIidWindow = ids::IID_Window;
inline constexpr IID kIidEvents = ids::IID_Events;
inline constexpr IID kIidVBComponents = ids::IID_VBComponents;
inline constexpr IID kIidVBComponent = ids::IID_VBComponent;
inline constexpr IID kIidCodeModule = ids::IID_CodeModule;
inline constexpr IID kIidCodePane = ids::IID_CodePane;
// The classes behind the event sources.
inline constexpr IID kIidVBProjectsEventsClass = ids::OleGuid(0x0002E114);
inline constexpr IID kIidVBComponentsEventsClass = ids::OleGuid(0x0002E117);
inline constexpr IID kIidCommandBarEventsClass = ids::OleGuid(0x0002E199);
// Events2 {CC62AD84-99EE-11D1-B6E0-00A0C90F2744}
inline constexpr IID kIidEvents2 = {
    0xCC62AD84, 0x99EE, 0x11D1, {0xB6, 0xE0, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};

inline constexpr IID kDiidVBProjectsEvents = ids::DIID_VBProjectsEvents;
inline constexpr IID kDiidVBComponentsEvents = ids::DIID_VBComponentsEvents;
inline constexpr IID kDiidCommandBarControlEvents = ids::DIID_CommandBarControlEvents;

// The add-in's connection interfaces.
inline constexpr IID kIidIDTExtensibility2 = ids::IID_IDTExtensibility2;
inline constexpr IID kIidIDTExtensibility = ids::IID_IDTExtensibility;
inline constexpr DISPID kOnConnection = ids::IDTExtensibility2::OnConnection;
inline constexpr DISPID kOnDisconnection = ids::IDTExtensibility2::OnDisconnection;
inline constexpr DISPID kOnAddInsUpdate = ids::IDTExtensibility2::OnAddInsUpdate;
inline constexpr DISPID kOnStartupComplete = ids::IDTExtensibility2::OnStartupComplete;
inline constexpr DISPID kOnBeginShutdown = ids::IDTExtensibility2::OnBeginShutdown;

// Event DISPIDs.
inline constexpr DISPID kItemAdded = ids::VBComponentsEvents::ItemAdded;
inline constexpr DISPID kItemRemoved = ids::VBComponentsEvents::ItemRemoved;
inline constexpr DISPID kItemRenamed = ids::VBComponentsEvents::ItemRenamed;
inline constexpr DISPID kProjectActivated =
    ids::VBProjectsEvents::ItemActivated;  // VBProjectsEvents.ItemActivated
inline constexpr DISPID kItemSelected =
    ids::VBComponentsEvents::ItemSelected;  // VBComponentsEvents
inline constexpr DISPID kItemActivated = ids::VBComponentsEvents::ItemActivated;
inline constexpr DISPID kItemReloaded = ids::VBComponentsEvents::ItemReloaded;
inline constexpr DISPID kClick = ids::CommandBarControlEvents::Click;

// VBE
inline constexpr DISPID kVbeName = members::VBE::Name.id;
inline constexpr DISPID kVbeVersion = members::VBE::Version.id;
inline constexpr DISPID kVbeVBProjects = members::VBE::VBProjects.id;
inline constexpr DISPID kVbeCommandBars = members::VBE::CommandBars.id;
inline constexpr DISPID kVbeWindows = members::VBE::Windows.id;
inline constexpr DISPID kVbeEvents = members::VBE::Events.id;
inline constexpr DISPID kVbeAddins = members::VBE::Addins.id;
inline constexpr DISPID kVbeActiveVBProject = members::VBE::ActiveVBProject.id;
inline constexpr DISPID kVbeSelectedVBComponent = members::VBE::SelectedVBComponent.id;
inline constexpr DISPID kVbeMainWindow = members::VBE::MainWindow.id;
inline constexpr DISPID kVbeActiveCodePane = members::VBE::ActiveCodePane.id;
// VBProjects
inline constexpr DISPID kItem = members::VBProjects::Item.id;
inline constexpr DISPID kNewEnum = DISPID_NEWENUM;
inline constexpr DISPID kProjectsParent = 2;
inline constexpr DISPID kProjectsCount = members::VBProjects::Count.id;
inline constexpr DISPID kProjectsVBE = 20;
inline constexpr DISPID kProjectsAddFromFile = 130;
inline constexpr DISPID kProjectsRemove = 131;
inline constexpr DISPID kProjectsStartProject = members::VBProjects::StartProject.id;
// VBProject
inline constexpr DISPID kProjectName = members::VBProject::Name.id;
inline constexpr DISPID kProjectFileName = members::VBProject::FileName.id;
inline constexpr DISPID kProjectIsDirty = 110;
inline constexpr DISPID kProjectWriteProperty = members::VBProject::WriteProperty.id;
inline constexpr DISPID kProjectReadProperty = members::VBProject::ReadProperty.id;
inline constexpr DISPID kProjectVBE = 122;
inline constexpr DISPID kProjectCollection = members::VBProject::Collection.id;
inline constexpr DISPID kProjectType = members::VBProject::Type.id;
inline constexpr DISPID kProjectSaved = members::VBProject::Saved.id;
inline constexpr DISPID kProjectVBComponents = members::VBProject::VBComponents.id;
// VBComponents
inline constexpr DISPID kComponentsParent = members::VBComponents::Parent.id;
inline constexpr DISPID kComponentsCount = members::VBComponents::Count.id;
inline constexpr DISPID kComponentsRemove = members::VBComponents::Remove.id;
inline constexpr DISPID kComponentsAdd = members::VBComponents::Add.id;
inline constexpr DISPID kComponentsVBE = 20;
inline constexpr DISPID kComponentsAddFile = members::VBComponents::AddFile.id;
// VBComponent
inline constexpr DISPID kComponentIsDirty = members::VBComponent::IsDirty.id;
inline constexpr DISPID kComponentFileNames = members::VBComponent::FileNames.id;
inline constexpr DISPID kComponentFileCount = members::VBComponent::FileCount.id;
inline constexpr DISPID kComponentName = members::VBComponent::Name.id;
inline constexpr DISPID kComponentCodeModule = members::VBComponent::CodeModule.id;
inline constexpr DISPID kComponentType = members::VBComponent::Type.id;
inline constexpr DISPID kComponentVBE = 53;
inline constexpr DISPID kComponentCollection = members::VBComponent::Collection.id;
inline constexpr DISPID kComponentHasOpenDesigner = 55;
inline constexpr DISPID kComponentReadProperty = members::VBComponent::ReadProperty.id;
inline constexpr DISPID kComponentWriteProperty = members::VBComponent::WriteProperty.id;
inline constexpr DISPID kComponentActivate = members::VBComponent::Activate.id;
// CodeModule
inline constexpr DISPID kCodeModuleParent = 0x60020000;
inline constexpr DISPID kCodeModuleVBE = 0x60020001;
inline constexpr DISPID kCodeModuleName = 0;
inline constexpr DISPID kCodeModuleLines = members::CodeModule::Lines.id;
inline constexpr DISPID kCodeModuleCountOfLines = members::CodeModule::CountOfLines.id;
inline constexpr DISPID kCodeModuleCodePane = members::CodeModule::CodePane.id;
// CodePane
inline constexpr DISPID kCodePaneVBE = 0x60020001;
inline constexpr DISPID kCodePaneWindow = members::CodePane::Window.id;
inline constexpr DISPID kCodePaneGetSelection = 0x60020003;
inline constexpr DISPID kCodePaneSetSelection = members::CodePane::SetSelection.id;
inline constexpr DISPID kCodePaneTopLine = members::CodePane::TopLine.id;
inline constexpr DISPID kCodePaneCountOfVisibleLines = 0x60020007;
inline constexpr DISPID kCodePaneCodeModule = 0x60020008;
inline constexpr DISPID kCodePaneShow = members::CodePane::Show.id;
// Windows and Window
inline constexpr DISPID kWindowsVBE = 1;
inline constexpr DISPID kWindowsParent = 2;
inline constexpr DISPID kWindowsCount = members::Windows::Count.id;
inline constexpr DISPID kWindowsCreateToolWindow = members::Windows::CreateToolWindow.id;
inline constexpr DISPID kWindowVBE = 1;
inline constexpr DISPID kWindowCollection = 2;
inline constexpr DISPID kWindowClose = members::Window::Close.id;
inline constexpr DISPID kWindowCaption = members::Window::Caption.id;
inline constexpr DISPID kWindowLeft = 101;
inline constexpr DISPID kWindowTop = 103;
inline constexpr DISPID kWindowWidth = 105;
inline constexpr DISPID kWindowVisible = members::Window::Visible.id;
inline constexpr DISPID kWindowHeight = 107;
inline constexpr DISPID kWindowWindowState = 109;
inline constexpr DISPID kWindowSetFocus = members::Window::SetFocus.id;
inline constexpr DISPID kWindowType = 112;
inline constexpr DISPID kWindowHWnd = members::Window::HWnd.id;
// Events
inline constexpr DISPID kEventsVBProjectsEvents = members::Events::VBProjectsEvents.id;
inline constexpr DISPID kEventsVBComponentsEvents = members::Events::VBComponentsEvents.id;
inline constexpr DISPID kEventsCommandBarEvents = members::Events::CommandBarEvents.id;
// AddIn and Addins
inline constexpr DISPID kAddInDescription = 0;
inline constexpr DISPID kAddInVBE = 1;
inline constexpr DISPID kAddInCollection = 2;
inline constexpr DISPID kAddInProgId = members::AddIn::ProgId.id;
inline constexpr DISPID kAddInGuid = 4;
inline constexpr DISPID kAddInConnect = 6;
inline constexpr DISPID kAddInObject = members::AddIn::Object.id;
inline constexpr DISPID kAddInsVBE = 1;
inline constexpr DISPID kAddInsParent = 2;
inline constexpr DISPID kAddInsCount = 40;

// Office 97 command bars: {000C03xx-0000-0000-C000-000000000046}
inline constexpr IID kIidCommandBars = ids::IID_CommandBars;
inline constexpr IID kIidCommandBar = ids::IID_CommandBar;
inline constexpr IID kIidCommandBarControls = ids::IID_CommandBarControls;
inline constexpr IID kIidCommandBarControl = ids::IID_CommandBarControl;
inline constexpr IID kIidCommandBarPopup = ids::IID_CommandBarPopup;
inline constexpr IID kIidCommandBarButton = ids::IID_CommandBarButton;

inline constexpr DISPID kAccName = -5003;
inline constexpr DISPID kAccDoDefaultAction = members::CommandBarControl::accDoDefaultAction.id;
// CommandBars
inline constexpr DISPID kBarsApplication = 0x60020000;
inline constexpr DISPID kBarsCreator = 0x60020001;
inline constexpr DISPID kBarsActiveMenuBar = 0x60030001;
inline constexpr DISPID kBarsAdd = members::CommandBars::Add.id;
inline constexpr DISPID kBarsCount = members::CommandBars::Count.id;
inline constexpr DISPID kBarsFindControl = members::CommandBars::FindControl.id;
inline constexpr DISPID kBarsParent = 0x6003000F;
// CommandBar
inline constexpr DISPID kBarApplication = 0x60030000;
inline constexpr DISPID kBarCreator = 0x60030001;
inline constexpr DISPID kBarBuiltIn = 0x60040000;
inline constexpr DISPID kBarControls = members::CommandBar::Controls.id;
inline constexpr DISPID kBarDelete = 0x60040004;
inline constexpr DISPID kBarEnabled = 0x60040005;
inline constexpr DISPID kBarFindControl = 0x60040007;
inline constexpr DISPID kBarIndex = 0x6004000A;
inline constexpr DISPID kBarName = members::CommandBar::Name.id;
inline constexpr DISPID kBarNameLocal = 0x60040010;
inline constexpr DISPID kBarParent = 0x60040012;
inline constexpr DISPID kBarType = 0x6004001D;
inline constexpr DISPID kBarVisible = members::CommandBar::Visible.id;
// CommandBarControls
inline constexpr DISPID kControlsApplication = 0x60020000;
inline constexpr DISPID kControlsCreator = 0x60020001;
inline constexpr DISPID kControlsAdd = members::CommandBarControls::Add.id;
inline constexpr DISPID kControlsCount = members::CommandBarControls::Count.id;
inline constexpr DISPID kControlsParent = 0x60030004;
// CommandBarControl
inline constexpr DISPID kControlApplication = 0x60030000;
inline constexpr DISPID kControlCreator = 0x60030001;
inline constexpr DISPID kControlBeginGroup = members::CommandBarControl::BeginGroup.id;
inline constexpr DISPID kControlBuiltIn = 0x60040002;
inline constexpr DISPID kControlCaption = members::CommandBarControl::Caption.id;
inline constexpr DISPID kControlDelete = members::CommandBarControl::Delete.id;
inline constexpr DISPID kControlDescriptionText = 0x60040008;
inline constexpr DISPID kControlEnabled = members::CommandBarControl::Enabled.id;
inline constexpr DISPID kControlExecute = members::CommandBarControl::Execute.id;
inline constexpr DISPID kControlId = members::CommandBarControl::Id.id;
inline constexpr DISPID kControlIndex = 0x60040014;
inline constexpr DISPID kControlOnAction = members::CommandBarControl::OnAction.id;
inline constexpr DISPID kControlParent = 0x6004001C;
inline constexpr DISPID kControlParameter = 0x6004001D;
inline constexpr DISPID kControlTag = members::CommandBarControl::Tag.id;
inline constexpr DISPID kControlTooltipText = members::CommandBarControl::TooltipText.id;
inline constexpr DISPID kControlType = members::CommandBarControl::Type.id;
inline constexpr DISPID kControlVisible = members::CommandBarControl::Visible.id;
// CommandBarButton
inline constexpr DISPID kButtonBuiltInFace = 0x60050000;
inline constexpr DISPID kButtonFaceId = members::CommandBarButton::FaceId.id;
inline constexpr DISPID kButtonShortcutText = 0x60050006;
inline constexpr DISPID kButtonState = 0x60050008;
inline constexpr DISPID kButtonStyle = members::CommandBarButton::Style.id;
// CommandBarPopup
inline constexpr DISPID kPopupCommandBar = 0x60050000;
inline constexpr DISPID kPopupControls = members::CommandBarPopup::Controls.id;

}  // namespace arbolet::vb6host::vbide

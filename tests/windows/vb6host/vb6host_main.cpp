// vb6host: runs the add-in DLL beside it in the emulated VB6 IDE, as the IDE's add-in manager
// would, over the projects on the command line, and says what worked.
//
//   vb6host.exe [--connect-mode 0|1|2] [--transcript OUT.txt] [--dump-tree OUT.json
//               [--locate COMPONENT:LINE KEY]] [--dump-menu KEY OUT.json]
//               [--expand all|NAME,...] [--screenshot OUT.png] [--cycles N] [--scenario]
//               [--dll PATH] PROJECT.vbp|GROUP.vbg...
//
//   vb6host.exe --installed PROGID [--hold NAME] [the options above but --dll] PROJECT...
//
// --installed runs the add-in the Addins key lists as PROGID from wherever its class is
// registered, as the IDE does after an installer ran: nothing is registered or unregistered.
// --hold keeps it connected until another program sets the event NAME.release (see
// installed_addin.h).
//
// Every step prints "vb6host: ok: ..." or "vb6host: FAILED: ..."; the last line is
// "vb6host: all steps passed" or "vb6host: N steps failed". Exit status 0 only when every step
// worked, 1 when one failed, 2 for a command line it cannot use.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "disk/vb_path.h"
#include "support/test_window.h"
#include "vb6host/addin_session.h"
#include "vb6host/document_dumps.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_commands.h"
#include "vb6host/installed_addin.h"
#include "vb6host/locate_step.h"
#include "vb6host/main_window.h"
#include "vb6host/step_report.h"
#include "vb6host/tool_window.h"
#include "vb6host/tree_dump.h"
#include "vb6host/tree_gestures.h"
#include "windows/base/ansi_text.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::vb6host {
namespace {

using windows::WideToUtf8;

struct Options {
    int mode = 0;
    std::wstring transcript, dumpTree, expand, screenshot, dll;
    // The node whose context menu is dumped ("" for empty tree space), and where to.
    std::wstring menuKey, dumpMenu;
    // With --dump-tree: the caret's component and line for Ctrl+L, and the key it must select.
    std::wstring locate, locateKey;
    int cycles = 0;
    bool scenario = false;
    // The installed add-in's ProgID, and the name of the events of a hold.
    std::wstring installed, hold;
    std::vector<std::wstring> projects;
};

bool Parse(int argc, wchar_t** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::wstring arg = argv[i];
        const auto value = [&](std::wstring& out) {
            if (i + 1 >= argc) return false;
            out = argv[++i];
            return true;
        };
        std::wstring number;
        if (arg == L"--connect-mode") {
            if (!value(number) || number.size() != 1 || number[0] < L'0' || number[0] > L'2')
                return false;
            options.mode = number[0] - L'0';
        } else if (arg == L"--cycles") {
            if (!value(number)) return false;
            options.cycles = _wtoi(number.c_str());
            if (options.cycles < 0 || options.cycles > 10000) return false;
        } else if (arg == L"--transcript") {
            if (!value(options.transcript)) return false;
        } else if (arg == L"--dump-tree") {
            if (!value(options.dumpTree)) return false;
        } else if (arg == L"--dump-menu") {
            if (!value(options.menuKey) || !value(options.dumpMenu)) return false;
        } else if (arg == L"--locate") {
            if (!value(options.locate) || !value(options.locateKey)) return false;
        } else if (arg == L"--expand") {
            if (!value(options.expand)) return false;
        } else if (arg == L"--screenshot") {
            if (!value(options.screenshot)) return false;
        } else if (arg == L"--dll") {
            if (!value(options.dll)) return false;
        } else if (arg == L"--installed") {
            if (!value(options.installed)) return false;
        } else if (arg == L"--hold") {
            if (!value(options.hold)) return false;
        } else if (arg == L"--scenario") {
            options.scenario = true;
        } else if (arg.rfind(L"--", 0) == 0) {
            return false;
        } else {
            options.projects.push_back(arg);
        }
    }
    return !options.projects.empty() &&
           (options.expand.empty() || !options.dumpTree.empty() || !options.dumpMenu.empty()) &&
           (options.locate.empty() || !options.dumpTree.empty()) &&
           (options.installed.empty() || options.dll.empty()) &&
           (options.hold.empty() || !options.installed.empty());
}

std::wstring DllBesideThisProgram() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    folder.resize(folder.find_last_of(L"\\/") + 1);
    return folder + L"Arbolet.dll";
}

void Pump(DWORD milliseconds) {
    const DWORD end = GetTickCount() + milliseconds;
    do {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(10);
    } while (static_cast<LONG>(end - GetTickCount()) > 0);
}

std::vector<std::wstring> SplitNames(const std::wstring& list) {
    std::vector<std::wstring> names;
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t comma = list.find(L',', start);
        const std::wstring name =
            list.substr(start, comma == std::wstring::npos ? std::wstring::npos : comma - start);
        if (!name.empty()) names.push_back(name);
        if (comma == std::wstring::npos) break;
        start = comma + 1;
    }
    return names;
}

// The IDE session the add-in runs in: the projects, the objects, the main window.
struct Session {
    std::shared_ptr<HostContext> context;
    std::unique_ptr<MainWindow> main;
};

BarControlRef AddInControl(HostContext& context, const wchar_t* bar) {
    const CommandBarRef found = context.Bars().FindBar(bar);
    return found ? found->controls->FindByCaption(L"Arbolet") : nullptr;
}

std::shared_ptr<ToolWindow> TheToolWindow(HostContext& context) {
    return context.ToolWindows().empty() ? nullptr : context.ToolWindows().front();
}

bool ShownAndActive(HostContext& context) {
    const auto window = TheToolWindow(context);
    return window && window->Visible() && window->InPlaceActive();
}

// Connects as the IDE does in `mode`, with start-up complete after mode 1, and checks what the
// add-in made.
void ConnectAndCheck(Session& session, AddInConnection& connection, const AddInEntry& entry,
                     int mode, Report& report, bool verbose) {
    HostContext& context = *session.context;
    const HRESULT hr = connection.Connect(entry, mode);
    if (verbose || FAILED(hr)) report.Check(hr, "OnConnection in mode " + std::to_string(mode));
    if (mode == 1) {
        const HRESULT started = connection.StartupComplete();
        if (verbose || FAILED(started)) report.Check(started, "OnStartupComplete");
    }
    Pump(50);
    if (!verbose) return;
    if (mode == 2) {
        report.Check(context.ToolWindows().empty(), "an external connection makes no tool window");
        return;
    }
    const auto window = TheToolWindow(context);
    report.Check(
        window && window->ProgId() == L"Quorlin.docAddIn" && window->Caption() == L"Arbolet",
        "the add-in made its tool window \"Arbolet\" with Quorlin.docAddIn");
    report.Check(ShownAndActive(context), "the tool window is shown with its control in place");
    report.Check(AddInControl(context, L"Add-Ins") != nullptr,
                 "the \"Add-Ins\" menu has the entry \"Arbolet\"");
    report.Check(AddInControl(context, L"Standard") != nullptr,
                 "the \"Standard\" toolbar has the button \"Arbolet\"");
}

// Hides the window through the add-in's Hide (as the tree's Hide command does) and shows it
// again, once from the menu entry and once from the toolbar button.
void ShowAndHide(Session& session, AddInConnection& connection, Report& report) {
    HostContext& context = *session.context;
    const auto window = TheToolWindow(context);
    if (!window) return;
    report.Check(connection.CallByName(L"Hide"), "Hide");
    report.Check(!window->Visible(), "the tool window is hidden");
    report.Check(
        session.main->ChooseMenuItem(AddInControl(context, L"Add-Ins")) && window->Visible(),
        "choosing Add-Ins > Arbolet shows it again");
    connection.CallByName(L"Hide");
    report.Check(
        session.main->PressToolbarButton(AddInControl(context, L"Standard")) && window->Visible(),
        "the toolbar button shows it again");
}

// Adds and removes a component and a project through the IDE's own commands, so that the
// add-in receives the events, and checks that the tree follows each change.
// Project > Add Module, then Project > Remove, on the active project: the tree must show the
// new module and then lose it, which only the project's component events tell the add-in.
void AddAndRemoveAModule(Session& session, HWND tree, const std::string& when, Report& report) {
    HostContext& context = *session.context;
    const auto project = context.Environment().ActiveVBProject();
    if (!report.Check(project != nullptr, "a project is active " + when)) return;
    const CommandBarRef menu = context.Bars().FindBar(L"Project");
    const int before = project->VBComponents()->Count();
    report.Check(session.main->ChooseMenuItem(menu->controls->FindByCaption(L"Add Module")) &&
                     project->VBComponents()->Count() == before + 1,
                 "Project > Add Module adds a module " + when);
    const auto added = context.SelectedComponent();
    const std::wstring addedName = added ? windows::Utf8ToWide(added->Name()) : std::wstring();
    report.Check(added && HasNodeText(tree, addedName), "the tree shows the new module " + when);
    report.Check(session.main->ChooseMenuItem(menu->controls->FindByCaption(L"Remove")) &&
                     project->VBComponents()->Count() == before,
                 "Project > Remove removes it again " + when);
    report.Check(added && !HasNodeText(tree, addedName), "the tree no longer shows it " + when);
}

void ChangeProjects(Session& session, Report& report) {
    HostContext& context = *session.context;
    disk::DiskEnvironment& environment = context.Environment();
    const std::size_t sinks = environment.Events()->VBProjectsEvents()->ConnectionCount();
    HWND tree = TheToolWindow(context) ? FindTreeView(TheToolWindow(context)->Client()) : nullptr;
    if (!report.Check(tree != nullptr, "the tool window holds a tree view")) return;
    report.Check(sinks > 0, "the add-in listens to the project events");
    const auto project = environment.ActiveVBProject();
    if (!report.Check(project != nullptr, "a project is active")) return;
    report.Check(HasNodeText(tree, windows::Utf8ToWide(project->Name())),
                 "the tree shows the project " + project->Name());
    AddAndRemoveAModule(session, tree, "(as loaded)", report);
    const std::string file = project->FileName();
    const std::string name = project->Name();
    try {
        environment.RemoveProject(project);
        report.Check(!HasNodeText(tree, windows::Utf8ToWide(name)),
                     "removing the project " + name + " takes it from the tree");
        environment.AddFromFile(disk::PathFromUtf8(file));
        environment.SetActiveVBProject(
            environment.VBProjects()->Item(environment.VBProjects()->Count()));
        report.Check(HasNodeText(tree, windows::Utf8ToWide(name)),
                     "opening " + name + " again puts it back");
        // The project opened again is followed as well, without a reload in between.
        AddAndRemoveAModule(session, tree, "(opened again)", report);
    } catch (const std::exception& error) {
        report.Check(false, std::string("removing and adding the project: ") + error.what());
    }
    for (const std::string& error : context.Errors())
        report.Check(false, "the IDE's command failed: " + error);
}

// The picture of the context menu a scenario opens: beside --screenshot, with "_menu" added.
std::filesystem::path MenuPicture(const std::wstring& screenshot) {
    if (screenshot.empty()) return {};
    std::filesystem::path picture(screenshot);
    return picture.replace_filename(picture.stem().wstring() + L"_menu.png");
}

// What a person does on the tree of the example project: a right click and View Code, a
// rename by label edit (and back), a drag onto the custom folder "Archive".
void UseTheTree(Session& session, const Options& options, Report& report) {
    const auto window = TheToolWindow(*session.context);
    HWND tree = window ? FindTreeView(window->Client()) : nullptr;
    if (!report.Check(tree != nullptr, "the tool window holds a tree view")) return;
    const TreeScene scene{*session.context, session.main->Handle(), tree, report};
    RightClickViewCode(scene, L"modStock", L"clsItem", MenuPicture(options.screenshot));
    RenameByLabelEdit(scene, L"modLegacy", L"modOld");
    RenameByLabelEdit(scene, L"modOld", L"modLegacy");
    DragOntoFolder(scene, L"clsWarehouse", L"Archive");
}

// Opens the nodes --expand names with the keyboard, as a user opens them, before the tree or a
// menu is dumped; they stay open for the picture.
void ExpandAsked(Session& session, const Options& options, Report& report) {
    const auto window = TheToolWindow(*session.context);
    HWND tree = window ? FindTreeView(window->Client()) : nullptr;
    if (!report.Check(tree != nullptr, "the tool window holds a tree view")) return;
    const bool all = options.expand == L"all";
    const int opened =
        ExpandNodes(tree, all ? std::vector<std::wstring>{} : SplitNames(options.expand), all);
    report.Check(all || opened > 0, "opened " + std::to_string(opened) + " nodes");
    Pump(50);
}

// The tree through the tool window's DocObj, in the standalone explorer's schema; the dump
// itself opens nothing.
void DumpTree(Session& session, const Options& options, Report& report) {
    const auto window = TheToolWindow(*session.context);
    HWND tree = window ? FindTreeView(window->Client()) : nullptr;
    if (!report.Check(tree != nullptr, "the tool window holds a tree view")) return;
    int located = -1;
    const std::size_t colon = options.locate.rfind(L':');
    if (colon != std::wstring::npos) {
        located = LocateWithKeyboard(*session.context, session.main->Handle(), tree,
                                     options.locate.substr(0, colon),
                                     _wtoi(options.locate.c_str() + colon + 1), report);
    }
    std::string error;
    const bool done = DumpDocumentTree(window->Document(), options.dumpTree, L"", error);
    report.Check(done, "wrote the tree (" + std::to_string(CountNodes(tree)) + " nodes) to " +
                           WideToUtf8(options.dumpTree) + (done ? "" : ": " + error));
    if (!options.locate.empty()) {
        const std::string key = KeyInDump(options.dumpTree, located);
        report.Check(key == WideToUtf8(options.locateKey),
                     "Ctrl+L at " + WideToUtf8(options.locate) + " selected \"" + key + "\"");
    }
}

// The context menu through the tool window's DocObj, as the standalone explorer dumps it; with
// --screenshot the picture is taken while the menu is open.
void DumpMenu(Session& session, const Options& options, Report& report) {
    const auto window = TheToolWindow(*session.context);
    std::string error;
    const bool done = window && DumpDocumentMenu(window->Document(), options.menuKey,
                                                 options.dumpMenu, options.screenshot, error);
    report.Check(done, "wrote the context menu of \"" + WideToUtf8(options.menuKey) + "\" to " +
                           WideToUtf8(options.dumpMenu) + (done ? "" : ": " + error));
}

void Screenshot(Session& session, const Options& options, Report& report) {
    RedrawWindow(session.main->Handle(), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
    Pump(200);
    report.Check(windows::SaveWindowPicture(session.main->Handle(), options.screenshot),
                 "screenshot " + WideToUtf8(options.screenshot));
}

BOOL CALLBACK CountOne(HWND, LPARAM total) {
    ++*reinterpret_cast<int*>(total);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM total) {
    CountOne(window, total);
    EnumChildWindows(window, &CountOne, total);
    return TRUE;
}

// The windows of this thread, with all their descendants.
int CountWindows() {
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), &CountWithChildren, reinterpret_cast<LPARAM>(&count));
    return count;
}

// Connects and disconnects again and again: every object must go each time, and the process's
// GDI and USER handles (and its windows, which Wine counts where GetGuiResources answers 0)
// must be where the first cycle left them.
void Cycles(Session& session, const AddInEntry& entry, const Options& options,
            const std::wstring& dll, Report& report) {
    HostContext& context = *session.context;
    const HANDLE process = GetCurrentProcess();
    DWORD gdi = 0, user = 0;
    int windows = 0;
    int leftObjects = 0;
    for (int i = 0; i < options.cycles; ++i) {
        AddInConnection connection(context);
        ConnectAndCheck(session, connection, entry, options.mode, report, false);
        connection.Disconnect();
        Pump(10);
        leftObjects += context.LiveObjects();
        if (i == 0) {
            gdi = GetGuiResources(process, GR_GDIOBJECTS);
            user = GetGuiResources(process, GR_USEROBJECTS);
            windows = CountWindows();
        }
    }
    report.Check(leftObjects == 0, std::to_string(options.cycles) +
                                       " connect/disconnect cycles release every IDE object");
    const DWORD gdiAfter = GetGuiResources(process, GR_GDIOBJECTS);
    const DWORD userAfter = GetGuiResources(process, GR_USEROBJECTS);
    const int windowsAfter = CountWindows();
    report.Check(gdiAfter <= gdi && userAfter <= user && windowsAfter <= windows,
                 "GDI handles " + std::to_string(gdi) + " -> " + std::to_string(gdiAfter) +
                     ", USER handles " + std::to_string(user) + " -> " + std::to_string(userAfter) +
                     ", windows " + std::to_string(windows) + " -> " +
                     std::to_string(windowsAfter));
    if (HMODULE module = GetModuleHandleW(dll.c_str())) {
        using CanUnload = HRESULT(STDAPICALLTYPE*)();
        const auto canUnload = reinterpret_cast<CanUnload>(
            reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
        report.Check(canUnload != nullptr && canUnload() == S_OK, "DllCanUnloadNow answers S_OK");
    }
}

// The installed add-in `progId`: listed under the Addins key, its class served by a DLL that
// exists; `dll` becomes that DLL.
bool FindInstalled(const std::wstring& progId, AddInEntry& entry, std::wstring& dll,
                   Report& report) {
    if (!report.Check(
            FindAddInByProgId(progId, entry),
            "the Addins key lists " + WideToUtf8(progId) + " and its class is registered"))
        return false;
    dll = ServerOf(entry.clsid);
    return report.Check(!dll.empty() && GetFileAttributesW(dll.c_str()) != INVALID_FILE_ATTRIBUTES,
                        "its class is served by the installed " + WideToUtf8(dll));
}

// The DLL the IDE loaded is the installed one, and no other copy of it is loaded.
void CheckLoadedFrom(const std::wstring& dll, Report& report) {
    const std::wstring fileName = dll.substr(dll.find_last_of(L"\\/") + 1);
    const std::vector<std::wstring> loaded = LoadedModulePaths(fileName);
    std::string paths;
    for (const std::wstring& path : loaded)
        paths += (paths.empty() ? "" : ", ") + WideToUtf8(path);
    report.Check(
        loaded.size() == 1 && _wcsicmp(loaded[0].c_str(), dll.c_str()) == 0,
        "the loaded " + WideToUtf8(fileName) + " is the installed one (loaded: " + paths + ")");
}

int Run(const Options& options) {
    Report report;
    const bool installed = !options.installed.empty();
    std::wstring dll = options.dll.empty() ? DllBesideThisProgram() : options.dll;
    AddInEntry entry;
    if (installed) {
        if (!FindInstalled(options.installed, entry, dll, report)) return report.Finish();
    } else if (!report.Check(GetFileAttributesW(dll.c_str()) != INVALID_FILE_ATTRIBUTES,
                             "the add-in DLL is at " + WideToUtf8(dll)) ||
               !report.Check(Regsvr32(L"/s", dll) == 0, "regsvr32 /s registers it")) {
        return report.Finish();
    }
    if (installed || report.Check(FindAddIn(dll, entry), "the Addins key lists it")) {
        report.Note("add-in " + WideToUtf8(entry.progId) + " \"" + WideToUtf8(entry.friendlyName) +
                    "\", LoadBehavior " + std::to_string(entry.loadBehavior));
        std::vector<std::filesystem::path> projects;
        for (const std::wstring& project : options.projects)
            projects.emplace_back(project);
        Session session;
        try {
            session.context = std::make_shared<HostContext>(disk::DiskEnvironment::Open(projects));
            for (const auto& warning : session.context->Environment().Warnings())
                report.Note("warning: " + warning.ToString());
        } catch (const std::exception& error) {
            report.Check(false, std::string("opening the projects: ") + error.what());
        }
        if (session.context) {
            BuildIdeCommandBars(*session.context);
            session.main = std::make_unique<MainWindow>(*session.context);
            session.main->Show();
            {
                AddInConnection connection(*session.context);
                ConnectAndCheck(session, connection, entry, options.mode, report, true);
                if (connection.Connected()) {
                    if (installed) CheckLoadedFrom(dll, report);
                    if (!options.hold.empty()) {
                        report.Check(HoldUntilReleased(options.hold, 300000),
                                     "held the add-in until " +
                                         WideToUtf8(ReleaseEventName(options.hold)) + " was set");
                    }
                    if (options.scenario && options.mode != 2) {
                        ShowAndHide(session, connection, report);
                        UseTheTree(session, options, report);
                        ChangeProjects(session, report);
                    }
                    if (!options.expand.empty()) ExpandAsked(session, options, report);
                    if (!options.dumpTree.empty()) DumpTree(session, options, report);
                    if (!options.dumpMenu.empty()) DumpMenu(session, options, report);
                    if (!options.screenshot.empty() && options.dumpMenu.empty())
                        Screenshot(session, options, report);
                    report.Check(connection.Disconnect(), "OnDisconnection");
                    report.Check(!AddInControl(*session.context, L"Add-Ins") &&
                                     !AddInControl(*session.context, L"Standard"),
                                 "the menu entry and the button are gone");
                    report.Check(session.context->LiveObjects() == 0,
                                 "every IDE object the add-in held is released (" +
                                     std::to_string(session.context->LiveObjects()) + " left)");
                }
            }
            if (options.cycles > 0) Cycles(session, entry, options, dll, report);
            if (!options.transcript.empty()) {
                report.Check(session.context->Transcript().WriteTo(WideToUtf8(options.transcript)),
                             "wrote the transcript (" +
                                 std::to_string(session.context->Transcript().Size()) +
                                 " calls) to " + WideToUtf8(options.transcript));
            }
            session.main.reset();
            session.context.reset();
        }
    }
    CoFreeUnusedLibraries();
    if (installed) return report.Finish();  // the installer's registration stays
    report.Check(Regsvr32(L"/u /s", dll) == 0, "regsvr32 /u /s unregisters it");
    report.Check(entry.progId.empty() || !AddInListed(entry.progId),
                 "the Addins key no longer lists it");
    return report.Finish();
}

}  // namespace
}  // namespace arbolet::vb6host

int wmain(int argc, wchar_t** argv) {
    arbolet::vb6host::Options options;
    if (!arbolet::vb6host::Parse(argc, argv, options)) {
        std::fprintf(stderr,
                     "usage: vb6host [--connect-mode 0|1|2] [--transcript OUT.txt] [--dump-tree "
                     "OUT.json [--locate COMPONENT:LINE KEY]] [--dump-menu KEY OUT.json] "
                     "[--expand all|NAME,...] [--screenshot OUT.png] [--cycles N] [--scenario] "
                     "[--dll PATH] PROJECT.vbp|GROUP.vbg...\n");
        std::fprintf(stderr,
                     "       vb6host --installed PROGID [--hold NAME] [the options above "
                     "but --dll] PROJECT.vbp|GROUP.vbg...\n");
        return 2;
    }
    if (FAILED(OleInitialize(nullptr))) {
        std::fprintf(stderr, "vb6host: FAILED: OleInitialize\n");
        return 1;
    }
    const int status = arbolet::vb6host::Run(options);
    OleUninitialize();
    return status;
}

// arbolet-explorer: the tool window's tree over projects on disk, as a program of its own.
// Without automation options it opens the projects named and runs until closed; with them it
// does what they ask and exits, leaving no window behind.
#include <windows.h>
// after windows.h, which it needs
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "analysis/display_options.h"
#include "automation.h"
#include "flags/display_flags.h"
#include "main_window.h"
#include "windows/base/ansi_text.h"

namespace arbolet::explorer_app {
namespace {

struct Arguments {
    std::vector<std::string> projects;
    std::string dumpTree;
    std::string expand;
    std::vector<std::string> dumpMenu;  // the node's key and the output file
    std::string screenshot;
    std::string filter;
    std::string locate;
    analysis::DisplayOptions display;

    bool Automated() const { return !dumpTree.empty() || !dumpMenu.empty() || !screenshot.empty(); }
};

std::vector<std::string> CommandLineArguments() {
    int count = 0;
    LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(windows::WideToUtf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(windows::Utf8ToWide(utf8));
}

// Shows the message where a person will see it: on the console when there is one, else in a
// message box.
void Report(const std::string& text, bool automated) {
    if (automated || GetStdHandle(STD_ERROR_HANDLE) != nullptr) {
        std::cerr << text << std::endl;
        if (automated) return;
    }
    const std::wstring wide = windows::Utf8ToWide(text);
    MessageBoxW(nullptr, wide.c_str(), L"Arbolet Explorer", MB_OK | MB_ICONINFORMATION);
}

std::optional<Arguments> Parse(int& status) {
    Arguments arguments;
    CLI::App app("The Arbolet explorer: Visual Basic 6 projects as a tree.", "arbolet-explorer");
    // Paths under Wine begin with "/", which must not read as Windows-style options.
    app.allow_windows_style_options(false);
    app.add_option("projects", arguments.projects, ".vbp and .vbg files to open");
    app.add_option("--dump-tree", arguments.dumpTree,
                   "Write the tree read back from the control as JSON, then exit");
    app.add_option("--expand", arguments.expand,
                   "With --dump-tree or --dump-menu: open these components first (all, or "
                   "names with commas), so that the menu of a code line can be asked for");
    app.add_option("--dump-menu", arguments.dumpMenu,
                   "KEY OUT: open the context menu of the node with KEY as a right click would, "
                   "write it as JSON to OUT, then exit (KEY \"\": empty tree space, #background: "
                   "the document's background)")
        ->expected(2)
        ->allow_extra_args(false);
    app.add_option("--filter", arguments.filter,
                   "Type TEXT into the search box first (:NAME finds procedures)");
    app.add_option("--locate", arguments.locate,
                   "COMPONENT:LINE: select the node of that code line first; --dump-tree then "
                   "writes the selected key as \"selected\"");
    app.add_option("--screenshot", arguments.screenshot,
                   "Save a picture of the window as PNG after the other options, then exit");
    flags::AddDisplayFlags(app, arguments.display);
    std::vector<std::string> raw = CommandLineArguments();
    if (!raw.empty()) raw.erase(raw.begin());
    std::reverse(raw.begin(), raw.end());
    try {
        app.parse(raw);
    } catch (const CLI::CallForHelp&) {
        Report(app.help(), true);
        status = 0;
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        Report(std::string(error.what()) + "\nRun with --help for more information.", true);
        status = 2;
        return std::nullopt;
    }
    return arguments;
}

// "modStock:12": the component's name and a code line from 1 on.
std::optional<explorer::CodeLocation> ParseLocation(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) return std::nullopt;
    std::int64_t line = 0;
    for (const char digit : text.substr(colon + 1)) {
        if (digit < '0' || digit > '9' || line > 99'999'999) return std::nullopt;
        line = line * 10 + (digit - '0');
    }
    return explorer::CodeLocation{{}, text.substr(0, colon), line};
}

int RunAutomated(const Arguments& arguments) {
    MainWindow window(false);
    analysis::FixedDisplayOptions display(arguments.display);
    std::vector<std::filesystem::path> files;
    for (const auto& project : arguments.projects)
        files.push_back(PathOf(project));
    if (!arguments.screenshot.empty()) {
        SetWindowPos(window.hWnd(), nullptr, 40, 40, 420, 640, SWP_NOZORDER | SWP_NOACTIVATE);
        ShowWindow(window.hWnd(), SW_SHOWNOACTIVATE);
    }
    if (!files.empty()) {
        std::string error;
        if (!window.Open(files, &display, &error)) {
            Report(error, true);
            return 2;
        }
        for (const auto& warning : window.Environment()->Warnings())
            Report("warning: " + warning.ToString(), true);
    }
    if (!arguments.filter.empty()) window.Document().Navigation().SetSearchText(arguments.filter);
    if (!arguments.locate.empty()) {
        const auto location = ParseLocation(arguments.locate);
        if (!location) {
            Report("--locate wants COMPONENT:LINE, not " + arguments.locate, true);
            return 2;
        }
        if (!window.Document().Navigation().Locate(*location)) {
            Report("No component " + location->component + " in the tree", true);
            return 2;
        }
    }
    if (!arguments.dumpTree.empty() &&
        !DumpTree(window, arguments.expand, PathOf(arguments.dumpTree),
                  !arguments.locate.empty())) {
        Report("Cannot write " + arguments.dumpTree, true);
        return 2;
    }
    if (!arguments.dumpMenu.empty()) {
        if (!arguments.expand.empty()) {
            for (const auto& problem : OpenComponents(window, arguments.expand))
                Report("warning: not expanded: " + problem, true);
        }
        // With a menu, the picture is taken while it is open.
        std::string error;
        if (!DumpMenu(window, arguments.dumpMenu[0], PathOf(arguments.dumpMenu[1]),
                      PathOf(arguments.screenshot), error)) {
            Report(error, true);
            return 2;
        }
        return 0;
    }
    if (!arguments.screenshot.empty()) {
        UpdateWindow(window.hWnd());
        RedrawWindow(window.hWnd(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        if (!SaveScreenshot(window.hWnd(), PathOf(arguments.screenshot))) {
            Report("Cannot write " + arguments.screenshot, true);
            return 2;
        }
    }
    return 0;
}

int RunInteractive(const Arguments& arguments, int showCommand) {
    MainWindow window(true);
    window.ShowAtSavedPlace(showCommand);
    std::vector<std::filesystem::path> files;
    for (const auto& project : arguments.projects)
        files.push_back(PathOf(project));
    if (!files.empty() && window.Open(files) && !arguments.filter.empty())
        window.Document().Navigation().SetSearchText(arguments.filter);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (window.TranslateAccelerator(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

}  // namespace
}  // namespace arbolet::explorer_app

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int showCommand) {
    using namespace arbolet::explorer_app;
    BecomeDpiAware();
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_TREEVIEW_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    int status = 0;
    const auto arguments = Parse(status);
    if (!arguments) return status;
    try {
        return arguments->Automated() ? RunAutomated(*arguments)
                                      : RunInteractive(*arguments, showCommand);
    } catch (const std::exception& failure) {
        Report(failure.what(), arguments->Automated());
        return 2;
    }
}

// The terminal of the arbolet tool on Windows (see console.h). The console shows UTF-8 only
// when told so, and ANSI colours only with virtual terminal processing on; a redirected
// output is a file or pipe and gets plain UTF-8 without colours.
#include <shellapi.h>
#include <windows.h>

#include <cstdlib>

#include "console.h"

namespace arbolet::app {
namespace {

bool IsConsole(HANDLE handle, DWORD& mode) {
    return handle != INVALID_HANDLE_VALUE && handle != nullptr && GetConsoleMode(handle, &mode);
}

std::string ToUtf8(const wchar_t* text) {
    const int wide = static_cast<int>(wcslen(text));
    if (wide == 0) return {};
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, wide, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, wide, result.data(), bytes, nullptr, nullptr);
    return result;
}

}  // namespace

Console::Console() {
    DWORD outMode = 0;
    DWORD errMode = 0;
    const HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    const bool outConsole = IsConsole(out, outMode);
    const bool errConsole = IsConsole(GetStdHandle(STD_ERROR_HANDLE), errMode);
    if (outConsole || errConsole) {
        previousOutputCodePage_ = GetConsoleOutputCP();
        SetConsoleOutputCP(CP_UTF8);
    }
    const char* noColour = std::getenv("NO_COLOR");
    const bool wanted = noColour == nullptr || *noColour == '\0';
    // Consoles older than Windows 10 refuse the mode and show escape codes as text.
    colour_ = wanted && outConsole &&
              SetConsoleMode(out, outMode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

Console::~Console() {
    if (previousOutputCodePage_ != 0) SetConsoleOutputCP(previousOutputCodePage_);
}

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) return std::vector<std::string>(argv, argv + argc);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(ToUtf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

}  // namespace arbolet::app

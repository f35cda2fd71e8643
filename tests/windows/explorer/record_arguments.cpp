// A stand-in editor for the explorer's tests: writes the arguments it was started with, one a
// line, to the file named by its first argument.
#include <windows.h>
// after windows.h, which it needs
#include <shellapi.h>

#include <cstdio>
#include <string>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr || count < 2) return 2;
    // Written under another name first, so that a reader never sees half the file.
    const std::wstring target = arguments[1];
    const std::wstring partial = target + L".part";
    FILE* out = _wfopen(partial.c_str(), L"wb");
    if (out == nullptr) return 2;
    for (int i = 2; i < count; ++i) {
        char line[4096];
        const int size = WideCharToMultiByte(CP_UTF8, 0, arguments[i], -1, line,
                                             static_cast<int>(sizeof(line)), nullptr, nullptr);
        if (size > 0) std::fprintf(out, "%s\n", line);
    }
    std::fclose(out);
    LocalFree(arguments);
    return MoveFileExW(partial.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) ? 0 : 2;
}

// vb6host as a process of its own (see host_process.h).
#include "host_process.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "vb6host/installed_addin.h"

namespace arbolet::installer_testing {
namespace {

std::wstring TemporaryFile() {
    wchar_t folder[MAX_PATH] = {};
    wchar_t file[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"vbh", 0, file);
    return file;
}

std::wstring Quoted(const std::wstring& argument) {
    return L"\"" + argument + L"\"";
}

}  // namespace

HostProcess::HostProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
                         const std::wstring& hold)
    : outputFile_(TemporaryFile()) {
    std::wstring commandLine = Quoted(program);
    for (const std::wstring& argument : arguments)
        commandLine += L" " + Quoted(argument);
    if (!hold.empty()) {
        commandLine += L" --hold " + Quoted(hold);
        held_ = CreateEventW(nullptr, TRUE, FALSE, vb6host::HeldEventName(hold).c_str());
        release_ = CreateEventW(nullptr, TRUE, FALSE, vb6host::ReleaseEventName(hold).c_str());
    }
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE output = CreateFileW(outputFile_.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process)) {
        CloseHandle(process.hThread);
        process_ = process.hProcess;
    }
    CloseHandle(output);
}

HostProcess::~HostProcess() {
    if (process_ != nullptr) {
        Finish();
        CloseHandle(process_);
    }
    if (held_ != nullptr) CloseHandle(held_);
    if (release_ != nullptr) CloseHandle(release_);
    DeleteFileW(outputFile_.c_str());
}

bool HostProcess::WaitUntilHeld(DWORD milliseconds) {
    if (process_ == nullptr || held_ == nullptr) return false;
    const HANDLE either[] = {held_, process_};
    return WaitForMultipleObjects(2, either, FALSE, milliseconds) == WAIT_OBJECT_0;
}

std::string HostProcess::Finish() {
    if (release_ != nullptr) SetEvent(release_);
    if (process_ != nullptr && WaitForSingleObject(process_, 120000) == WAIT_TIMEOUT)
        TerminateProcess(process_, 1);
    std::ifstream in(std::filesystem::path(outputFile_), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool AllStepsPassed(const std::string& output) {
    return output.find("vb6host: all steps passed") != std::string::npos &&
           output.find("vb6host: FAILED") == std::string::npos;
}

}  // namespace arbolet::installer_testing

// The emulated VB6 IDE (vb6host) run as a process of its own over the installed add-in, as a
// developer's IDE runs while an installer works: started, optionally held with the add-in
// loaded until released, and its printed report read back.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace arbolet::installer_testing {

class HostProcess {
  public:
    // Starts `program` (vb6host.exe) with `arguments`, its output going to a file; with a
    // non-empty `hold`, the run stops with the add-in connected until Release().
    HostProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
                const std::wstring& hold);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Waits until the held run has the add-in loaded; false when it ended or timed out first.
    bool WaitUntilHeld(DWORD milliseconds);
    // Lets a held run go on, waits for the process to end and returns everything it printed.
    std::string Finish();

  private:
    std::wstring outputFile_;
    HANDLE process_ = nullptr;
    HANDLE held_ = nullptr;
    HANDLE release_ = nullptr;
};

// Whether the report of a vb6host run says every step passed.
bool AllStepsPassed(const std::string& output);

}  // namespace arbolet::installer_testing

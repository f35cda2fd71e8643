// A small ActiveX control for the tool window tests: it records every container call it gets,
// draws its caption in a window of its own once it is in-place active, and counts its live
// instances so that tests see it released. It is registered for this process only, under a
// ProgID, so that CreateToolWindow finds it as it finds the add-in's control.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace arbolet::vb6host::testing {

inline constexpr wchar_t kTestControlProgId[] = L"Arbolet.HostTestControl";

// What the controls made since the last Reset were asked, in order.
std::vector<std::string>& ControlCalls();
int LiveControls();
// The window of the last control that was in-place activated; nullptr once it is destroyed.
HWND LastControlWindow();

// Registers the class object and the ProgID while it lives.
class TestControlRegistration {
  public:
    TestControlRegistration();
    ~TestControlRegistration();
    TestControlRegistration(const TestControlRegistration&) = delete;
    TestControlRegistration& operator=(const TestControlRegistration&) = delete;
    bool Ok() const { return cookie_ != 0; }

  private:
    DWORD cookie_ = 0;
};

}  // namespace arbolet::vb6host::testing

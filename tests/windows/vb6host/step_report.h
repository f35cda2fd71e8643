// What vb6host prints for each step it takes: "vb6host: ok: ..." or "vb6host: FAILED: ...",
// and a last line that says whether every step worked.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>

namespace arbolet::vb6host {

class Report {
  public:
    bool Check(bool ok, const std::string& step) {
        std::printf("vb6host: %s: %s\n", ok ? "ok" : "FAILED", step.c_str());
        std::fflush(stdout);
        if (!ok) ++failures_;
        return ok;
    }
    bool Check(HRESULT hr, const std::string& step) {
        char code[16];
        std::snprintf(code, sizeof(code), "0x%08lX", static_cast<unsigned long>(hr));
        return Check(SUCCEEDED(hr), step + (SUCCEEDED(hr) ? "" : std::string(" (") + code + ")"));
    }
    void Note(const std::string& text) {
        std::printf("vb6host: %s\n", text.c_str());
        std::fflush(stdout);
    }
    // Prints the last line; the program's exit status: 0 when every step worked.
    int Finish() {
        if (failures_ == 0) {
            Note("all steps passed");
            return 0;
        }
        Note(std::to_string(failures_) + " steps failed");
        return 1;
    }

  private:
    int failures_ = 0;
};

}  // namespace arbolet::vb6host

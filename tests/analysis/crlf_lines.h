// Source text for the VB6 checker's tests: one CRLF-ended line per string, as VB6 saves files.
#pragma once

#include <initializer_list>
#include <string>

namespace arbolet::analysis::testing {

inline std::string Lines(std::initializer_list<const char*> lines) {
    std::string code;
    for (const char* line : lines) {
        code += line;
        code += "\r\n";
    }
    return code;
}

}  // namespace arbolet::analysis::testing

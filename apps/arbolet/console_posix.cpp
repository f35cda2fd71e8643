// The terminal of the arbolet tool on POSIX systems (see console.h): arguments and output are
// already UTF-8.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "console.h"

namespace arbolet::app {

Console::Console() {
    const char* noColour = std::getenv("NO_COLOR");
    colour_ = isatty(fileno(stdout)) && (noColour == nullptr || *noColour == '\0');
}

Console::~Console() = default;

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    return std::vector<std::string>(argv, argv + argc);
}

}  // namespace arbolet::app

// The arbolet command-line tool's entry point: decides whether the terminal takes colours.
#include <cstdio>
#include <cstdlib>
#include <iostream>

#ifdef _WIN32
#include <io.h>
#define ARBOLET_ISATTY _isatty
#define ARBOLET_FILENO _fileno
#else
#include <unistd.h>
#define ARBOLET_ISATTY isatty
#define ARBOLET_FILENO fileno
#endif

#include "cli/cli.h"

int main(int argc, char** argv) {
    const char* term = std::getenv("TERM");
    const bool colour = arbolet::cli::ColourByDefault(ARBOLET_ISATTY(ARBOLET_FILENO(stdout)) != 0,
                                                      term, std::getenv("NO_COLOR"));
    const auto depth = arbolet::cli::DepthFromEnvironment(term, std::getenv("COLORTERM"));
    std::ios::sync_with_stdio(false);
    return arbolet::cli::RunArbolet(argc, argv, {std::cout, std::cerr, colour, depth});
}

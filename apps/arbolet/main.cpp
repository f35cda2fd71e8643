// The arbolet command-line tool's entry point: sets up the terminal and runs one subcommand.
#include <cstdlib>
#include <iostream>

#include "cli/cli.h"
#include "console.h"

int main(int argc, char** argv) {
    const arbolet::app::Console console;
    const std::vector<std::string> arguments = arbolet::app::Utf8Arguments(argc, argv);
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    // The console has ruled out pipes and NO_COLOR; a dumb terminal takes no colour either.
    const char* term = std::getenv("TERM");
    const bool colour = arbolet::cli::ColourByDefault(console.Colour(), term, nullptr);
    const auto depth = arbolet::cli::DepthFromEnvironment(term, std::getenv("COLORTERM"));
    std::ios::sync_with_stdio(false);
    return arbolet::cli::RunArbolet(static_cast<int>(pointers.size()), pointers.data(),
                                    {std::cout, std::cerr, colour, depth});
}

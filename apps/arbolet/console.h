// What the arbolet tool needs from the terminal it runs in: the arguments as UTF-8, whether
// colours may be written, and a console that shows UTF-8 while the tool runs.
#pragma once

#include <string>
#include <vector>

namespace arbolet::app {

// Sets the terminal up for UTF-8 output for as long as it lives, and puts back what it changed.
class Console {
  public:
    Console();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Whether ANSI colours and bold may go to standard output: it is a terminal that takes
    // them, and NO_COLOR is not set.
    bool Colour() const { return colour_; }

  private:
    bool colour_ = false;
    unsigned int previousOutputCodePage_ = 0;
};

// The command-line arguments in UTF-8. On Windows `argv` is in the ANSI code page and loses
// every character outside it, so the arguments are read again from the wide command line.
std::vector<std::string> Utf8Arguments(int argc, char** argv);

}  // namespace arbolet::app

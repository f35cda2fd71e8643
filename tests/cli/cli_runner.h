// Runs the arbolet command line in-process, capturing its output and exit status.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"

namespace arbolet::cli::testing {

struct CliRun {
    int status = 0;
    std::string out;
    std::string err;
};

inline CliRun Arbolet(std::vector<std::string> args, bool colour = false) {
    args.insert(args.begin(), "arbolet");
    std::vector<const char*> argv;
    for (const auto& a : args)
        argv.push_back(a.c_str());
    std::ostringstream out;
    std::ostringstream err;
    const int status = RunArbolet(static_cast<int>(argv.size()), argv.data(), {out, err, colour});
    return {status, out.str(), err.str()};
}

}  // namespace arbolet::cli::testing

#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace exchange {

struct Options {
    int rounds = 101;
    int exchanges = 1000;
    bool isUnpinned = false;
    std::string only;
    int count = 0;
};

/// Declares the options, which are stored in `options` when the command line is parsed.
void declareOptions(CLI::App& app, Options& options);

} // namespace exchange

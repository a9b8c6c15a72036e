// Writes the manual pages and the completion scripts of the tools into a folder.

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "tools/azubsim/Options.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/manual/Manual.h"

namespace {

template <typename Options>
bool write(const std::string& folder, void (*declareOptions)(CLI::App&, Options&)) {
    CLI::App app;
    Options options;
    declareOptions(app, options);
    std::ofstream page(folder + '/' + app.get_name() + ".1");
    std::ofstream completion(folder + '/' + app.get_name() + ".bash");
    page << manual::manualPage(app);
    completion << manual::bashCompletion(app);
    return page.flush().good() && completion.flush().good();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: write_manuals FOLDER\n";
        return EXIT_FAILURE;
    }
    const std::string folder = argv[1];
    if (!write(folder, azubsim::declareOptions) || !write(folder, lipsyncctl::declareOptions)) {
        std::cerr << "write_manuals: cannot write into " << folder << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

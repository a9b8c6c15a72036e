#pragma once

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "comms/Client.h"
#include "tests/support/Listener.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

/// An engine simulator, or azubsim in another mode that serves clients, that is ready for
/// connections.
class Engine : public Process {
public:
    explicit Engine(const std::string& socket, const std::vector<std::string>& options = {},
                    const std::vector<std::string>& mode = {"engine"})
        : Process(command(socket, options, mode)) {
        readUntil("listening at " + socket + '\n');
    }

private:
    static std::vector<std::string> command(const std::string& socket,
                                            const std::vector<std::string>& options,
                                            std::vector<std::string> mode) {
        mode.insert(mode.begin(), AZUBSIM);
        mode.insert(mode.end(), {"--socket", socket});
        mode.insert(mode.end(), options.begin(), options.end());
        return mode;
    }
};

/// A test that runs programs and has a socket path for an engine.
class EngineTest : public testing::Test {
protected:
    void SetUp() override { SKIP_WITHOUT_SOCKET_FILES(); }

    /// Runs a program with arguments separated by spaces and expects this exit status. Returns its
    /// output without the library's log lines.
    static std::string run(const std::string& program, const std::string& arguments, int status = 0,
                           Process::Output to = Process::ToTest) {
        std::istringstream words(arguments);
        std::vector<std::string> command{std::istream_iterator<std::string>(words), {}};
        command.insert(command.begin(), program);
        Process process(command, to);
        const std::string output = process.readAll();
        EXPECT_EQ(process.wait(), status) << arguments << ": " << output;
        return std::regex_replace(output, std::regex("I/AZUBLIPSYNCAPI .*\n"), "");
    }

    /// Like `run`, but standard error must begin with `error`.
    static void expectFailure(const std::string& program, const std::string& arguments, int status,
                              const std::string& error) {
        const std::string output = run(program, arguments, status, Process::ToFullDisk);
        EXPECT_EQ(output.substr(0, error.size()), error) << arguments;
    }

    static std::unique_ptr<velta::zub::comms::Link> connectTo(const std::string& path) {
        velta::zub::comms::Link* link = nullptr;
        EXPECT_TRUE(velta::zub::comms::Client::connectUnixServer(path.c_str(), link).isSuccess());
        return std::unique_ptr<velta::zub::comms::Link>(link);
    }

    const TemporaryDirectory directory;
    const std::string socket = directory.path() + "/engine";
    const std::string at = " --socket " + socket;
};

} // namespace tests

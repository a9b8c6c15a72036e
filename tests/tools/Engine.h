#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "comms/Client.h"
#include "tests/support/Listener.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryDirectory.h"

/// Expects that one text is in another.
#define EXPECT_IN(part, whole) EXPECT_PRED_FORMAT2(testing::IsSubstring, part, whole)

namespace tests {

/// These groups of all matches.
inline std::vector<std::string> found(const std::string& text, const char* pattern,
                                      const std::vector<int>& groups) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, groups), {}};
}

/// An engine simulator, or azubsim in another mode that serves clients, that is ready for
/// connections. Each option is one argument.
class Engine : public Process {
public:
    explicit Engine(const std::string& socket, const std::vector<std::string>& options = {},
                    const std::string& mode = "engine")
        : Process(AZUBSIM, mode + " --socket " + socket, ToTest, options) {
        readUntil("listening at " + socket + '\n');
    }
};

/// A test that runs programs and has paths for the sockets of an engine and a tap, and for a file.
class EngineTest : public testing::Test {
protected:
    void SetUp() override { SKIP_WITHOUT_SOCKET_FILES(); }

    /// Runs a program with arguments separated by spaces and expects this exit status. Returns its
    /// output.
    static std::string run(const std::string& program, const std::string& arguments, int status = 0,
                           Process::Output to = Process::ToTest) {
        Process process(program, arguments, to);
        std::string output = process.readAll();
        EXPECT_EQ(process.wait(), status) << arguments << ": " << output;
        return output;
    }

    /// Like `run`, but standard error must begin with the program's name and `error`.
    static void expectFailure(const std::string& program, const std::string& arguments, int status,
                              const std::string& error) {
        const std::string start = program.substr(program.find('/') + 1) + ": " + error;
        const std::string output = run(program, arguments, status, Process::ToFullDisk);
        EXPECT_EQ(output.substr(0, start.size()), start) << arguments;
    }

    std::string tell(const std::string& command) const {
        return run(AZUBSIM, "tell " + socket + ' ' + command);
    }

    Engine startTap(const std::vector<std::string>& options = {}) const {
        return Engine(tap, options, "tap " + socket);
    }

    static std::unique_ptr<velta::zub::comms::Link> connectTo(const std::string& path) {
        velta::zub::comms::Link* link = nullptr;
        EXPECT_TRUE(velta::zub::comms::Client::connectUnixServer(path.c_str(), link).isSuccess());
        return std::unique_ptr<velta::zub::comms::Link>(link);
    }

    static void write(velta::zub::comms::Link& link, const std::string& bytes) {
        EXPECT_TRUE(link.write(bytes.data(), bytes.size()).isSuccess());
    }

    /// Reads this many bytes, or fewer if the connection ends.
    static std::string read(velta::zub::comms::Link& link, std::size_t size) {
        std::string bytes;
        char chunk[512];
        std::size_t count = 0;
        while (bytes.size() < size &&
               link.read(chunk, std::min(size - bytes.size(), sizeof(chunk)), count).isSuccess()) {
            bytes.append(chunk, count);
        }
        return bytes;
    }

    /// Waits until this text is in the tap's status.
    void expectStatus(const std::string& text) const {
        std::string status;
        for (int i = 0; i < 1000 && status.find(text) == std::string::npos; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            status = run(AZUBSIM, "tell " + tap + " status");
        }
        EXPECT_IN(text, status);
    }

    const TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
    const std::string socket = directory.path() + "/engine";
    const std::string at = " --socket " + socket;
    const std::string tap = directory.path() + "/tap";
    const std::string atTap = " --socket " + tap;
};

} // namespace tests

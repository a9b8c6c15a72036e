// Makes each system call and each allocation of each operation fail, and checks the outcome.

#include <android/log.h>
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>

#include "lipsyncapi/Service.h"
#include "tests/replacements/Memory.h"
#include "tests/replacements/SystemCalls.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Frames.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/Silence.h"

using namespace tests;
using velta::zub::lipsyncapi::Service;

namespace {

struct Caller {
    std::string path; // Of the engine.
    std::optional<Service> service{std::in_place};
    velta::zub::common::LipSyncNtpTimestamps timestamps{5, 6, 7, 8};
};

struct Operation {
    bool isConnected; // Before the call.
    Service::Result (*run)(Caller& caller);
    std::string result; // When nothing fails.
    std::string answer = "";
};

Service::Result connectCaller(Caller& c) {
    return c.service->connect(c.path);
}
Service::Result setMargin(Caller& c) {
    return c.service->setAudioDelayMargin(40);
}
Service::Result getTimestamps(Caller& c) {
    return c.service->getAudioTimestamps(c.timestamps);
}

const std::string nowhere = "/nowhere/to/be/found";
// Longer than one read.
const std::string longText(600, 'm');

// clang-format off
const Operation operations[] = {
    {false, connectCaller, "Success"},
    {false, [](Caller& c) { return c.service->connect(nowhere); },
     "Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): Unable to "
     "connect to " + nowhere + " {No such file or directory (Code 2)}}"},
    {true, connectCaller, "Bad state (Code 1003): Already connected to the audio ZUB"},
    {true, [](Caller& c) { return c.service->disconnect(); }, "Success"},
    {true, [](Caller& c) { return c.service.reset(), Service::Result::success(); }, "Success"},
    {true, setMargin, "Success", delayFrame("1000")},
    {true, setMargin, "The lipsync server returned an error (Code 1006): {Unknown error (Code "
     "1001): " + longText + '}', delayFrame("1001", longText)},
    {true, getTimestamps, "Success", timestampsFrame("1", "2", "3", "4")},
    // TinyXML reads answers that have an entity.
    {true, getTimestamps, "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): "
     "&}", timestampsFrame("1", "2", "3", "4", "1003", "&amp;")},
};
// clang-format on

char lastRecord[4096];

// The outcome of a call.
struct Outcome {
    std::string path;   // Of the engine.
    std::string result; // Formatted, or "bad_alloc".
    std::string record; // The line in the log, if there was one.
    bool hasFailed = false;
    long lostBlocks = 0;
};

void run(const Operation& operation, const SystemCalls& plan, int failingAllocation,
         Outcome& outcome) {
    Caller caller{outcome.path};
    if (operation.isConnected) {
        connectCaller(caller);
    }
    std::optional<Service::Result> result;
    lastRecord[0] = '\0';
    systemCalls = plan;
    memory.fail(failingAllocation);
    try {
        result.emplace(operation.run(caller));
    } catch (const std::bad_alloc&) {
    }
    outcome.hasFailed = systemCalls.hasFailed || memory.hasFailed;
    memory.fail(0);
    systemCalls = {};
    // Copied, because a move may free the reserved space.
    const std::string text = result ? result->format() : "bad_alloc";
    outcome.result.assign(text);
    outcome.record.assign(lastRecord);
    // The timestamps change only if the call succeeds.
    EXPECT_EQ(caller.timestamps.jbmCurrentDepth != 8,
              operation.run == getTimestamps && outcome.result == "Success");
    if (caller.service) {
        caller.service->disconnect();
        EXPECT_EQ(connectCaller(caller).format(), "Success");
    }
}

// Runs an operation on a new service, and checks that it can connect again after any failure.
Outcome observe(const Operation& operation, const SystemCalls& plan, int failingAllocation = 0) {
    Outcome outcome;
    // Now, so that they do not count as lost.
    outcome.result.reserve(sizeof(lastRecord));
    outcome.record.reserve(sizeof(lastRecord));
    const auto descriptors = openDescriptors();
    {
        EngineDouble engine({operation.answer});
        outcome.path = engine.path();
        const long blocks = memory.blocks();
        run(operation, plan, failingAllocation, outcome);
        outcome.lostBlocks = memory.blocks() - blocks;
        // Without a failure a request arrives completely, in any number of pieces.
        const std::string request = engine.received();
        EXPECT_TRUE(outcome.hasFailed || request.empty() ||
                    request.find("\n\n") == request.size() - 2);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    return outcome;
}

// The expected result of an operation when a system call fails in it.
std::string expected(const Operation& operation, Call call, int error, const std::string& path) {
    const std::string cause =
        std::string("{") + std::strerror(error) + " (Code " + std::to_string(error) + ")}";
    const bool isToNobody = operation.result.find(nowhere) != std::string::npos;
    const std::string target = "Unable to connect to " + (isToNobody ? nowhere : path) + ' ';
    // A failed connect reads errno only after it has closed the socket.
    if (call == Call::Socket || call == Call::Connect || (call == Call::Close && isToNobody)) {
        return "Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): " +
               (call == Call::Socket ? "" : target) + cause + '}';
    }
    if (call == Call::Close || call == Call::Shutdown || error == EINTR || error == EAGAIN) {
        return operation.result;
    }
    if (error == (call == Call::Write ? EPIPE : ECONNRESET)) {
        return closedByDistant;
    }
    return "An error has occured in the transport layer (Code 1005): {Protocol error (Code 5902): "
           "{Link error (Code 40003): {I/O error (Code 10004): " +
           cause + "}}}";
}

// The number of blocks that TinyXML itself leaks if its allocations for an answer fail one by one:
// it does not free the node that it is reading.
long blocksLostByParser(const std::string& answer) {
    const std::string text = answer.substr(0, answer.find("\n\n"));
    const long blocks = memory.blocks();
    for (int n = 1; n == 1 || memory.hasFailed; ++n) {
        try {
            TiXmlDocument document;
            memory.fail(n);
            document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
        } catch (const std::bad_alloc&) {
        }
    }
    memory.fail(0);
    return memory.blocks() - blocks;
}

} // namespace

TEST(Faults, AFailingSystemCallGivesTheExpectedResult) {
    SKIP_WITHOUT_SOCKET_FILES();
    const Silence silence;
    for (const Operation& operation : operations) {
        for (const Call call :
             {Call::Socket, Call::Connect, Call::Write, Call::Read, Call::Shutdown, Call::Close}) {
            for (const int error : {EINTR, EAGAIN, EPIPE, ECONNRESET, EBADF, EMFILE}) {
                Outcome outcome;
                // Small pieces, so that calls also fail in the middle of a message.
                for (int n = 0; n == 0 || outcome.hasFailed; ++n) {
                    outcome = observe(operation, {call, n, 100, error, 16});
                    const std::string result = outcome.hasFailed
                                                   ? expected(operation, call, error, outcome.path)
                                                   : operation.result;
                    EXPECT_EQ(outcome.result, result) << "after " << n << " such calls";
                    EXPECT_EQ(outcome.lostBlocks, 0);
                }
            }
        }
    }
}

TEST(Faults, AFailingAllocationThrowsOrKeepsTheResultAndLeaksNothing) {
    SKIP_WITHOUT_SOCKET_FILES();
    const Silence silence;
    for (const Operation& operation : operations) {
        const Outcome plain = observe(operation, {});
        long lostBlocks = 0;
        Outcome outcome;
        for (int n = 1; n == 1 || outcome.hasFailed; ++n) {
            outcome = observe(operation, {}, n);
            lostBlocks += outcome.lostBlocks;
            EXPECT_TRUE(outcome.result == plain.result || outcome.result == "bad_alloc");
            // If there is no memory for a log line, the whole line is dropped.
            EXPECT_TRUE(outcome.record.empty() || outcome.record.size() == plain.record.size());
        }
        // Only TinyXML leaks, and only what it leaks without the library.
        EXPECT_TRUE(lostBlocks == 0 || lostBlocks == blocksLostByParser(operation.answer));
    }
}

TEST(Faults, ASuccessAllocatesNoMemoryAndHasNoTextAfterConversion) {
    Service::Result success = Service::Result::success();
    success << "text";
    const long before = memory.allocations;
    const Service::Result copy(success, Service::ResultCode::TransportError, success.code);
    EXPECT_EQ(success.format(), "Success");
    EXPECT_EQ(copy.getMainMessage(), "");
    EXPECT_EQ(memory.allocations, before);
}

// Replaces the platform's log writer, and does not allocate.
extern "C" int __android_log_vprint(int, const char*, const char* format, va_list args) {
    std::vsnprintf(lastRecord, sizeof(lastRecord), format, args);
    return 1;
}

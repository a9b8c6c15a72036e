#include "tests/faults/Operation.h"

#include <android/log.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstdarg>
#include <cstdio>
#include <new>

#include "tests/replacements/Memory.h"
#include "tests/support/Frames.h"
#include "tests/support/Listener.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

namespace {

using velta::zub::lipsyncapi::Service;

const std::string success = "Success";
const std::string notConnected = "Bad state (Code 1003): Not connected to the audio ZUB";
const std::string nowhere = "/nowhere/to/be/found";
const std::string timestampsRequest = frame("<GetAudioTs_Request />");
const std::string setRequest = frame("<SetAudioDelay_Request>40</SetAudioDelay_Request>");
// Longer than what one read brings.
const std::string longMessage(600, 'm');
// Longer than what a string holds without memory.
const std::string ntpTime = "16602592512345678901";
const std::string goodAnswer = timestampsFrame(ntpTime, ntpTime, ntpTime, "123");
const std::string goodValues = ntpTime + ' ' + ntpTime + ' ' + ntpTime + " 123";

char lastRecord[4096];

// Thousands of calls write a line each; a sanitizer has standard error to itself.
[[maybe_unused]] FILE* const nothing = stderr = std::fopen("/dev/null", "w");

// An engine without a thread: its answer is on the line before it is asked, and nothing comes
// after it. So whoever reads too much fails and does not wait.
class Engine {
public:
    Engine() : _listener(path()) { fcntl(_listener.fd(), F_SETFL, O_NONBLOCK); }

    std::string path() const { return _directory.path() + "/engine"; }

    /// Takes the client that has connected, if there is one.
    void answer(const std::string& text) {
        _client = _listener.accept();
        send(_client, text.data(), text.size(), MSG_NOSIGNAL);
        shutdown(_client, SHUT_WR);
    }

    /// What it was sent; it hangs up.
    std::string received() {
        std::string bytes(4096, '\0');
        const ssize_t n = recv(_client, bytes.data(), bytes.size(), MSG_DONTWAIT);
        bytes.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
        if (_client >= 0) {
            close(_client);
        }
        _client = -1;
        return bytes;
    }

private:
    TemporaryDirectory _directory;
    Listener _listener;
    int _client = -1;
};

Engine& engine() {
    static Engine one;
    return one;
}

std::string values(const velta::zub::common::LipSyncNtpTimestamps& t) {
    return std::to_string(t.audioCaptureTimestamp) + ' ' +
           std::to_string(t.audioRenderingTimestamp) + ' ' +
           std::to_string(t.audioReceivingTimestamp) + ' ' + std::to_string(t.jbmCurrentDepth);
}

// A service that has been connected before, and has set a margin then.
void prepare(Service& service, const Operation& operation) {
    const MemoryWatch watch;
    service.connect(engine().path());
    engine().answer(delayFrame("1000"));
    service.setAudioDelayMargin(60);
    service.disconnect();
    engine().received();
    if (operation.isConnected) {
        service.connect(engine().path());
        engine().answer(operation.answer);
    }
}

// Runs the operation with the fault and notes what can be seen at once.
void run(const Operation& operation, const Fault& fault, Caller& caller, Observation& seen) {
    std::optional<Service::Result> result;
    lastRecord[0] = '\0';
    SystemCalls::reset();
    SystemCalls::limitTransfers(fault.largestTransfer);
    SystemCalls::fail(fault.call, fault.n, fault.error, fault.n > 0 ? 100 : 0);
    try {
        const MemoryWatch watch(fault.allocation);
        result.emplace(operation.run(caller));
    } catch (const std::bad_alloc&) {
        EXPECT_TRUE(MemoryWatch::hasFailed());
    }
    seen.hasFailed = MemoryWatch::hasFailed() || SystemCalls::failures() > 0;
    seen.writes = SystemCalls::count(Call::Write);
    seen.reads = SystemCalls::count(Call::Read);
    seen.record = lastRecord;
    seen.result = result ? result->format() : "bad_alloc";
    SystemCalls::reset();
}

// Connects anew and makes an exchange. The margin that the service remembers.
unsigned long reconnect(Service& service) {
    const MemoryWatch watch;
    EXPECT_EQ(service.connect(engine().path()).format(), success);
    engine().answer(goodAnswer);
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), success);
    EXPECT_EQ(values(timestamps), goodValues);
    EXPECT_EQ(engine().received(), timestampsRequest);
    unsigned long marginMs = 0;
    EXPECT_EQ(service.getAudioDelayMargin(marginMs).format(), success);
    return marginMs;
}

void observeCaller(const Operation& operation, const Fault& fault, Observation& seen) {
    Caller caller;
    caller.socketName = operation.socketName;
    prepare(*caller.service, operation);
    const int descriptors = openDescriptors() - (operation.isConnected ? 1 : 0);
    run(operation, fault, caller, seen);
    const int open = openDescriptors() - descriptors;
    if (!operation.isConnected) {
        engine().answer("");
    }
    seen.isConnected = caller.service && caller.service->disconnect().isSuccess();
    EXPECT_EQ(open, seen.isConnected ? 1 : 0);
    seen.request = engine().received();
    const unsigned long margin = caller.service ? reconnect(*caller.service) : 60;
    for (const unsigned long value : {caller.granularityMs, caller.maxMs, caller.marginMs}) {
        seen.outputs += std::to_string(value) + ' ';
    }
    seen.outputs += values(caller.timestamps) + ' ' + std::to_string(margin);
}

} // namespace

const std::vector<Operation>& operations() {
    using C = Caller;
    static const auto connect = [](C& c) { return c.service->connect(c.socketName); };
    static const auto disconnect = [](C& c) { return c.service->disconnect(); };
    static const auto destroy = [](C& c) { return c.service.reset(), Service::Result::success(); };
    static const auto set = [](C& c) { return c.service->setAudioDelayMargin(40); };
    static const auto timestamps = [](C& c) { return c.service->getAudioTimestamps(c.timestamps); };
    // clang-format off
    static const std::vector<Operation> all = {
        {"connect", false, connect, 2, {success, untouched, "", true}, "", engine().path()},
        {"connect, nobody there", false, connect, 3,
         {"Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): Unable to "
          "connect to " + nowhere + " {No such file or directory (Code 2)}}",
          untouched, "", false}, "", nowhere},
        {"connect again", true, connect, 0,
         {"Bad state (Code 1003): Already connected to the audio ZUB", untouched, "", true}, "",
         engine().path()},
        {"disconnect", true, disconnect, 2, {success, untouched, "", false}, "", ""},
        {"disconnect unconnected", false, disconnect, 0, {notConnected, untouched, "", false}, "", ""},
        {"destroy", true, destroy, 2, {success, untouched, "", false}, "", ""},
        {"destroy unconnected", false, destroy, 0, {success, untouched, "", false}, "", ""},
        {"capabilities", true,
         [](C& c) { return c.service->getCapabilities(c.granularityMs, c.maxMs); }, 0,
         {success, "20 100 3 5 6 7 8 60", "", true}, "", ""},
        {"margin", true, [](C& c) { return c.service->getAudioDelayMargin(c.marginMs); }, 0,
         {success, "1 2 60 5 6 7 8 60", "", true}, "", ""},
        {"video", true, [](C& c) { return c.service->setVideoTimestamps(c.timestamps); }, 0,
         {success, untouched, "", true}, "", ""},
        {"set", true, set, 2,
         {success, "1 2 3 5 6 7 8 40", setRequest, true}, delayFrame("1000"), ""},
        {"set, no call", true, set, 2,
         {"The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): no call at all}",
          untouched, setRequest, true}, delayFrame("1003", "no call at all"), ""},
        {"set, refused", true, set, 3,
         {"The lipsync server returned an error (Code 1006): {Unknown error (Code 1001): " +
          longMessage + '}', untouched, setRequest, true}, delayFrame("1001", longMessage), ""},
        {"set too much", true, [](C& c) { return c.service->setAudioDelayMargin(150); }, 0,
         {"Invalid Param (Code 1002):  audio delay margin 150 is not in range [0..100]",
          untouched, "", true}, "", ""},
        {"timestamps", true, timestamps, 2,
         {success, "1 2 3 " + goodValues + " 60", timestampsRequest, true}, goodAnswer, ""},
        {"timestamps, unreadable", true, timestamps, 2,
         {"An error has occured in the transport layer (Code 1005): {Serializer error (Code 5903): "
          "{Conversion failed (Code 71): Unable to convert from string \"x\". (While "
          "desserializing \"receiving_timestamp\") (While desserializing \"LipSyncNtpTimestamps\") "
          "(While desserializing \"GetAudioTs_Answer\")}}",
          untouched, timestampsRequest, true}, timestampsFrame("1", "2", "x", "4"), ""},
        {"timestamps unconnected", false, timestamps, 0, {notConnected, untouched, "", false}, "", ""},
    };
    // clang-format on
    return all;
}

Observation observe(const Operation& operation, const Fault& fault) {
    Observation seen;
    const int descriptors = openDescriptors();
    const MemoryWatch::Usage before = MemoryWatch::usage();
    observeCaller(operation, fault, seen);
    const MemoryWatch::Usage after = MemoryWatch::usage();
    seen.lostBlocks = after.blocks() - before.blocks();
    seen.lostBytes = after.bytes - before.bytes;
    EXPECT_EQ(openDescriptors(), descriptors);
    return seen;
}

} // namespace tests

// Takes the place of the platform's log writer, and needs no memory.
extern "C" int __android_log_vprint(int priority, const char*, const char* format, va_list args) {
    std::vsnprintf(tests::lastRecord, sizeof(tests::lastRecord), format, args);
    if (priority == ANDROID_LOG_FATAL) {
        dprintf(STDERR_FILENO, "%s\n", tests::lastRecord);
    }
    return 1;
}

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tests/faults/Operation.h"

using tests::Call;
using tests::Fault;
using tests::Observation;
using tests::observe;
using tests::Operation;
using tests::operations;
using tests::Outcome;

namespace {

const std::string cannotConnect =
    "Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): ";
const std::string closedByDistant =
    "An error has occured in the transport layer (Code 1005): {Connection closed by distant (Code "
    "5905): {Protocol has been closed by distant (Code 40005): {Closed by distant (Code 10003)}}}";
const std::string ioError =
    "An error has occured in the transport layer (Code 1005): {Protocol error (Code 5902): {Link "
    "error (Code 40003): {I/O error (Code 10004): ";

const int errors[] = {EINTR,  EAGAIN, EPIPE,  ECONNRESET,   EBADF,
                      ENOMEM, EMFILE, EACCES, ECONNREFUSED, ENOTSOCK};

// What an operation comes to when one of its system calls fails.
Outcome expected(const Operation& operation, const Fault& fault) {
    const std::string cause = std::string("{") + std::strerror(fault.error) + " (Code " +
                              std::to_string(fault.error) + ")}";
    const std::string unreachable =
        cannotConnect + "Unable to connect to " + operation.socketName + ' ' + cause + '}';
    const bool isWrite = fault.call == Call::Write;
    Outcome outcome = operation.outcome;
    switch (fault.call) {
        case Call::Socket: return {cannotConnect + cause + '}', tests::untouched, "", false};
        case Call::Connect: return {unreachable, tests::untouched, "", false};
        case Call::Shutdown: return outcome;
        case Call::Close:
            // A connect that has failed looks at the errno after closing.
            outcome.result = operation.socketName.empty() ? outcome.result : unreachable;
            return outcome;
        case Call::Write:
        case Call::Read:
            if (fault.error == EINTR || fault.error == EAGAIN) {
                return outcome;
            }
            if (isWrite) {
                const std::size_t sent = static_cast<std::size_t>(fault.n - 1);
                outcome.request.resize(sent * fault.largestTransfer);
            }
            outcome.outputs = tests::untouched;
            outcome.result = fault.error == (isWrite ? EPIPE : ECONNRESET)
                                 ? closedByDistant
                                 : ioError + cause + "}}}";
    }
    return outcome;
}

// Makes system calls of one kind fail with one errno, in every place of an operation. How many
// such calls it makes.
int failEach(const Operation& operation, Fault fault, const Observation& plain) {
    for (fault.n = 1;; ++fault.n) {
        SCOPED_TRACE("number " + std::to_string(fault.n));
        const Observation seen = observe(operation, fault);
        if (!seen.hasFailed) {
            EXPECT_EQ(seen.text(), plain.text());
            return fault.n - 1;
        }
        const Outcome outcome = expected(operation, fault);
        EXPECT_EQ(seen.text(), outcome.text());
        const std::string ending = plain.record.empty() ? "" : " with result: " + outcome.result;
        const std::size_t end = std::min(seen.record.rfind(ending), seen.record.size());
        EXPECT_EQ(seen.record.substr(end), ending);
    }
}

// The same for all system calls and errors. How many calls the operation makes.
int failAll(const Operation& operation, std::size_t largestTransfer, const Observation& plain) {
    int systemCalls = 0;
    for (const Call call :
         {Call::Socket, Call::Connect, Call::Write, Call::Read, Call::Shutdown, Call::Close}) {
        int made = 0;
        for (const int error : errors) {
            SCOPED_TRACE("call " + std::to_string(static_cast<int>(call)) + " fails with " +
                         std::strerror(error));
            made = failEach(operation, {0, largestTransfer, call, 0, error}, plain);
        }
        systemCalls += made;
    }
    return systemCalls;
}

int pieces(std::size_t total, std::size_t most) {
    return static_cast<int>((total + most - 1) / most);
}

} // namespace

TEST(SystemFaults, EveryFailingSystemCallEndsInItsResult) {
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        const Observation plain = observe(operation);
        EXPECT_EQ(plain.text(), operation.outcome.text());
        EXPECT_EQ(failAll(operation, SIZE_MAX, plain), operation.systemCalls);
        // In pieces, so that the fault finds a message that is half through.
        if (!operation.answer.empty()) {
            EXPECT_GT(failAll(operation, 16, plain), 10);
        }
    }
}

TEST(SystemFaults, TransfersOfAnyLengthMakeWholeMessages) {
    for (const Operation& operation : operations()) {
        const std::size_t request = operation.outcome.request.size();
        const std::size_t answer = operation.answer.size();
        for (std::size_t length = 1; length <= std::max(request, answer); ++length) {
            SCOPED_TRACE(operation.name + (" by " + std::to_string(length)));
            const Observation seen = observe(operation, {0, length});
            EXPECT_EQ(seen.text(), operation.outcome.text());
            EXPECT_EQ(seen.writes, pieces(request, length));
            // The library reads 511 bytes at a time.
            EXPECT_EQ(seen.reads, pieces(answer, std::min<std::size_t>(length, 511)));
        }
    }
}

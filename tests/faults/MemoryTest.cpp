#include "tests/replacements/Memory.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "comms/Link.h"
#include "lipsyncapi/Service.h"
#include "tests/faults/Operation.h"

using tests::MemoryWatch;
using tests::Observation;
using tests::observe;
using tests::Operation;
using tests::operations;
using tests::Outcome;

namespace {

using Loss = std::pair<long, std::size_t>; // Blocks and bytes.

// What the parser alone loses of an answer when its allocations fail one at a time: it forgets the
// node that it is reading. The library must lose no more.
Loss lossOfParser(const std::string& answer) {
    const std::string text = answer.substr(0, answer.find("\n\n"));
    const MemoryWatch::Usage before = MemoryWatch::usage();
    TiXmlBase::SetCondenseWhiteSpace(false);
    for (int n = 1;; ++n) {
        try {
            const MemoryWatch watch(n);
            TiXmlDocument document;
            document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
        } catch (const std::bad_alloc&) {
        }
        if (!MemoryWatch::hasFailed()) {
            break;
        }
    }
    const MemoryWatch::Usage after = MemoryWatch::usage();
    return {after.blocks() - before.blocks(), after.bytes - before.bytes};
}

// What a call comes to when memory runs out in it: all of it, without its line in the log, or
// nothing but a request that was sent before.
Outcome expected(const Operation& operation, const Outcome& seen) {
    if (seen.result != "bad_alloc") {
        return operation.outcome;
    }
    return {"bad_alloc", tests::untouched, seen.request.empty() ? "" : operation.outcome.request,
            operation.isConnected};
}

} // namespace

TEST(MemoryFaults, TheLibraryTakesItsMemoryFromOperatorNew) {
    const std::string imports = NM " --dynamic --undefined-only " LIBRARY " | grep -qwE ";
    EXPECT_EQ(std::system((imports + "_Znwm").c_str()), 0);
    const char* const others = "'.*alloc|posix_memalign|strn?dup|_Zn[aw]mSt11align_val_t'";
    EXPECT_NE(std::system((imports + others).c_str()), 0);
}

TEST(MemoryFaults, ASuccessTakesNoMemory) {
    using velta::zub::comms::Link;
    using velta::zub::lipsyncapi::Service;
    const Link::Result cause = Link::Result::success();
    const MemoryWatch watch;
    const long before = MemoryWatch::usage().allocations;
    const Service::Result translated(cause, Service::ResultCode::TransportError,
                                     Service::ResultCode::Success);
    Service::Result copy = Service::ResultCode::UnknownError;
    copy = translated;
    EXPECT_EQ(copy.format(), Service::Result::success().format());
    EXPECT_EQ(MemoryWatch::usage().allocations, before);
}

TEST(MemoryFaults, EveryFailingAllocationEndsTheCallAndNothingIsLost) {
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        const std::string line = observe(operation).record;
        Loss loss;
        bool hasFailed = true;
        for (int n = 1; hasFailed; ++n) {
            SCOPED_TRACE("allocation " + std::to_string(n));
            const Observation seen = observe(operation, {n});
            EXPECT_EQ(seen.text(), expected(operation, seen).text());
            EXPECT_TRUE(seen.record.empty() || seen.record == line) << seen.record;
            loss.first += seen.lostBlocks;
            loss.second += seen.lostBytes;
            hasFailed = seen.hasFailed;
        }
        // An answer that needs no parser loses nothing.
        EXPECT_TRUE(loss == Loss() || loss == lossOfParser(operation.answer));
    }
}

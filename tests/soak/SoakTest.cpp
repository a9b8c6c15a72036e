// Many exchanges with an engine that often misbehaves.

#include <algorithm>
#include <csignal>
#include <set>

#include "lipsyncapi/Service.h"
#include "tests/replacements/Memory.h"
#include "tests/support/Frames.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/Silence.h"
#include "tests/tools/Engine.h"

using velta::zub::lipsyncapi::Service;

namespace {

const std::string unreadable =
    "An error has occured in the transport layer (Code 1005): {Serializer error (Code 5903): {";

// Every result begins with one of these texts.
const std::string beginnings[] = {
    "Success",
    "The lipsync server returned an error (Code 1006): {Invalid parameter (Code 1002): no}",
    "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003)}",
    unreadable + "Conversion failed (Code 71): Version does not match; ",
    unreadable + "Wrong XML node (Code 68): Trying to deserialize the wrong ",
    unreadable + "Child not found (Code 69): No",
    unreadable + "Conversion failed (Code 71): Unable to convert from string ",
    tests::closedByDistant,
};

using Soak = tests::EngineTest;

} // namespace

TEST_F(Soak, TenThousandExchangesEndInKnownResultsAndNothingGrows) {
    std::signal(SIGPIPE, SIG_IGN);
    const tests::Silence silence;
    const tests::Engine engine(
        socket,
        {"--every=4", "--seed=1", "--fault=error 1002 no", "--fault=error 1003",
         "--fault=version 0.2.0", "--fault=element Other_Answer", "--fault=missing ErrorCode",
         "--fault=number x1", "--fault=cut", "--fault=close-before", "--fault=close-middle",
         "--fault=split", "--fault=double", "--fault=delay 1", "--fault=flood 100000"});
    Service service;
    std::set<const std::string*> met;
    // Sets the margin on a new connection, reads timestamps on an existing one.
    const auto exchange = [&] {
        velta::zub::common::LipSyncNtpTimestamps timestamps;
        const bool isNew = service.connect(socket).isSuccess();
        const Service::Result result =
            isNew ? service.setAudioDelayMargin(40) : service.getAudioTimestamps(timestamps);
        if (result.code == Service::ResultCode::TransportError) {
            service.disconnect();
        }
        const std::string text = result.format();
        const auto* const beginning =
            std::find_if(std::begin(beginnings), std::end(beginnings),
                         [&](const std::string& known) { return text.rfind(known, 0) == 0; });
        EXPECT_NE(beginning, std::end(beginnings)) << text;
        met.insert(beginning);
    };
    const auto held = [&](int exchanges) {
        for (; exchanges > 0; --exchanges) {
            exchange();
        }
        service.disconnect();
        return std::pair(tests::openDescriptors(), tests::memory.blocks());
    };
    const auto before = held(1'000);
    EXPECT_EQ(held(9'000), before);
    EXPECT_EQ(met.size(), std::size(beginnings));
}

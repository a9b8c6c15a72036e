#include "cmdfrmwrk/Client.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <csignal>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"
#include "tests/support/SocketPair.h"

using tests::SocketPair;
using velta::utilities::xmlserializer::ResultCode;
using velta::zub::cmdfrmwrk::Client;
using velta::zub::comms::Link;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;

namespace {

// Cannot write its request.
struct BrokenSerializer : Serializer {
    velta::utilities::xmlserializer::Result serialize(const GetAudioTs::Request&,
                                                      std::string&) const {
        return velta::utilities::xmlserializer::Result(ResultCode::ConversionFailed) << "why";
    }
};

struct Exchange {
    explicit Exchange(const std::string& answerText) { pair.send(answerText); }

    template <typename SerializerType = Serializer>
    std::string run() {
        return client.executeCommand<GetAudioTs, SerializerType>({}, answer).format();
    }

    SocketPair pair;
    Client client{new Link(pair.takeNear())};
    GetAudioTs::Answer answer;
};

} // namespace

TEST(CommandClient, SendsNothingThatItCannotWrite) {
    Exchange exchange("");
    EXPECT_EQ(exchange.run<BrokenSerializer>(),
              "Serializer error (Code 5903): {Conversion failed (Code 71): why}");
    pollfd far{exchange.pair.far(), POLLIN, 0};
    EXPECT_EQ(poll(&far, 1, 0), 0);
}

TEST(CommandClient, StaysUsableAfterAnUnreadableAnswer) {
    Exchange exchange("rubbish\n\n" + tests::timestampsFrame("1", "2", "3", "4"));
    EXPECT_EQ(exchange.run(),
              "Serializer error (Code 5903): {Conversion failed (Code 71): No "
              "'AZUB' root element found in xml data.}");
    EXPECT_EQ(exchange.answer.result.format(), "Unknown error (Code 1001)");
    EXPECT_EQ(exchange.run(), "Success");
    EXPECT_EQ(exchange.answer.timestamps.jbmCurrentDepth, 4UL);
}

TEST(CommandClient, MapsFailuresOfTheProtocol) {
    Exchange gone("half an ans");
    shutdown(gone.pair.far(), SHUT_WR);
    EXPECT_EQ(gone.run(),
              "Connection closed by distant (Code 5905): {Protocol has been closed by distant "
              "(Code 40005): {Closed by distant (Code 10003)}}");

    std::signal(SIGPIPE, SIG_IGN);
    SocketPair pair;
    Link* const link = new Link(pair.takeNear());
    Client client(link);
    link->close();
    GetAudioTs::Answer answer;
    EXPECT_EQ((client.executeCommand<GetAudioTs, Serializer>({}, answer).format()),
              "Connection closed (Code 5904): {Protocol is closed. (Code 40004): {Closed (Code "
              "10002)}}");

    int pipeFds[2];
    ASSERT_EQ(pipe(pipeFds), 0);
    Client unwritable(new Link(pipeFds[0]));
    EXPECT_EQ((unwritable.executeCommand<GetAudioTs, Serializer>({}, answer).format()),
              "Protocol error (Code 5902): {Link error (Code 40003): {I/O error (Code 10004): {Bad "
              "file descriptor (Code 9)}}}");
    close(pipeFds[1]);
}

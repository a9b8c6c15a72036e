#include "cmdfrmwrk/Client.h"

#include <gtest/gtest.h>

#include <csignal>

#include "cmdfrmwrk/XmlSerializer.h"
#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"
#include "tests/support/SocketPair.h"

using tests::SocketPair;
using velta::utilities::TypeList;
using velta::zub::cmdfrmwrk::Client;
using velta::zub::comms::Link;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;

namespace {

// A command whose request cannot be serialized.
struct Refused : GetAudioTs {
    struct Request {};
};

struct RefusingConvertor {
    static bool toString(int, std::string&) { return false; }
};

struct RefusedTrait {
    using Type = Refused::Request;
    static constexpr const char* tag = "Refused";
    static int getNumber(const Type&) { return 7; }
    using Number = velta::utilities::serializer::TextTrait<int, RefusingConvertor>;
    using Children = TypeList<velta::utilities::serializer::Child<Number, &getNumber, nullptr>>;
};

using RefusingSerializer = velta::zub::cmdfrmwrk::XmlSerializer<
    TypeList<RefusedTrait, TypeList<velta::zub::lipsync::SerializationTraitGetAudioTsAnswer>>>;

} // namespace

TEST(CommandClient, SendsNothingIfTheRequestCannotBeSerialized) {
    const SocketPair pair;
    Client client(new Link(pair.takeNear()));
    GetAudioTs::Answer answer;
    EXPECT_EQ((client.executeCommand<Refused, RefusingSerializer>({}, answer).format()),
              "Serializer error (Code 5903): {Conversion failed (Code 71): Unable to convert \"7\" "
              "to string. (While serializing \"Refused\")}");
    EXPECT_EQ(pair.receive(), "");
    std::string text = "left over";
    EXPECT_TRUE(RefusingSerializer().serialize(Refused::Request{}, text).isFailure());
    EXPECT_EQ(text, "");
}

TEST(CommandClient, StaysUsableUntilItsLinkIsClosed) {
    const SocketPair pair;
    Link* const link = new Link(pair.takeNear());
    Client client(link);
    GetAudioTs::Answer answer;
    const auto run = [&] {
        return client.executeCommand<GetAudioTs, Serializer>({}, answer).format();
    };
    pair.send("rubbish\n\n" + tests::timestampsFrame("1", "2", "3", "4"));
    EXPECT_EQ(run(),
              "Serializer error (Code 5903): {Conversion failed (Code 71): No 'AZUB' root element "
              "found in xml data.}");
    EXPECT_EQ(answer.result.format(), "Unknown error (Code 1001)");
    EXPECT_EQ(run(), "Success");
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 4UL);
    std::signal(SIGPIPE, SIG_IGN);
    link->close();
    EXPECT_EQ(run(),
              "Connection closed (Code 5904): {Protocol is closed. (Code 40004): {Closed (Code "
              "10002)}}");
}

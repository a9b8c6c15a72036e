#include "cmdfrmwrk/Client.h"

#include <gtest/gtest.h>

#include <csignal>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"
#include "tests/support/SocketPair.h"

using namespace velta::utilities;
using tests::SocketPair;
using velta::zub::cmdfrmwrk::Client;
using velta::zub::comms::Link;
using velta::zub::lipsync::GetAudioTs;

namespace {

// A command with a record whose value cannot be written.
struct Refused : GetAudioTs {
    enum class Request { Unwritable = 9 };

    static bool toString(const Request&, std::string&) { return false; }
    static Request get(const Request& request) { return request; }
};

struct RecordTrait {
    using Type = Refused::Request;
    static constexpr const char* tag = "Record";
    static constexpr const char* valueTag = "Value";
    using Value = serializer::NamedTextTrait<Type, &valueTag, false, Refused>;
    using Children = TypeList<serializer::Child<Value, &Refused::get, nullptr>>;
};

struct RefusedTrait {
    using Type = Refused::Request;
    static constexpr const char* tag = "Refused";
    using Children = TypeList<serializer::Child<RecordTrait, &Refused::get, nullptr>>;
};

using RefusingSerializer = velta::zub::cmdfrmwrk::XmlSerializer<
    TypeList<RefusedTrait, TypeList<velta::zub::lipsync::SerializationTraitGetAudioTsAnswer>>>;

} // namespace

TEST(CommandClient, SendsNothingIfTheRequestCannotBeSerialized) {
    const SocketPair pair;
    Client client(new Link(pair.takeNear()));
    GetAudioTs::Answer answer;
    const auto request = Refused::Request::Unwritable;
    EXPECT_EQ((client.executeCommand<Refused, RefusingSerializer>(request, answer).format()),
              "Serializer error (Code 5903): {Conversion failed (Code 71): Unable to convert \"9\" "
              "to string. (While serializing \"Value\") (While serializing \"Record\") (While "
              "serializing \"Refused\")}");
    EXPECT_EQ(pair.receive(), "");
    std::string text = "left over";
    EXPECT_TRUE(RefusingSerializer().serialize(request, text).isFailure());
    EXPECT_EQ(text, "");
}

TEST(CommandClient, StaysUsableUntilItsLinkIsClosed) {
    std::signal(SIGPIPE, SIG_IGN);
    // A packet socket keeps writes separate.
    const SocketPair pair(SOCK_SEQPACKET);
    Link* const link = new Link(pair.takeNear());
    Client client(link);
    GetAudioTs::Answer answer;
    const auto run = [&] {
        return client.executeCommand<GetAudioTs, velta::zub::lipsync::Serializer>({}, answer)
            .format();
    };
    pair.send("rubbish\n\n" + tests::timestampsFrame("1", "2", "3", "4"));
    EXPECT_EQ(run(),
              "Serializer error (Code 5903): {Conversion failed (Code 71): No 'AZUB' root element "
              "found in xml data.}");
    EXPECT_EQ(pair.receive(), tests::frame("<GetAudioTs_Request />"));
    EXPECT_EQ(answer.result.format(), "Unknown error (Code 1001)");
    EXPECT_EQ(run(), "Success");
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 4UL);
    link->close();
    EXPECT_EQ(run(),
              "Connection closed (Code 5904): {Protocol is closed. (Code 40004): {Closed (Code "
              "10002)}}");
}

#include "cmdfrmwrk/Client.h"

#include <gtest/gtest.h>

#include "lipsync/SerializationTraits.h"
#include "tests/support/SocketPair.h"

using namespace velta::utilities;
using velta::zub::cmdfrmwrk::Client;
using velta::zub::lipsync::GetAudioTs;

namespace {

// A command with a record whose value cannot be written.
struct Refused : GetAudioTs {
    enum class Request { Unwritable = 9 };

    static bool toString(const Request&, std::string&) { return false; }
    static Request get(const Request& request) { return request; }
};

struct RefusedTrait {
    using Type = Refused::Request;
    static constexpr const char* tag = "Refused";
    static constexpr const char* valueTag = "Value";
    using Value = serializer::NamedTextTrait<Type, &valueTag, false, Refused>;
    using Children = TypeList<serializer::Child<Value, &Refused::get, nullptr>>;
};

using RefusingSerializer = velta::zub::cmdfrmwrk::XmlSerializer<
    TypeList<RefusedTrait, TypeList<velta::zub::lipsync::SerializationTraitGetAudioTsAnswer>>>;

} // namespace

TEST(CommandClient, SendsNothingIfTheRequestCannotBeSerialized) {
    const tests::SocketPair pair;
    Client client(new velta::zub::comms::Link(pair.takeNear()));
    GetAudioTs::Answer answer;
    const auto request = Refused::Request::Unwritable;
    EXPECT_EQ((client.executeCommand<Refused, RefusingSerializer>(request, answer).format()),
              "Serializer error (Code 5903): {Conversion failed (Code 71): Unable to convert \"9\" "
              "to string. (While serializing \"Value\") (While serializing \"Refused\")}");
    EXPECT_EQ(pair.receive(), "");
    std::string text = "left over";
    EXPECT_TRUE(RefusingSerializer().serialize(request, text).isFailure());
    EXPECT_EQ(text, "");
}

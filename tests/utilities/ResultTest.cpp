#include "utilities/result/Result.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <regex>

#include "cmdfrmwrk/Command.h"
#include "cmdfrmwrk/Peer.h"
#include "comms/Client.h"
#include "comms/Link.h"
#include "comms/TextProtocol.h"
#include "lipsyncapi/Service.h"
#include "utilities/result/ErrnoTrait.h"
#include "utilities/xmlserializer/ResultTrait.h"

using velta::utilities::result::ErrnoTrait;
using velta::utilities::result::Result;
using velta::zub::cmdfrmwrk::Command;
using velta::zub::cmdfrmwrk::Peer;
using velta::zub::comms::Client;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;
using velta::zub::lipsyncapi::Service;

namespace {

template <typename Trait>
std::string text(int code) {
    return Trait::text(static_cast<typename Trait::ResultCode>(code));
}

} // namespace

TEST(Result, FormatsCodeMessageCausesAndTrailer) {
    Link::Result result(Link::ResultCode::IoError);
    EXPECT_EQ(result.getMainMessage(), "");
    EXPECT_EQ(result.format(), "I/O error (Code 10004)");

    const char* const pointer = "pointer ";
    result = result << "array " << pointer << std::string("string ") << 'c' << -5
                    << 18446744073709551615UL;
    EXPECT_EQ(result.format(),
              "I/O error (Code 10004): array pointer string c-518446744073709551615");

    result << Result<ErrnoTrait>(EPIPE);
    result << Peer::Result::success();
    EXPECT_EQ(result.causes, std::string(std::strerror(EPIPE)) + " (Code 32) && Success");
    result.trailer = "!";
    EXPECT_EQ(result.format(),
              "I/O error (Code 10004): array pointer string c-518446744073709551615 {" +
                  std::string(std::strerror(EPIPE)) + " (Code 32) && Success}!");
}

TEST(Result, KeepsCodesOutsideTheTable) {
    EXPECT_EQ(Peer::Result(static_cast<Peer::ResultCode>(-7)).format(),
              "Invalid error (Unreachable) (Code -7)");
}

TEST(Result, ASuccessFormatsAsSuccessWhateverItsTexts) {
    Link::Result result = Link::Result::success();
    result << "text" << Result<ErrnoTrait>(EPIPE);
    result.trailer = "!";
    EXPECT_EQ(result.format(), "Success");
    EXPECT_EQ(Link::Result::success().message, "");
    EXPECT_EQ(Result<ErrnoTrait>(0).format(), "Success");
}

TEST(Result, ShiftChangesTheTargetAndReturnsACopy) {
    Link::Result result(Link::ResultCode::Closed);
    Link::Result copy = result << "a";
    copy << "b";
    EXPECT_EQ(result.message, "a");
    EXPECT_EQ(copy.message, "ab");
}

TEST(Result, SurvivesAssignmentToItself) {
    Link::Result result(Link::ResultCode::Closed);
    result << std::string(100, 'x') << Result<ErrnoTrait>(EPIPE);
    const std::string before = result.format();
    const Link::Result& same = result;
    result = same;
    EXPECT_EQ(result.format(), before);
}

TEST(Result, TextsAreThoseInTheDocumentation) {
    const std::map<std::string, std::function<std::string(int)>> domains{
        {"lipsyncapi::Service", text<Service::ResultTrait>},
        {"cmdfrmwrk::Command", text<Command::ResultTrait>},
        {"cmdfrmwrk::Peer", text<Peer::ResultTrait>},
        {"xmlserializer", text<velta::utilities::xmlserializer::detail::ResultTrait>},
        {"comms::Protocol", text<TextProtocol::ResultTrait>},
        {"comms::Link", text<Link::ResultTrait>},
        {"comms::Client", text<Client::ResultTrait>}};
    std::ifstream document(DOCS "/results.md");
    const std::regex row("\\| (\\d+) \\| ([^|]+) \\|.*");
    std::string domain;
    int rows = 0;
    for (std::string line; std::getline(document, line);) {
        std::smatch cells;
        if (line.rfind("## ", 0) == 0) {
            domain = line.substr(3);
        } else if (std::regex_match(line, cells, row)) {
            EXPECT_EQ(domains.at(domain)(std::stoi(cells[1])), cells[2]) << domain;
            ++rows;
        }
    }
    EXPECT_EQ(rows, 43);
}

TEST(Result, ConvertsBetweenDomains) {
    Link::Result link(Link::ResultCode::Closed);
    link << "why";
    const Service::Result failure(link, Service::ResultCode::TransportError,
                                  Service::ResultCode::Success);
    EXPECT_EQ(failure.code, Service::ResultCode::TransportError);
    EXPECT_EQ(failure.message, "");
    EXPECT_EQ(
        failure.format(),
        "An error has occured in the transport layer (Code 1005): {Closed (Code 10002): why}");

    Link::Result success = Link::Result::success();
    success << "text";
    const Service::Result converted(success, Service::ResultCode::TransportError,
                                    Service::ResultCode::Success);
    EXPECT_TRUE(converted.isSuccess());
    EXPECT_EQ(converted.message + converted.causes, "");
}

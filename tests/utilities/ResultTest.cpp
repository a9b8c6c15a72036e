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
#include "tests/support/Files.h"
#include "utilities/result/ErrnoTrait.h"
#include "utilities/xmlserializer/ResultTrait.h"

namespace zub = velta::zub;
using velta::utilities::result::ErrnoTrait;
using velta::utilities::result::Result;
using velta::zub::comms::Link;
using velta::zub::lipsyncapi::Service;

namespace {

template <typename DomainResult>
std::string format(int code) {
    return DomainResult(static_cast<typename DomainResult::ResultCode>(code)).format();
}

} // namespace

TEST(Result, FormatsCodeMessageCausesAndTrailer) {
    Link::Result result(Link::ResultCode::IoError);
    EXPECT_EQ(result.format(), "I/O error (Code 10004)");
    const char* const pointer = "pointer ";
    // A named result keeps its whole chain.
    result << "array " << pointer << std::string("string ") << 'c' << -5 << 18446744073709551615UL;
    const std::string text = "I/O error (Code 10004): array pointer string c-518446744073709551615";
    EXPECT_EQ(result.format(), text);

    result << Result<ErrnoTrait>(EPIPE) << zub::cmdfrmwrk::Peer::Result::success();
    result.trailer = "!";
    const std::string causes = std::string(std::strerror(EPIPE)) + " (Code 32) && Success";
    EXPECT_EQ(result.format(), text + " {" + causes + "}!");
}

TEST(Result, TextsMatchTheDocumentation) {
    const std::map<std::string, std::function<std::string(int)>> domains{
        {"lipsyncapi::Service", format<Service::Result>},
        {"cmdfrmwrk::Command", format<zub::cmdfrmwrk::Command::Result>},
        {"cmdfrmwrk::Peer", format<zub::cmdfrmwrk::Peer::Result>},
        {"xmlserializer", format<velta::utilities::xmlserializer::Result>},
        {"comms::Protocol", format<zub::comms::TextProtocol::Result>},
        {"comms::Link", format<Link::Result>},
        {"comms::Client", format<zub::comms::Client::Result>}};
    std::ifstream document(tests::sourceFile("docs/results.md"));
    const std::regex row("\\| (\\d+) \\| ([^|]+) \\|.*");
    std::string domain;
    int rows = 0;
    for (std::string line; std::getline(document, line);) {
        std::smatch cells;
        if (line.rfind("## ", 0) == 0) {
            domain = line.substr(3);
        } else if (std::regex_match(line, cells, row)) {
            const std::string text = cells[2];
            EXPECT_EQ(domains.at(domain)(std::stoi(cells[1])),
                      text == "Success" ? text : text + " (Code " + cells[1].str() + ')')
                << domain;
            ++rows;
        }
    }
    EXPECT_EQ(rows, 43);
    for (const auto& [name, formatted] : domains) {
        EXPECT_EQ(formatted(-7), "Invalid error (Unreachable) (Code -7)") << name;
    }
}

TEST(Result, ASuccessHasNoTextsEvenAfterConversion) {
    Link::Result success = Link::Result::success();
    success << "text" << Result<ErrnoTrait>(EPIPE);
    EXPECT_EQ(success.format(), "Success");
    EXPECT_EQ(Link::Result::success().getMainMessage(), "");
    const Service::Result converted(success, Service::ResultCode::TransportError,
                                    Service::ResultCode::Success);
    EXPECT_TRUE(converted.isSuccess());
    EXPECT_EQ(converted.getMainMessage(), "");
    EXPECT_EQ(Result<ErrnoTrait>(0).format(), "Success");
}

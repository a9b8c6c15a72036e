#include "utilities/result/Result.h"

#include <gtest/gtest.h>

#include <cerrno>
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
using namespace velta::utilities::result;
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
    result << Result<ErrnoTrait>(EPIPE) << zub::cmdfrmwrk::Peer::Result::success();
    result.trailer = "!";
    EXPECT_EQ(result.format(),
              "I/O error (Code 10004): array pointer string c-518446744073709551615 {Broken pipe "
              "(Code 32) && Success}!");
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
            const std::string code = cells[2] == "Success" ? "" : " (Code " + cells.str(1) + ')';
            EXPECT_EQ(domains.at(domain)(std::stoi(cells[1])), cells.str(2) + code) << domain;
            EXPECT_EQ(domains.at(domain)(-7), "Invalid error (Unreachable) (Code -7)") << domain;
            ++rows;
        }
    }
    EXPECT_EQ(rows, 43);
}

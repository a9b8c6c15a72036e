#pragma once

#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// The format of recordings. Each line is a JSON object. The first one is the header:
///
///     {"format":"azubsim recording","version":3,"made":"2024-05-01T12:00:00.000000Z"}
///
/// Every other line is an exchange:
///
///     {"time":1714564800.25,"utc":"2024-05-01T12:00:00.250000Z","client":1,"request":"...",
///      "complete":true,"answer":[{"after_ms":0.11,"bytes":"..."}],"closes":false,"fault":"",
///      "said":"","left_out":0,"engine_ms":0.1}
///
/// `time` is in seconds since 1970. A request is not complete if its client left in the middle of
/// it. `after_ms` is the time since the request or the previous bytes. `closes` says whether the
/// connection is then closed. With a fault, `said` is the engine's own answer. `left_out` is the
/// number of bytes of an answer that were too many to keep.
/// Messages need not be UTF-8, so each byte of `request`, `bytes`, `said` and `fault` is written as
/// the character with the same number, U+0000 to U+00FF. ASCII stays readable.
namespace format {

/// The first line, with its line feed.
std::string header();

/// Throws a `tools::Error` if this is not the first line of a recording.
void checkHeader(const std::string& line);

/// The line of an exchange, with its line feed. Waits of more than an hour are written as an hour.
std::string write(const Exchange& exchange);

/// The reverse. Throws a `tools::Error` that says what is wrong with the line.
Exchange read(const std::string& line);

} // namespace format

} // namespace azubsim

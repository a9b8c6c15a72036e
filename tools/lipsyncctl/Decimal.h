#pragma once

#include <functional>
#include <string>

namespace lipsyncctl {

/// A check for an option's text: decimal digits without sign and leading zero, which give a number
/// from `min` to `max` that is a multiple of `step`. Without it the option parser would read 020 as
/// 16, -20 as a very large number and an empty text as 0. The check returns an error or nothing.
std::function<std::string(const std::string&)> decimal(unsigned long min, unsigned long max,
                                                       unsigned long step = 1);

} // namespace lipsyncctl

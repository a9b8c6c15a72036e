#pragma once

#include <string>

namespace tests {

/// A message as sent on the socket: a document with this content in its root, and the end marker.
std::string frame(const std::string& content);

/// The engine's answers, as it prints them.
std::string timestampsFrame(const std::string& capture, const std::string& rendering,
                            const std::string& receiving, const std::string& depth,
                            const std::string& code = "1000", const std::string& message = "");
std::string delayFrame(const std::string& code, const std::string& message = "");

} // namespace tests

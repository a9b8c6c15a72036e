#pragma once

#include <asio/local/stream_protocol.hpp>
#include <string>

namespace azubsim {

using Address = asio::local::stream_protocol::endpoint;
using Socket = asio::local::stream_protocol::socket;

/// The address of a socket path. Throws a `tools::Error` if the path is empty or too long.
Address toAddress(const std::string& path);

/// Connects a socket without blocking. Fails with EAGAIN if the queue of an engine that does not
/// accept is full, which Asio's own function would report as a success. If `name` is not empty, the
/// other side sees it as the address of this side.
asio::error_code connectAtOnce(Socket& socket, const Address& address,
                               const std::string& name = "");

} // namespace azubsim

// Sends an engine's bytes through link and protocol to one command after the other, until the end
// of the stream. The first byte gives the size of the pieces in which they arrive.

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "cmdfrmwrk/Client.h"
#include "comms/Link.h"
#include "fuzz/Check.h"
#include "lipsync/SerializationTraits.h"

namespace {

using velta::zub::cmdfrmwrk::Client;
using velta::zub::comms::Link;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

constexpr std::size_t largestRead = 511;

// A socket holds this many pieces before anybody reads.
constexpr std::size_t mostPieces = 100;

// Sends the bytes in pieces, each of which arrives in its own read. Returns the text that the
// library must receive: of each piece, the bytes before the first zero byte.
std::string sendPieces(int socket, const char* bytes, std::size_t size, std::size_t pieceSize) {
    std::string expected;
    while (size > 0) {
        const std::size_t piece = std::min(size, pieceSize);
        fuzz::check(write(socket, bytes, piece) == static_cast<ssize_t>(piece), "sending");
        expected.append(bytes, strnlen(bytes, piece));
        bytes += piece;
        size -= piece;
    }
    return expected;
}

void discardRequest(int socket) {
    char request[largestRead];
    fuzz::check(recv(socket, request, sizeof(request), MSG_DONTWAIT) > 0, "a request was sent");
}

std::size_t countMessages(const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find("\n\n"); at != std::string::npos; at = text.find("\n\n", at + 2)) {
        ++count;
    }
    return count;
}

template <typename Command>
Client::Result execute(Client& client) {
    typename Command::Answer answer;
    Client::Result result = client.executeCommand<Command, Serializer>({}, answer);
    fuzz::check(!result.format().empty() && !answer.result.format().empty(), "results have texts");
    return result;
}

} // namespace

int fuzzExchange(const std::uint8_t* data, std::size_t size) {
    if (size < 1) {
        return 0;
    }
    int sockets[2];
    fuzz::check(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sockets) == 0, "making sockets");
    Client client(new Link(sockets[0]));
    const std::size_t pieceSize =
        std::min(std::max<std::size_t>(1 + 2U * data[0], size / mostPieces + 1), largestRead);
    const std::string text =
        sendPieces(sockets[1], reinterpret_cast<const char*>(data) + 1, size - 1, pieceSize);
    shutdown(sockets[1], SHUT_WR);

    std::size_t messages = 0;
    for (;;) {
        const Client::Result result =
            messages % 2 == 0 ? execute<GetAudioTs>(client) : execute<SetAudioDelay>(client);
        if (result.code == Client::ResultCode::ConnectionClosedByDistant) {
            break;
        }
        fuzz::check(result.isSuccess() || result.code == Client::ResultCode::SerializerError,
                    "a complete message is read or refused");
        ++messages;
        discardRequest(sockets[1]);
    }
    fuzz::check(messages == countMessages(text), "every message ends one command");
    close(sockets[1]);
    return 0;
}

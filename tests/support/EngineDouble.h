#pragma once

#include <string>
#include <thread>
#include <vector>

namespace tests {

/// A directory of its own for one test, removed with what is in it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return _path; }

private:
    std::string _path;
};

/// A listening Unix-domain socket.
int listenAt(const std::string& path);

/// An engine that plays a script: to every request of its one client it sends the next answer,
/// and when there is none left it closes the connection.
class EngineDouble {
public:
    explicit EngineDouble(std::vector<std::string> answers);
    ~EngineDouble();

    EngineDouble(const EngineDouble&) = delete;
    EngineDouble& operator=(const EngineDouble&) = delete;

    std::string path() const { return _directory.path() + "/engine"; }

    /// All bytes received; waits until the client has gone.
    std::string received();

private:
    void serve();

    TemporaryDirectory _directory;
    std::vector<std::string> _answers;
    std::string _received;
    int _listener;
    std::thread _thread;
};

/// The documents that an engine sends, with their end marker.
std::string timestampsAnswer(const std::string& capture, const std::string& rendering,
                             const std::string& receiving, const std::string& depth,
                             const std::string& code = "1000", const std::string& message = "");
std::string delayAnswer(const std::string& code, const std::string& message = "");

/// A document with this content in its root.
std::string document(const std::string& content);

} // namespace tests

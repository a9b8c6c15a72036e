#pragma once

namespace exchange {

/// Somebody who asks for the engine's timestamps over a connection of its own.
class Contestant {
public:
    Contestant() = default;
    virtual ~Contestant() = default;

    Contestant(const Contestant&) = delete;
    Contestant& operator=(const Contestant&) = delete;

    /// Called before and after a turn; not measured.
    virtual void beginTurn() {}
    virtual void endTurn() {}

    /// One request and its answer. Throws if the answer is not the right one.
    virtual void exchange() = 0;
};

} // namespace exchange

#pragma once

namespace exchange {

/// Keeps this process, and those that it starts from now on, on the core that has had the least to
/// do lately among those that it may use.
void pinToIdlestCore();

} // namespace exchange

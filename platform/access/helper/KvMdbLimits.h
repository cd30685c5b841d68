// KvMdbLimits - what the reader of databases may use up. Damage makes its library run in circles and ask
// for memory without end.
#pragma once

#include <cstddef>

namespace kv {

inline constexpr std::size_t MaxReaderMemory = std::size_t(2) << 30; ///< Bytes of addresses.
/// Of processor time. Whoever waits has less patience, as a rule.
inline constexpr int MaxSecondsWithoutOutput = 3600;

/// From now on the system refuses the process more memory and ends it when it works on without output.
/// Sanitizers reserve more addresses than that: their builds only limit the time.
void LimitResources();

/// Ends this process as soon as the one that started it has ended: nobody is there to end it otherwise.
void EndWithParent();

/// Grants the time anew; output was written.
void GrantTime();

} // namespace kv

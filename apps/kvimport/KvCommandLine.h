// KvCommandLine - the program as a function: arguments in, exit status out.
#pragma once

namespace kv {

/// Runs the sub-command that the arguments name. Never raises.
int RunCommandLine(int ArgumentCount, const char* const* Arguments);

} // namespace kv

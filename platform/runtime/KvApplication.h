// KvApplication - the program that runs: its file and its title.
#pragma once

#include <string>

namespace kv {

/// The folder of the running program's file, with a slash at its end. Empty when the system does not tell.
std::string ApplicationFolder();

/// What the program calls itself in the files that it writes: its file's name until it says otherwise.
const std::string& ApplicationTitle();
void SetApplicationTitle(std::string Title);

} // namespace kv

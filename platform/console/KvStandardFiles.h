// KvStandardFiles - the three files that a program finds open when it starts.
#pragma once

namespace kv {

/// Opens those of the descriptors 0 to 2 that are closed on /dev/null: a file that the program opens would
/// get such a number, and what is printed would end up in it. To be called before anything is opened.
void OpenStandardFiles();

} // namespace kv

// KvMemoryFile - an input as a file, for what reads files by their names.
#pragma once

#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include "KvFuzz.h"

namespace kv {

/// A file in memory that has a name.
class TMemoryFile
{
public:
    explicit TMemoryFile(std::string_view Text) : Descriptor(memfd_create("text", 0))
    {
        Require(write(Descriptor, Text.data(), Text.size()) == static_cast<ssize_t>(Text.size()));
    }
    TMemoryFile(const TMemoryFile&) = delete;
    TMemoryFile& operator=(const TMemoryFile&) = delete;
    ~TMemoryFile() { close(Descriptor); }

    std::string Name() const { return "/proc/self/fd/" + std::to_string(Descriptor); }

private:
    int Descriptor;
};

} // namespace kv

#include "KvYardMappedFile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kv::bench {

TMappedFile::TMappedFile(const std::filesystem::path& File)
{
    const auto Refuse = [&] { throw std::system_error(errno, std::generic_category(), File.string()); };
    const int Descriptor = ::open(File.c_str(), O_RDONLY | O_CLOEXEC);
    if (Descriptor < 0)
        Refuse();
    const auto Size = std::filesystem::file_size(File);
    void* Address = ::mmap(nullptr, Size, PROT_READ, MAP_PRIVATE, Descriptor, 0);
    ::close(Descriptor);
    if (Address == MAP_FAILED)
        Refuse();
    ::madvise(Address, Size, MADV_SEQUENTIAL);
    Bytes = {static_cast<const char*>(Address), Size};
}

TMappedFile::~TMappedFile()
{
    ::munmap(const_cast<char*>(Bytes.data()), Bytes.size());
}

} // namespace kv::bench

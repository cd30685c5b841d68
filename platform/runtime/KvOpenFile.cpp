#include "KvOpenFile.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KvFile.h"
#include "KvFileAlias.h"

namespace kv {

namespace {

struct stat StatusOf(int Descriptor, const std::string& Name)
{
    struct stat Status;
    if (fstat(Descriptor, &Status) != 0)
        RaiseFileError("open", Name, errno);
    return Status;
}

} // namespace

TKvOpenFile::TKvOpenFile(const std::string& FileName) : FName(FileName)
{
    const auto Path = PathOfFile(FName);
    do
        Descriptor = open(Path.c_str(), O_RDONLY | O_CLOEXEC);
    while (Descriptor < 0 && errno == EINTR);
    if (Descriptor < 0)
        RaiseFileError("open", FName, errno);
}

TKvOpenFile::~TKvOpenFile()
{
    close(Descriptor);
}

std::size_t TKvOpenFile::StatedSize() const
{
    const auto Status = StatusOf(Descriptor, FName);
    if (S_ISDIR(Status.st_mode))
        RaiseFileError("open", FName, EISDIR);
    return S_ISREG(Status.st_mode) ? static_cast<std::size_t>(Status.st_size) : 0;
}

bool TKvOpenFile::CanRewind() const
{
    return S_ISREG(StatusOf(Descriptor, FName).st_mode);
}

bool TKvOpenFile::IsReady()
{
    constexpr int Milliseconds = 100;
    pollfd Waiting{.fd = Descriptor, .events = POLLIN, .revents = 0};
    return poll(&Waiting, 1, Milliseconds) > 0;
}

std::size_t TKvOpenFile::Read(char* Buffer, std::size_t Size)
{
    for (;;) {
        const auto Count = read(Descriptor, Buffer, Size);
        if (Count >= 0)
            return static_cast<std::size_t>(Count);
        if (errno != EINTR)
            RaiseFileError("read", FName, errno);
    }
}

void TKvOpenFile::Rewind()
{
    if (lseek(Descriptor, 0, SEEK_SET) != 0)
        RaiseFileError("read", FName, errno);
}

} // namespace kv

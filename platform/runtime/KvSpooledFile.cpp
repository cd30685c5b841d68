#include "KvSpooledFile.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "KvException.h"
#include "KvFile.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t PieceSize = std::size_t{256} << 10;
constexpr int LookMilliseconds = 50;                // between two questions while nothing comes

class TDescriptor
{
public:
    explicit TDescriptor(int Opened) : Value(Opened) {}
    TDescriptor(const TDescriptor&) = delete;
    TDescriptor& operator=(const TDescriptor&) = delete;
    ~TDescriptor()
    {
        if (Value >= 0)
            close(Value);
    }
    int Get() const { return Value; }

private:
    const int Value;
};

std::string TemporaryFolder()
{
    const char* const Folder = std::getenv("TMPDIR");
    return Folder && *Folder != '\0' ? Folder : "/tmp";
}

int OpenTemporary()
{
    const auto Folder = TemporaryFolder();
    int Descriptor = open(Folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (Descriptor < 0) {                           // not every file system can
        auto Pattern = Folder + "/kvimport-XXXXXX";
        Descriptor = mkstemp(Pattern.data());
        if (Descriptor < 0)
            RaiseFileError("make", Pattern, errno);
        unlink(Pattern.c_str());
    }
    return Descriptor;
}

void WriteAll(int Descriptor, std::string_view Bytes)
{
    while (!Bytes.empty()) {
        const auto Count = write(Descriptor, Bytes.data(), Bytes.size());
        if (Count < 0 && errno == EINTR)
            continue;
        if (Count < 0)
            RaiseFileError("write", TemporaryFolder() + "/kvimport", errno);
        Bytes.remove_prefix(static_cast<std::size_t>(Count));
    }
}

/// False when there is nothing to read yet, not even the end.
bool IsReady(int Descriptor)
{
    pollfd Wait{.fd = Descriptor, .events = POLLIN, .revents = 0};
    return poll(&Wait, 1, LookMilliseconds) > 0;
}

void Spool(const std::string& FileName, int To, const std::function<bool()>& Continue,
           std::uint64_t MaxSize)
{
    // Without O_NONBLOCK the opening of a pipe would wait for its writer and ask nobody. With it, a pipe
    // is not ready until a writer has come.
    const TDescriptor From(open(FileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (From.Get() < 0)
        RaiseFileError("open", FileName, errno);
    const auto Buffer = std::make_unique_for_overwrite<char[]>(PieceSize);
    std::uint64_t Size = 0;
    while (Continue()) {
        if (!IsReady(From.Get()))
            continue;
        const auto Count = read(From.Get(), Buffer.get(), PieceSize);
        if (Count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (Count < 0)
            RaiseFileError("read", FileName, errno);
        if (Count == 0)
            return;
        Size += static_cast<std::uint64_t>(Count);
        if (Size > MaxSize)
            throw EFileError(FormatText("Cannot read file \"%s\": it gives more than %s bytes",
                                        {FileName, std::to_string(MaxSize)}),
                             {.FileName = FileName, .Rule = erStorage});
        WriteAll(To, {Buffer.get(), static_cast<std::size_t>(Count)});
    }
}

} // namespace

bool IsReadOnce(const std::string& FileName)
{
    struct stat Status;
    if (stat(FileName.c_str(), &Status) != 0)
        RaiseFileError("open", FileName, errno);
    return S_ISFIFO(Status.st_mode) || S_ISSOCK(Status.st_mode) || S_ISCHR(Status.st_mode);
}

TSpooledFile::TSpooledFile(const std::string& FileName, const std::function<bool()>& Continue,
                           std::uint64_t MaxSize)
    : Descriptor(OpenTemporary())
{
    try {
        Spool(FileName, Descriptor, Continue, MaxSize);
    }
    catch (...) {
        close(Descriptor);
        throw;
    }
}

TSpooledFile::~TSpooledFile()
{
    close(Descriptor);
}

std::string TSpooledFile::Name() const
{
    return "/proc/self/fd/" + std::to_string(Descriptor);
}

} // namespace kv

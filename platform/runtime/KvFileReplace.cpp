#include "KvFileReplace.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KvException.h"
#include "KvFile.h"
#include "KvText.h"

namespace kv {

namespace {

using TPath = std::filesystem::path;

constexpr int MaxLinks = 40;                        // as many as the system itself follows
constexpr int MaxNames = 100;                       // left by killed processes of this number

/// The file that is meant, wherever symbolic links lead; it need not be there yet.
TPath TargetOf(const std::string& FileName)
{
    TPath Target = FileName;
    std::error_code Ignored;
    for (int Links = 0; std::filesystem::is_symlink(Target, Ignored); ++Links) {
        if (Links == MaxLinks)
            RaiseFileError("write", FileName, ELOOP);
        Target = Target.parent_path() / std::filesystem::read_symlink(Target, Ignored);
    }
    return Target;
}

/// A file beside the target that takes its place, or goes away again.
class TReplacement
{
public:
    TReplacement(const std::string& FileName, const TPath& Replaced) : Name(FileName), Target(Replaced)
    {
        for (int Number = 0; Descriptor < 0; ++Number) {
            Temporary = Target.parent_path() /
                        (".kv" + std::to_string(getpid()) + '-' + std::to_string(Number) + '~');
            Descriptor = open(Temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (Descriptor < 0 && (errno != EEXIST || Number == MaxNames))
                Fail();
        }
    }
    TReplacement(const TReplacement&) = delete;
    TReplacement& operator=(const TReplacement&) = delete;
    ~TReplacement()
    {
        if (Descriptor >= 0)
            close(Descriptor);
        if (!Done)
            unlink(Temporary.c_str());
    }

    void TakeRightsOf(const struct stat& Old)
    {
        // Only root may give a file away; as somebody else one keeps it with the same permissions.
        [[maybe_unused]] const int Kept = fchown(Descriptor, Old.st_uid, Old.st_gid);
        Require(fchmod(Descriptor, Old.st_mode & 07777) == 0);
    }

    void Write(std::string_view Bytes)
    {
        while (!Bytes.empty()) {
            const auto Count = write(Descriptor, Bytes.data(), Bytes.size());
            Require(Count >= 0 || errno == EINTR);
            Bytes.remove_prefix(Count > 0 ? static_cast<std::size_t>(Count) : 0);
        }
        Require(fsync(Descriptor) == 0);
    }

    void Finish()
    {
        Require(close(std::exchange(Descriptor, -1)) == 0);
        Require(std::rename(Temporary.c_str(), Target.c_str()) == 0);
        Done = true;
        SyncFolder();
    }

private:
    [[noreturn]] void Fail() const { RaiseFileError("write", Name, errno); }
    void Require(bool Holds) const
    {
        if (!Holds)
            Fail();
    }

    /// So that the name outlives a crash too. Not every file system can, and the content is safe by now.
    void SyncFolder() const
    {
        const auto Folder = Target.has_parent_path() ? Target.parent_path() : TPath(".");
        const int Opened = open(Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (Opened < 0)
            return;
        fsync(Opened);
        close(Opened);
    }

    const std::string& Name;
    const TPath& Target;
    TPath Temporary;
    int Descriptor = -1;
    bool Done = false;
};

/// Replacing needs rights on the folder only: what the file itself forbids is asked for.
void CheckReplaceable(const std::string& FileName, const struct stat& Old)
{
    if (S_ISDIR(Old.st_mode))
        RaiseFileError("write", FileName, EISDIR);
    if (!S_ISREG(Old.st_mode))
        throw EFileError(FormatText("Cannot write file \"%s\": it is no regular file", {FileName}));
    if (faccessat(AT_FDCWD, FileName.c_str(), W_OK, AT_EACCESS) != 0)
        RaiseFileError("write", FileName, errno);
}

} // namespace

void ReplaceFileBytes(const std::string& FileName, std::string_view Bytes)
{
    const auto Target = TargetOf(FileName);
    struct stat Old;
    const bool Exists = stat(Target.c_str(), &Old) == 0;
    if (!Exists && errno != ENOENT)
        RaiseFileError("write", FileName, errno);
    if (Exists)
        CheckReplaceable(FileName, Old);
    TReplacement Replacement(FileName, Target);
    if (Exists)
        Replacement.TakeRightsOf(Old);
    Replacement.Write(Bytes);
    Replacement.Finish();
}

} // namespace kv

#include "KvFileWindow.h"

#include <cassert>
#include <cerrno>

#include "KvFile.h"
#include "KvFileAlias.h"

namespace kv {

TKvFileWindow::TKvFileWindow(const std::string& FileName, std::size_t WindowSize)
    : Name(FileName), FFileSize(kv::FileSize(FileName)), Capacity(WindowSize),
      Bytes(std::make_unique_for_overwrite<char[]>(WindowSize))
{
    File.rdbuf()->pubsetbuf(nullptr, 0);            // the window is the buffer
    errno = 0;
    File.open(PathOfFile(FileName), std::ios::binary);
    if (!File.is_open())
        RaiseFileError("open", Name, errno);
}

void TKvFileWindow::Move(std::uint64_t Offset)
{
    assert(Capacity > 0);
    Start = Offset;
    Filled = 0;
    errno = 0;
    File.clear();
    File.seekg(static_cast<std::streamoff>(Offset));
    File.read(Bytes.get(), static_cast<std::streamsize>(Capacity));
    if (File.bad() || (File.fail() && !File.eof()))
        RaiseFileError("read", Name, errno != 0 ? errno : EIO);
    Filled = static_cast<std::size_t>(File.gcount());
}

} // namespace kv

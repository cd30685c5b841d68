// KvCompanionFile - the file that stands beside a table and holds its memos: the table's name with another
// extension. Programs that took names for equal whatever their case wrote them in any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "KvFileWindow.h"

namespace kv {

/// The companion of the table `FileName` with the extension `Extension` (".MB"): the name in the case of the
/// table's own extension when there is such a file, else the first, by name, that differs in case only.
/// When there is none, the former.
std::string CompanionFileName(const std::string& FileName, std::string_view Extension);

/// Such a file, opened when somebody first asks for it: many tables have one that nobody needs. However large
/// it is, only a small window of it is held.
class TKvCompanionFile
{
public:
    /// Of the table `FileName`, as in CompanionFileName.
    TKvCompanionFile(const std::string& FileName, std::string_view Extension)
        : TableName(FileName), OwnExtension(Extension)
    {
    }

    /// Raises the EFileError of the first try at every call.
    TKvFileWindow& File();

private:
    const std::string TableName, OwnExtension;
    std::optional<TKvFileWindow> Window;
    std::exception_ptr Fault;                       // why it could not be opened
};

/// The `Size` bytes at `Offset`, in `Buffer`. Raises EFormatError "Unexpected end of data at offset %d" when
/// the file ends before.
std::string_view CopyBytes(TKvFileWindow& File, std::uint64_t Offset, std::size_t Size, std::string& Buffer);

} // namespace kv

// KvCompanionFile - the file that stands beside a table and holds its memos: the table's name with another
// extension. Programs that took names for equal whatever their case wrote them in any.
#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "KvFile.h"

namespace kv {

/// The companion of the table `FileName` with the extension `Extension` (".MB"): the name in the case of the
/// table's own extension when there is such a file, else the first, by name, that differs in case only.
/// When there is none, the former.
std::string CompanionFileName(const std::string& FileName, std::string_view Extension);

/// What such a file holds, read when somebody first asks for it: many tables have one that nobody needs.
class TKvCompanionFile
{
public:
    /// Of the table `FileName`, as in CompanionFileName.
    TKvCompanionFile(const std::string& FileName, std::string_view Extension)
        : TableName(FileName), OwnExtension(Extension)
    {
    }

    /// All of it; views hold as long as the object. Raises the EFileError of the first try at every call.
    std::string_view Bytes();

private:
    const std::string TableName, OwnExtension;
    TKvFileBytes File;
    bool IsRead = false;
    std::exception_ptr Fault;                       // why it could not be read
};

} // namespace kv

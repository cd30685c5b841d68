// KvFileReplace - giving a file another content in one step.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// Makes `Bytes` the content of the file `FileName`, or leaves everything as it was: whoever opens the
/// file, also after a crash, finds all of the old content or all of the new. A file that was there keeps
/// its permissions and, where the system lets it, its owner; a symbolic link stays one.
/// Raises EFileError "Cannot write file "%s": %s".
void ReplaceFileBytes(const std::string& FileName, std::string_view Bytes);

} // namespace kv

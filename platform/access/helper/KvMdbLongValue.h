// KvMdbLongValue - memos and objects, whose record holds only where they are.
//
//   value   := size:u32le  place:u32le  unused:4     size in the lower 30 bits, the kind in the two above:
//     10    the value follows right here
//     01    a row of another page is the value; place := slot:u8 page:u24
//     00    a chain of rows:  row := next place:u32le  piece:u8[]
#pragma once

#include <string>
#include <string_view>

#include "KvMdbFile.h"

namespace kv {

/// The value that `Bytes` of a record tell of: a part of them, or in `Storage`. Raises EFormatError when it
/// is not whole.
std::string_view ReadLongValue(const TMdbFile& File, std::string_view Bytes, std::string& Storage);

} // namespace kv

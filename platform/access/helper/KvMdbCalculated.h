// KvMdbCalculated - fields that Access computes from others, which it knows since 2010. The library reads
// neither their flag in the definition of the table nor the form in which their values are stored.
//
//   definition := head index:u8[12]* column*         over pages; each but the first begins with 8 bytes more
//   column     := type:u8 4 number:u16 8 flags:u8 extra:u8 8         of 25 bytes; C0 in extra: calculated
//   value      := 16 size:u32 value:u8[size] ...     the value as one of its type, Yes/No as a byte
#pragma once

#include <string_view>
#include <vector>

#include "KvMdbFile.h"

namespace kv {

/// A flag for each column of `Table`, whose columns have been read. None is calculated when the definition
/// ends early.
std::vector<bool> FindCalculatedFields(const TMdbFile& File, const MdbTableDef& Table);

/// The value within what is stored of a calculated field. Raises EFormatError when it is not whole.
std::string_view CalculatedValue(std::string_view Stored);

} // namespace kv

// KvTableRemark - what a table file holds that is not among its records, or not as its text says.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

enum TKvTableRemarkKind {
    /// Texts with other letters than those of ASCII, from record First on, and the file names no code page.
    trNoCodePage,
    trFieldLeftOut,                                 ///< Field Name cannot be read: Reason.
    trBytesLeftOut,                                 ///< Count bytes of each record belong to no field.
    trRecordsBeyond,                                ///< Count records stand behind the Limit that are told.
    /// Count records are whole of the Limit that are told: Reason.
    trRecordsMissing,
    /// Numbers of Count records, the first being First, had no room in their fields: they are asterisks.
    trNumbersLost
};

struct TKvTableRemark
{
    TKvTableRemarkKind Kind;
    std::int64_t Count = 0, First = 0, Limit = 0;
    std::string Name = {}, Reason = {};
};

} // namespace kv

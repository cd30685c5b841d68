// KvErrorFacts - what an exception knows of the thing that went wrong, beside the text that says so. Who
// acts on an error or shows its parts reads these; nobody searches a message.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

/// The rule that was broken.
enum TKvErrorRule {
    erNone,                                         ///< None that is listed here.
    erFormat,                                       ///< The bytes of a file are not what its format asks for.
    erConversion,                                   ///< The value has no meaning in the type of the field.
    erRange,                                        ///< The value lies outside the range of the type.
    erLength,                                       ///< The value is longer than the field.
    erRequired,                                     ///< The field must have a value.
    erReadOnly,                                     ///< The field or the dataset cannot be changed.
    erUnique,                                       ///< Another record has the value already.
    /// A record that is referred to, or refers to this one, forbids it.
    erForeignKey,
    erCheck,                                        ///< A condition that the database declares does not hold.
    erMissing,                                      ///< A file, table, field or record is not there.
    erBusy,                                         ///< Somebody else holds what is needed.
    /// The disk is full, or a file cannot be read, written or trusted.
    erStorage,
    erCancelled                                     ///< The user has asked to stop.
};

/// What went wrong. Each part is empty, or -1, where the error has none or nobody knows it.
struct TKvErrorFacts
{
    std::string FileName = {};                      ///< The file or database at fault.
    /// The message does not name the file, as its text is fixed: whoever shows it puts the name before.
    bool LacksFileName = false;
    std::string Place = {};                         ///< Where in it: "record 17", "line 18", "cell B3".
    /// The field of the destination, or the column of the source; of several together the names are joined by
    /// ";".
    std::string Field = {};
    /// Its value as text, whole; of several fields joined alike.
    std::string Value = {};
    TKvErrorRule Rule = erNone;
    std::int64_t Offset = -1;                       ///< Of the byte in the file, from 0.
    /// The record at fault, by the tag of whoever wrote it, usually its number from 1. Of an error that comes
    /// late the first record that it may concern.
    std::int64_t Record = -1;
};

} // namespace kv

// KvMdbValues - the values of a record into the stream, each in the form of its field's type.
#pragma once

#include <string>

#include "KvAccessTypes.h"
#include "KvAccessWriter.h"
#include "KvMdbFile.h"
#include "KvMdbRows.h"

namespace kv {

/// What a column of libmdb is.
TAccessField DescribeField(const MdbColumn& Column, bool IsUnicode);

class TMdbValues
{
public:
    TMdbValues(const TMdbFile& TheFile, TAccessWriter& TheWriter) : File(TheFile), Writer(TheWriter) {}

    /// Writes the current record. A value that cannot be read is written as the reason why.
    void WriteRecord(const TMdbRows& Rows);

private:
    void WriteValue(const MdbColumn& Column, const TMdbValue& Value);
    void WriteCalculated(const MdbColumn& Column, const TMdbValue& Value);
    void WriteText(std::string_view Bytes);
    void WriteDecimal(std::string_view Bytes, int Scale);

    const TMdbFile& File;
    TAccessWriter& Writer;
    std::string LongValue, Utf8;                    // storage that is used again
};

} // namespace kv

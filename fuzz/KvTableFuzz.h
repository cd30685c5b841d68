// KvTableFuzz - reads all of a table file that any bytes may be.
#pragma once

#include <cstddef>
#include <string_view>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"
#include "KvTableFile.h"

namespace kv {

inline void ReadRecord(TKvTableFile& Table)
{
    for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I) {
        try {
            const auto Loan = Table.Value(I);
            const TVariant Copy(Loan);              // which reads all that was lent
            Require(!Copy.IsEmpty() && (Copy == Loan || Copy != Copy));
        }
        catch (const EFormatError& Error) {
            Require(!Error.Message.empty());
        }
    }
}

/// Every value of every record is read, or an error tells why not. Where no error ends the reading, the
/// records are as many as the table counted, and never more than the bytes.
template <class TFile> void FuzzTable(std::string_view Bytes)
{
    const TMemoryFile File(Bytes);
    std::size_t Count = 0;
    try {
        TFile Table(File.Name());
        for (Table.First(); !Table.Eof(); Table.Next(), ++Count)
            ReadRecord(Table);
        Require(Count == Table.RecordCount());
    }
    catch (const Exception& Error) {
        Require(!Error.Message.empty());
    }
    Require(Count <= Bytes.size());
}

} // namespace kv

// Any bytes as a Paradox table: every value of every record is read, or an error tells why not. Where no error
// ends the reading, the records are as many as the table counted.
#include "KvParadoxFile.h"

#include <cstddef>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"

namespace {

using namespace kv;

void ReadRecord(TKvTableFile& Table)
{
    for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I) {
        try {
            const auto Loan = Table.Value(I);
            const TVariant Copy(Loan);              // which reads all that was lent
            Require(!Copy.IsEmpty() && Copy == Loan);
        }
        catch (const EFormatError&) {
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const TMemoryFile Bytes({reinterpret_cast<const char*>(Data), Size});
    try {
        TKvParadoxFile Table(Bytes.Name());
        Require(Table.RecordCount() <= Size);
        std::size_t Count = 0;
        for (Table.First(); !Table.Eof(); Table.Next(), ++Count)
            ReadRecord(Table);
        Require(Count == Table.RecordCount());
    }
    catch (const EFormatError&) {
    }
    return 0;
}

// KvParadoxFile - reads a Paradox table (.db) and its long values (.mb), versions 3 to 7 and later.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvField.h"
#include "KvFile.h"
#include "KvParadoxBlobs.h"
#include "KvParadoxBlocks.h"
#include "KvParadoxHeader.h"
#include "KvTableText.h"
#include "KvVariant.h"

namespace kv {

/// The records of a table, first to last. A damaged table gives the records before the damage: the move past
/// the last of them raises EFormatError "File "%s" is damaged after record %d: %s".
class TKvParadoxFile final
{
public:
    /// Reads the table; long values are read when the first of them is asked for that its record does not
    /// hold. Raises EFileError and what ReadParadoxHeader raises.
    explicit TKvParadoxFile(const std::string& TableFile);

    const std::vector<TFieldDef>& FieldDefs() const { return Defs; }
    std::size_t RecordCount() const { return Records.RecordCount; }

    void First();
    void Next();                                    ///< Does nothing past the last record.
    bool Eof() const { return Record == nullptr; }

    /// The value of field `Field`, from 0, in the current record: null when blank, texts as process text, as
    /// loans where possible; a loan ends with the object or the next value asked for. Formatted memos come
    /// as their text alone. Raises EFormatError "File "%s", record %d, field '%s': %s".
    TVariant Value(std::size_t Field);

private:
    TVariant Decode(const TKvParadoxField& Field, std::string_view Bytes);
    TVariant BlobValue(const TKvParadoxField& Field, std::string_view Bytes);
    std::string_view Blobs();
    void EnterBlock();

    const std::string FileName;
    const TKvFileBytes Bytes;
    const TKvParadoxHeader Header;
    const TKvParadoxBlocks Records;
    TKvTableText Text;
    std::vector<TFieldDef> Defs;

    const char* Record = nullptr;                   // the current one
    std::size_t RecordNumber = 0;                   // from 1
    std::size_t Block = 0;                          // of Records.Blocks
    std::size_t LeftInBlock = 0;                    // records behind the current one

    TKvFileBytes BlobBytes;
    bool BlobsAreRead = false;
    std::string BlobFault;                          // why they could not be read
};

} // namespace kv

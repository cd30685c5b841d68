// KvParadoxFile - reads a Paradox table (.db) and its long values (.mb), versions 3 to 7 and later.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "KvCompanionFile.h"
#include "KvFileWindow.h"
#include "KvParadoxBlobs.h"
#include "KvParadoxBlocks.h"
#include "KvParadoxHeader.h"
#include "KvTableFile.h"
#include "KvVariant.h"

namespace kv {

/// The records of a table, first to last. A damaged table gives the records before the damage: the move past
/// the last of them raises EFormatError "File "%s" is damaged after record %d: %s".
class TKvParadoxFile final : public TKvTableFile
{
public:
    /// Reads the header and follows the blocks; long values are read when the first of them is asked for that
    /// its record does not hold. `Transliterate` makes process text of the texts, by the code page that the
    /// table names. Raises EFileError, what ReadParadoxHeader raises, and what AddField raises.
    explicit TKvParadoxFile(const std::string& TableFile, bool Transliterate = true);

    std::size_t RecordCount() const override { return Records.RecordCount; }
    void First() override;
    void Next() override;
    bool Eof() const override { return Record == nullptr; }
    std::size_t Number() const override { return RecordNumber; }
    std::vector<TKvTableRemark> Remarks() const override;

protected:
    /// Formatted memos come as their text alone.
    TVariant Decode(std::size_t Field) override;

private:
    TVariant BlobValue(std::size_t Index, std::string_view Stored);
    void EnterBlock();
    [[noreturn]] void RaiseDamage(std::string_view Fault) const;

    const TKvParadoxHeader Header;
    TKvFileWindow File;
    const TKvParadoxBlocks Records;
    TKvCompanionFile Blobs;

    const char* Record = nullptr;                   // the current one
    std::size_t RecordNumber = 0;                   // from 1
    std::size_t Block = 0;                          // of Records.Blocks
    std::size_t LeftInBlock = 0;                    // records behind the current one
    std::vector<std::string> LongValues;            // of the current record, by field: what is lent
};

} // namespace kv

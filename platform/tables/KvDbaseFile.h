// KvDbaseFile - reads a table of dBase II to 7, FoxPro or Visual FoxPro (.dbf) and its memos (.dbt, .fpt).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvCompanionFile.h"
#include "KvDbaseHeader.h"
#include "KvFileWindow.h"
#include "KvTableFile.h"

namespace kv {

/// The records of a table that are not deleted. A file that ends before the last record that its header
/// announces gives the records that it has: the move past them raises EFormatError "File "%s" ends after
/// record %d of %d".
class TKvDbaseFile final : public TKvTableFile
{
public:
    /// Reads records as they come, and memos as they are asked for. Texts become process text with
    /// `Transliterate`, by the code page that a file beside the table, .cpg, names, else its header; without
    /// it they stay as they are. Raises EFileError, what ReadDbaseHeader and what AddField raise.
    explicit TKvDbaseFile(const std::string& TableFile, bool Transliterate = true);

    std::size_t RecordCount() const override;

    void First() override;
    void Next() override;
    bool Eof() const override { return Record == nullptr; }
    std::size_t Number() const override { return RecordIndex + 1; }
    std::vector<TKvTableRemark> Remarks() const override;

protected:
    TVariant Decode(std::size_t Field) override;

private:
    std::uint64_t OffsetOf(std::size_t Index) const // of a record in the file
    {
        return Header.HeaderSize + std::uint64_t{Index} * Header.RecordSize;
    }
    const char* RecordAt(TKvFileWindow& Source, std::size_t Index) const;
    void SkipDeleted();
    [[noreturn]] void RaiseEnded() const;
    bool HasBit(int Bit) const;
    TVariant NumberValue(const TKvDbaseField& Field, std::string_view Stored);
    TVariant MemoValue(std::size_t Index, std::string_view Stored);
    void CheckPadding() const;
    std::size_t CountRecordsBeyond() const;
    std::string_view WithoutRest(const TKvDbaseField& Field, std::string_view Stored) const;

    TKvFileWindow File;
    const TKvDbaseHeader Header;
    const std::size_t StoredRecords;                // that the file really has, deleted ones too
    mutable std::optional<std::size_t> LiveRecords; // once they were asked for
    TKvCompanionFile Memos;
    std::vector<std::string> MemoTexts;             // of the current record, by field: what is lent

    const char* Record = nullptr;                   // the current one
    std::size_t RecordIndex = 0;                    // from 0, deleted ones too
    std::size_t LostRecords = 0;                    // with numbers that are asterisks, as far as was read ...
    std::size_t FirstLost = 0, LastLost = 0;        // ... by their numbers
};

} // namespace kv

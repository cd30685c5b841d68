// KvMarkupImport - what the sources over files of tags have in common: the file, which of its rows are
// imported, and the current one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KvTextFile.h"
#include "KviFileImport.h"

namespace kv {

/// Imports the rows of a file from RowFirst to RowLast. A row is looked at when it is its turn: none of
/// them is kept.
class TKvImportFromMarkup : public TKvImportFromFile
{
public:
    std::string_view PositionUnit() const override { return "row"; }
    TKvISourcePosition SourcePosition() const override;

protected:
    using TKvImportFromFile::TKvImportFromFile;

    // What a source answers.

    /// How the file tells its encoding; none when its bytes are taken as they are.
    virtual TKvFindEncoding EncodingFinder() const = 0;
    /// The next call of NextRow gives the first row of `Text`.
    virtual void StartRows(std::string_view Text) = 0;
    virtual bool NextRow() = 0;
    /// The same for a row that only counts.
    virtual bool SkipRow() { return NextRow(); }

    // The run. BeforeImport counts the rows; a source that overrides it calls it.
    void BeforeImport() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    void GoNext() override;
    void AfterImport() override;

    std::string_view Text() const { return FText; } ///< Of the file, between BeforeImport and AfterImport.

private:
    void CountRows();

    // One run, from BeforeImport to AfterImport.
    std::optional<TKvTextFile> File;
    std::string_view FText;
    std::int64_t RowCount = 0;                      // from RowFirst to RowLast
    std::int64_t CurrentRow = 0;                    // of those, from 0
};

/// The text of a file of tags: up to the first zero byte or, when it tells its encoding, all of it.
/// Raises EConvertError for a zero byte in a text that tells its encoding.
std::string_view MarkupText(const TKvTextFile& File, const std::string& FileName, bool TellsEncoding);

} // namespace kv

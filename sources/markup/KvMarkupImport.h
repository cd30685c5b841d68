// KvMarkupImport - what the sources over files of tags have in common: the file, which of its rows are
// imported, and the current one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KviFileImport.h"

namespace kv {

class TKvTextFile;

/// Imports the rows of a file from RowFirst to RowLast. A row is looked at when it is its turn: none of
/// them is kept. A look reads the file, which it keeps for the run. One that shows all columns passes over
/// all rows for that; where it meets what cannot be read it shows the columns up to there, and the run fails
/// before it writes.
class TKvImportFromMarkup : public TKvImportFromFile
{
public:
    ~TKvImportFromMarkup() override;

    TPublishedProperties PublishedProperties() const override;

    /// The code page of the file where it tells its encoding, which then does not count; a byte order mark
    /// does. Empty: what the file tells.
    std::string CodePage;

    /// How the text was read that was loaded last.
    std::vector<TKvISourceRemark> SourceRemarks() const override { return EncodingRemarks; }
    std::string_view PositionUnit() const override { return "row"; }
    /// The offset is that of the tag that begins the row; none in a text that was converted.
    TKvISourcePosition SourcePosition() const override;
    void EndLook() override;

protected:
    /// Finds the label of its encoding in the beginning of a text; empty when there is none.
    using TEncodingFinder = std::string_view (*)(std::string_view Text);

    TKvImportFromMarkup(TComponent* Owner, TTableTypeImport Type, std::string_view Extension);

    // What a source answers.

    /// How the file tells its encoding; none when its bytes are taken as they are.
    virtual TEncodingFinder EncodingFinder() const = 0;
    /// The next call of NextRow gives the first row of `Text`.
    virtual void StartRows(std::string_view Text) = 0;
    virtual bool NextRow() = 0;
    /// The same for a row that only counts.
    virtual bool SkipRow() { return NextRow(); }
    /// Where the current row begins in the text.
    virtual const char* RowBegin() const = 0;
    /// The settings that decide which rows there are in the text.
    virtual std::string RowSettings() const = 0;

    // The run. BeforeImport counts the rows unless a look has; a source that overrides one of these calls it.
    void BeforeImport() override;
    /// A value that cannot be read, told by EFormatError, refuses its record.
    bool LoadRecord() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    void GoNext() override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    void AfterLook() override;

    // What a source may use.
    std::string_view Text() const;                  ///< Of the file that is loaded.
    std::int64_t TextOffset() const;                ///< Where it begins there; -1 when it was converted.
    bool HasRow() const { return RowIsThere; }      ///< There is a current row.
    std::int64_t OffsetOf(const char* Place) const; ///< In the file, of a place in the text; or -1.
    /// Loads the file unless the last look has kept it. False when that was cancelled: then it has no text.
    bool LoadForLook();
    /// The file that is named was looked at and is still kept.
    bool IsKept() const;
    /// Ends what BeforeImport has begun: with `Keep` the file stays for the run.
    void EndDetecting(bool Keep);
    /// All rows of the file were passed over: `Count` of them are imported.
    void KeepCount(std::int64_t Count);
    /// The number of rows that are imported is known.
    bool HasCount() const;
    /// Row `Number`, from 1, is one of those that are imported.
    bool IsImported(std::int64_t Number) const { return RowFirst <= Number && Number <= RowLast; }
    /// Raises EFormatError for a value with bytes that have no meaning in the encoding of the file.
    void CheckValue(std::string_view Value) const
    {
        if (HasStandIns)
            CheckStandIns(Value);
    }
    /// False once the run or the look is cancelled; asked for each of many rows, it looks there now and then.
    bool GoesOnAfter(std::int64_t Row) const;

private:
    struct TLoaded;

    bool Load();
    void RemarkEncoding(std::string_view Label);
    void CheckStandIns(std::string_view Value) const;
    void CountRows();
    std::string CountSettings() const;

    std::unique_ptr<TLoaded> Loaded;                // from BeforeImport to AfterImport, and by a look
    std::int64_t RowCount = 0;                      // from RowFirst to RowLast; as many as may be in a look
    std::int64_t CurrentRow = 0;                    // of those, from 0
    bool RowIsThere = false;
    bool HasStandIns = false;                       // the text has characters for bytes without a meaning
    std::vector<TKvISourceRemark> EncodingRemarks;
};

/// The text of a file of tags: up to the first zero byte or, when it tells its encoding, all of it.
/// Raises EConvertError for a zero byte in a text that tells its encoding.
std::string_view MarkupText(const TKvTextFile& File, const std::string& FileName, bool TellsEncoding);

} // namespace kv

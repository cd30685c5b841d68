// KvMarkupImport - what the sources over files of tags have in common: the file, which of its rows are
// imported, and the current one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "KviFileImport.h"

namespace kv {

class TKvTextFile;

/// Imports the rows of a file from RowFirst to RowLast. A row is looked at when it is its turn: none of
/// them is kept. A look reads the file, which it keeps, but passes over no more rows than it shows.
class TKvImportFromMarkup : public TKvImportFromFile
{
public:
    ~TKvImportFromMarkup() override;

    std::string_view PositionUnit() const override { return "row"; }
    /// The offset is that of the tag that begins the row; none in a text that was converted.
    TKvISourcePosition SourcePosition() const override;
    void EndLook() override;

protected:
    /// Finds the name of its encoding in the beginning of a text, see KvTextFile.
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

    // The run. BeforeImport counts the rows; a source that overrides one of these calls it.
    void BeforeImport() override;
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
    /// False once the run or the look is cancelled; asked for each of many rows, it looks there now and then.
    bool GoesOnAfter(std::int64_t Row) const;

private:
    struct TLoaded;

    bool Load();
    void CountRows();

    std::unique_ptr<TLoaded> Loaded;                // from BeforeImport to AfterImport, and by a look
    std::int64_t RowCount = 0;                      // from RowFirst to RowLast; as many as may be in a look
    std::int64_t CurrentRow = 0;                    // of those, from 0
    bool RowIsThere = false;
};

/// The text of a file of tags: up to the first zero byte or, when it tells its encoding, all of it.
/// Raises EConvertError for a zero byte in a text that tells its encoding.
std::string_view MarkupText(const TKvTextFile& File, const std::string& FileName, bool TellsEncoding);

} // namespace kv

// Kvi2txt - imports text files: lines whose values are separated by a delimiter, or stand at fixed
// positions.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTextExtensions.h"
#include "KviFileImport.h"

namespace kv {

struct TKvWantedLines;

/// What positions of fixed lines count.
enum TKvITextUnit {
    tuBytes,                                        ///< Bytes of the file, but of UTF-16 its characters.
    tuCharacters                                    ///< Characters of UTF-8.
};

/// Lines of a run that hold more or fewer values than the one to compare with, usually the header. Line
/// numbers count every line of the file from 1; 0 means none.
struct TKvITextFieldCounts
{
    int FewerLines = 0, FirstFewer = 0;
    int MoreLines = 0, FirstMore = 0;
};

/// Imports a text file. Source columns are "Field1", "Field2", ... of a delimited line and "Text1-10",
/// "Text11-20", ... (first and last byte, from 1) of a fixed one. A column of another name is a
/// constant that imports itself. Rows are lines; every line of the file counts. With rxNoEmptyRecords a line
/// is no record that holds blanks and delimiters alone.
class TKvImportFromText : public TKvImportFromFile
{
public:
    explicit TKvImportFromText(TComponent* Owner = nullptr);
    ~TKvImportFromText() override;

    std::string_view ClassName() const override { return "TKvImportFromText"; }
    TPublishedProperties PublishedProperties() const override;

    using TKvImportBaseComponent::Fixed;            ///< Values stand at fixed positions.

    // Each pair is kept in step: the kind and the characters that are used.
    using TKvImportBaseComponent::GetFieldDelimiter;
    using TKvImportBaseComponent::GetFieldDelimiterCustom;
    using TKvImportBaseComponent::GetRecordSeparator;
    using TKvImportBaseComponent::GetRecordSeparatorCustom;
    using TKvImportBaseComponent::GetTextQualifier;
    using TKvImportBaseComponent::GetTextQualifierCustom;
    using TKvImportBaseComponent::SetFieldDelimiter;
    using TKvImportBaseComponent::SetFieldDelimiterCustom;
    using TKvImportBaseComponent::SetRecordSeparator;
    using TKvImportBaseComponent::SetRecordSeparatorCustom;
    using TKvImportBaseComponent::SetTextQualifier;
    using TKvImportBaseComponent::SetTextQualifierCustom;

    TKvITextUnit FixedUnit = tuBytes;
    TKvITextExtensions Extensions;
    /// The line whose values FieldCounts compares with; 0: the first that is imported.
    int HeaderLine = 1;

    /// What the last run met. All zero for fixed lines, and when the line to compare with is empty or, being
    /// a header, imported itself.
    const TKvITextFieldCounts& FieldCounts() const { return FFieldCounts; }
    std::string_view PositionUnit() const override { return "line"; }
    TKvISourcePosition SourcePosition() const override;
    TVariant SourceRecord() override;               ///< The bytes of the line without its end.
    /// FieldCounts() in their words; empty lines and wide characters of the last look or run.
    std::vector<TKvISourceRemark> SourceRemarks() const override;
    TKvISourceName ResolveName(const std::string& Wanted,
                               const std::vector<TKvISourceColumn>& Shown) const override;
    void EndLook() override;
    /// The character that a first line "sep=;" names, else the first of `Candidates` that delimits values in
    /// line `HeaderRow`, cut as it would be with that one.
    /// None when no one does, for fixed lines, and without a header. What is read for it is kept for looks.
    /// Raises EFileError, and EConvertError as a look does.
    std::optional<char> FindDelimiter(int HeaderRow, std::string_view Candidates);

    static std::string Extension() { return ".TXT"; }
    static std::string FillFileFilters();

protected:
    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    bool LoadRecord() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    /// Fixed lines have none but those that the caller names.
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    int RecordWidth() const override;
    void AfterLook() override;
    bool IsOemText() const override;                ///< Not where a byte order mark says otherwise.

private:
    struct TColumn;                                 // what a source column's name says
    struct TState;                                  // what is loaded, and the current record

    void LoadLines(const TKvWantedLines& Wanted);
    std::string_view LineToCompare() const;
    std::optional<char> FindDelimiter(int Number, char Candidate);
    void CheckLength(std::string_view Line, std::size_t Number, std::size_t PlainNumber) const;
    void CountFields();
    void LoadCharacters();
    std::string_view TextOf(const TColumn& Column, std::string_view Source) const;
    std::string_view ValueAt(std::size_t Index) const; // of a delimited line, from 0
    std::string_view TextAt(const TColumn& Column) const; // of a fixed line
    std::string_view WithoutDelimiter(std::string_view Value) const;
    void MapHeaderFields();
    void MapHeaderBreaks();
    void MapFieldsInOrder();
    void MapFieldWidths();

    const std::unique_ptr<TState> State;
    TKvITextFieldCounts FFieldCounts;
};

/// Fills `Lines` with the lines `RowFirst` to `RowLast` of a file and `FirstLine` with its line 1. Any
/// character of `RecordSeparator` ends a line unless the qualifiers before it in the line are odd in
/// number; an empty `TextQualifier` is none. A preview stops at line 20 and, when `RowFirst` is below
/// 10, at 102400 bytes. `FieldDelimiter` tells xtDoubledQualifiers where a value begins. Raises EFileError,
/// and by the extensions what a run would end by.
void LoadTextFile(bool IsPreview, std::string& FirstLine, TStrings& Lines, const std::string& FileName,
                  std::string_view RecordSeparator, std::string_view TextQualifier, int RowFirst, int RowLast,
                  TKvITextExtensions Extensions = {}, char FieldDelimiter = '\t');

/// Finds the values of `Line`. Delimited: `Positions` get start * 10000 + stop of each (characters from
/// 1, both inclusive); `DataSet` is not used, and a line over 9999 characters raises Exception. Fixed:
/// they get the stop of each column, proposed from the display widths of the fields of `DataSet`, and
/// stay empty without one.
void FillFields(TDataSet* DataSet, bool IsFixed, char Delimiter, char TextQualifier, std::string_view Line,
                std::vector<int>& Positions);

} // namespace kv

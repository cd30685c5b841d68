// Kvi2txt - imports text files: lines whose values are separated by a delimiter, or stand at fixed
// positions.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvSet.h"
#include "KvTextFields.h"
#include "KvTextFile.h"
#include "KvTextLines.h"
#include "KviFileImport.h"
#include "KviSourceColumns.h"

namespace kv {

/// Rules of today's text files that take the place of older ones.
enum TKvITextExtension {
    /// RFC 4180: only a value that begins with the qualifier is qualified; inside it a doubled qualifier
    /// stands for one, and delimiters and line ends are text. A qualified value that is never closed is
    /// an error. Without it every qualifier switches, doubled ones stay doubled, and a value loses the
    /// delimiter that it ends in.
    xtDoubledQualifiers,
    /// Delimited lines have any length. Without it a line over 9999 characters ends the run.
    xtLongLines,
    /// A byte order mark is no part of the first value; one of UTF-16 also says how the text is to be
    /// read. Without it the mark is text.
    xtByteOrderMark,
    /// Blanks that fill a fixed column up are no part of its value. Without it they are.
    xtFixedPadding
};
using TKvITextExtensions = TSet<TKvITextExtension>;

/// Lines of a run that hold more or fewer values than the one to compare with, usually the header. Line
/// numbers count every line of the file from 1; 0 means none.
struct TKvITextFieldCounts
{
    int FewerLines = 0, FirstFewer = 0;
    int MoreLines = 0, FirstMore = 0;
};

/// Imports a text file. Source columns are "Field1", "Field2", ... of a delimited line and "Text1-10",
/// "Text11-20", ... (first and last byte, from 1) of a fixed one. A column of another name is a
/// constant that imports itself. Rows are lines; every line of the file counts.
class TKvImportFromText : public TKvImportFromFile
{
public:
    explicit TKvImportFromText(TComponent* Owner = nullptr);

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

    TKvITextExtensions Extensions;
    /// The line whose values FieldCounts compares with; 0: the first that is imported.
    int HeaderLine = 1;

    /// What the last run met. All zero for fixed lines, and when the line to compare with is empty or, being
    /// a header, imported itself.
    const TKvITextFieldCounts& FieldCounts() const { return FFieldCounts; }
    std::string_view PositionUnit() const override { return "line"; }
    TKvISourcePosition SourcePosition() const override;

    /// Cuts `Text`, which must outlive the result, into lines as a run does.
    TKvTextLines LineCutter(std::string_view Text) const;
    /// Cuts lines into values as a run does.
    TKvTextFields FieldCutter() const;

    static std::string Extension() { return ".TXT"; }
    static std::string FillFileFilters();

protected:
    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override { CurrentRow = 0; }
    int GetTotalCount() override;
    bool NeedMore() override;
    bool LoadRecord() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override { ++CurrentRow; }
    void AfterImport() override;

private:
    /// What a source column's name says.
    struct TColumn
    {
        std::size_t First = 0;                      // value or byte of the line, from 1; 0: no position
        std::size_t Last = 0;                       // byte of the line; 0: none
        bool NamesField = false;                    // a name that stands for nothing else
    };

    void Load(int LastLine, std::size_t MaxSize);
    void LoadLines(int LastLine);
    void LoadFirstLine();
    std::string_view LineToCompare() const;
    void Unload();
    void CheckLength(std::string_view Line, std::size_t Number) const;
    void CountFields();
    std::size_t LineNumber() const;
    static TColumn ResolveDelimited(std::string_view Source);
    static TColumn ResolveFixed(std::string_view Source);
    std::string_view TextOf(const TColumn& Column, std::string_view Source);
    std::string_view WithoutDelimiter(std::string_view Value) const;
    void MapHeaderFields();
    void MapHeaderBreaks();
    void MapFieldsInOrder();
    void MapFieldWidths();

    // One run, from BeforeImport to AfterImport.
    std::optional<TKvTextFile> File;                // all below view it
    std::string_view FirstLine, Header;             // line 1 and that of HeaderLine
    std::vector<std::string_view> Lines;            // those from RowFirst to RowLast
    std::optional<TKvTextFields> FieldPositions;    // of the current line; none for fixed lines
    std::size_t CurrentRow = 0;                     // into Lines
    std::string_view CurrentLine;
    TKvSourceColumns<TColumn> Columns;
    std::size_t ComparedFields = 0;                 // values of LineToCompare(); 0: not counted
    TKvITextFieldCounts FFieldCounts;
};

/// Fills `Lines` with the lines `RowFirst` to `RowLast` of a file and `FirstLine` with its line 1. Any
/// character of `RecordSeparator` ends a line unless the qualifiers before it in the line are odd in
/// number; an empty `TextQualifier` is none. A preview stops at line 20 and, when `RowFirst` is below
/// 10, at 102400 bytes. Raises EFileError.
void LoadTextFile(bool IsPreview, std::string& FirstLine, TStrings& Lines, const std::string& FileName,
                  std::string_view RecordSeparator, std::string_view TextQualifier, int RowFirst, int RowLast);

/// Finds the values of `Line`. Delimited: `Positions` get start * 10000 + stop of each (characters from
/// 1, both inclusive); `DataSet` is not used, and a line over 9999 characters raises Exception. Fixed:
/// they get the stop of each column, proposed from the display widths of the fields of `DataSet`, and
/// stay empty without one.
void FillFields(TDataSet* DataSet, bool IsFixed, char Delimiter, char TextQualifier, std::string_view Line,
                std::vector<int>& Positions);

} // namespace kv

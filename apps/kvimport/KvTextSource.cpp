#include "KvTextSource.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "KvDisplayText.h"
#include "KvNumberText.h"
#include "KvOptionText.h"
#include "KvRowRange.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvTerminalText.h"
#include "KvText.h"
#include "KvTextProbe.h"
#include "Kvi2txt.h"

namespace kv {

namespace {

constexpr TKvITextExtensions AllExtensions{xtDoubledQualifiers, xtLongLines, xtByteOrderMark, xtFixedPadding};

constexpr std::string_view RowWord = "line";

/// Without the blanks that fill a fixed column.
std::string_view WithoutPadding(std::string_view Text)
{
    return Text.substr(0, Text.find_last_not_of(' ') + 1);
}

/// "Text11-20" is a column of a fixed line.
bool IsRange(std::string_view Name)
{
    const auto Dash = std::min(Name.find('-'), Name.size());
    const auto IsNumber = [](std::string_view Text) { return TryTextToInt(Text).value_or(0) > 0; };
    return Dash > 4 && Dash < Name.size() && IsNumber(Name.substr(4, Dash - 4)) && IsNumber(Name.substr(Dash + 1));
}

class TTextSource final : public TSource
{
public:
    explicit TTextSource(const TSourceOptions& Given);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return RowWord; }
    bool HasNames() const override { return Rows.Header > 0; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;
    TMappedColumn ColumnNamed(const std::string& Name) override;
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }
    std::vector<std::string> Findings() const override;
    std::vector<std::string> Warnings() const override { return FieldCountWarnings(Import); }

private:
    std::string RemarkOnStranger(const std::string& Name) override;
    bool TrimsColumns() const { return Options.Text.Fixed && !Options.Classic; }
    void SetLayout();
    void FindDelimiter();
    std::string ToUtf8(std::string_view Text) const;
    TProbedText Probe(int First, int Last);
    std::vector<TSourceColumn> DelimitedColumns(const TProbedLine& Line) const;
    std::vector<TSourceColumn> FixedColumns() const;
    std::vector<std::string> FixedValues(const std::string& Line) const;

    const TSourceOptions Options;
    const TRowRange Rows;
    const TSourceFile File;
    TKvImportFromText Import;
    bool DelimiterFound = false;                    // in the header, against the habit of the file's name
};

TTextSource::TTextSource(const TSourceOptions& Given)
    : Options(Given), Rows(RowRangeBelowHeader(Options, RowWord)), File(Options.FileName)
{
    SetUpSource(Import, File.Name(), Rows, Options);
    Import.HeaderLine = Rows.Header;
    SetLayout();
    FindDelimiter();
}

void TTextSource::SetLayout()
{
    const auto& Text = Options.Text;
    const auto Extension = UpperCase(std::filesystem::path(Options.FileName).extension().string());
    Import.Fixed = Text.Fixed;
    Import.SetFieldDelimiterCustom(Text.Delimiter.value_or(Text.Fixed ? '\0' : Extension == ".CSV" ? ',' : '\t'));
    Import.SetTextQualifierCustom(Text.Qualifier);
    Import.SetRecordSeparatorCustom(Text.RecordSeparator);
    if (!Options.Classic)
        Import.Extensions = AllExtensions;
}

/// A header that holds no delimiter as the file's name promises it, but another of the usual ones, is
/// believed. Values are not: a comma in "1,5" delimits nothing.
void TTextSource::FindDelimiter()
{
    if (Options.Text.Delimiter || Import.Fixed || Rows.Header == 0)
        return;
    const char Usual = Import.GetFieldDelimiterCustom();
    for (const char Delimiter : {Usual, ';', ',', '\t'}) {
        Import.SetFieldDelimiterCustom(Delimiter);
        const auto Header = Probe(Rows.Header, Rows.Header).Lines;
        DelimiterFound = Delimiter != Usual;
        if (!Header.empty() && Header.front().Values.size() > 1)
            return;
    }
    DelimiterFound = false;
    Import.SetFieldDelimiterCustom(Usual);
}

std::string TTextSource::ToUtf8(std::string_view Text) const
{
    return ToDisplay(Text, Options.MsDos);
}

TProbedText TTextSource::Probe(int First, int Last)
{
    try {
        return ProbeText(Import, First, Last);
    }
    catch (const EFileError& Error) {
        throw EFileError(Explain(Error.Message));
    }
    catch (const Exception& Error) {
        throw Exception(DisplayName() + ", " + Explain(Error.Message));
    }
}

std::vector<TSourceColumn> TTextSource::DelimitedColumns(const TProbedLine& Line) const
{
    std::vector<TSourceColumn> Result;
    for (const auto& Value : Line.Values)
        Result.push_back({.Source = "Field" + std::to_string(Result.size() + 1),
                          .Name = HasNames() ? ToUtf8(Trim(Value)) : std::string()});
    return Result;
}

std::vector<TSourceColumn> TTextSource::FixedColumns() const
{
    std::vector<TSourceColumn> Result;
    for (const auto& Line : Options.Text.FixedColumns) {
        const auto Equal = Line.rfind('=');
        Result.push_back({.Source = Line.substr(Equal + 1), .Name = Line.substr(0, Equal)});
    }
    return Result;
}

std::vector<TSourceColumn> TTextSource::Columns()
{
    if (Import.Fixed)
        return FixedColumns();
    const int Line = HasNames() ? Rows.Header : Import.RowFirst;
    const auto Probed = Probe(Line, Line).Lines;
    return Probed.empty() ? std::vector<TSourceColumn>() : DelimitedColumns(Probed.front());
}

std::vector<std::string> TTextSource::FixedValues(const std::string& Line) const
{
    if (Options.Text.FixedColumns.empty())
        return {Line};
    std::vector<std::string> Values;
    for (const auto& Column : FixedColumns()) {
        const auto Dash = Column.Source.find('-');
        const auto First = std::stoul(Column.Source.substr(4)) - 1, Last = std::stoul(Column.Source.substr(Dash + 1));
        const auto Value = std::string_view(Line).substr(std::min(First, Line.size()), Last - First);
        Values.emplace_back(TrimsColumns() ? WithoutPadding(Value) : Value);
    }
    return Values;
}

TSourceRows TTextSource::FirstRows(int Count)
{
    TSourceRows Result;
    const auto Last = std::min(std::int64_t{Import.RowFirst} + Count - 1, std::int64_t{Import.RowLast});
    auto Probed = Probe(Import.RowFirst, static_cast<int>(Last));
    Result.Columns = Columns();
    Result.HasMore = Probed.HasMore && Last < Import.RowLast;
    for (auto& Line : Probed.Lines) {
        auto& Row = Result.Rows.emplace_back(Import.Fixed ? FixedValues(Line.Values.front()) : std::move(Line.Values));
        for (auto& Value : Row)
            Value = ToUtf8(Value);
        Result.Places.push_back(std::to_string(Line.Number));
        while (!Import.Fixed && Result.Columns.size() < Row.size())
            Result.Columns.push_back({.Source = "Field" + std::to_string(Result.Columns.size() + 1), .Name = {}});
    }
    return Result;
}

/// The component counts by what stands behind any five characters, or any four before a range.
TMappedColumn TTextSource::ColumnNamed(const std::string& Name)
{
    if (Import.Fixed && IsRange(Name))
        return {.Column = TSource::ColumnNamed("Text" + Name.substr(4)).Column, .Remark = {}};
    const auto Number = Import.Fixed || Name.size() < 6 ? 0 : TryTextToInt(std::string_view(Name).substr(5)).value_or(0);
    return TSource::ColumnNamed(Number > 0 ? "Field" + std::to_string(Number) : Name);
}

std::string TTextSource::RemarkOnStranger(const std::string& Name)
{
    if (!Name.starts_with("Field"))
        return TSource::RemarkOnStranger(Name);
    if (Import.Fixed)
        return "there is no such column: the field stays empty";
    return "line " + std::to_string(Import.RowFirst) + " has no such column: the field stays empty where it is missing";
}

std::vector<std::string> TTextSource::Findings() const
{
    if (!DelimiterFound)
        return {};
    return {"delimiter " + NameOfCharacter(Import.GetFieldDelimiterCustom()) + ", as line " + std::to_string(Rows.Header) + " has it"};
}

std::string LinesFrom(int Count, int First)
{
    return Count == 1 ? "line " + std::to_string(First) + " has"
                      : GroupDigits(Count) + " lines, the first of them line " + std::to_string(First) + ", have";
}

} // namespace

std::unique_ptr<TSource> MakeTextSource(const TSourceOptions& Options)
{
    return std::make_unique<TTextSource>(Options);
}

std::vector<std::string> FieldCountWarnings(const TKvImportFromText& Import)
{
    std::vector<std::string> Result;
    const auto& Counts = Import.FieldCounts();
    const bool HasHeader = Import.HeaderLine > 0;
    const auto Than = " values than line " + std::to_string(HasHeader ? Import.HeaderLine : Import.RowFirst) + ": ";
    if (Counts.MoreLines > 0)
        Result.push_back(LinesFrom(Counts.MoreLines, Counts.FirstMore) + " more" + Than +
                         (HasHeader ? "the extra ones were not imported" : "the extra ones were imported only where a mapping names them"));
    if (Counts.FewerLines > 0)
        Result.push_back(LinesFrom(Counts.FewerLines, Counts.FirstFewer) + " fewer" + Than + "the missing ones count as empty");
    return Result;
}

} // namespace kv

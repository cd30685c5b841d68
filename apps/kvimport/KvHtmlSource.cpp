#include "KvHtmlSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFirstRows.h"
#include "KvHtmlRows.h"
#include "KvRowRange.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvTerminalText.h"
#include "KvText.h"
#include "KvTextFile.h"
#include "Kvi2html.h"

namespace kv {

namespace {

constexpr std::string_view RowWord = "row";

constexpr TKvIHTMLExtensions AllExtensions{xhTagSyntax, xhHeaderCells, xhReferences,  xhFoldedSpace,
                                           xhSpans,     xhEncoding,    xhHeaderNames, xhEmptyIsNull};

class THtmlSource final : public TSource
{
public:
    explicit THtmlSource(const TSourceOptions& Given);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return RowWord; }
    bool HasNames() const override { return Range.Header > 0; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }
    std::vector<std::string> Findings() const override;
    std::vector<std::string> Warnings() const override;

private:
    std::string RemarkOnStranger(const std::string& Name) override;
    std::string ToUtf8(std::string_view Text) const;
    void Read(int Count);
    std::vector<TSourceColumn> ReadColumns(TKvHtmlRows Rows) const;
    TSourceRows ReadRows(TKvHtmlRows Rows, int Count) const;

    const TSourceOptions Options;
    const TRowRange Range;
    const TSourceFile File;
    TKvImportFromHTML Import;
    std::vector<TSourceColumn> FColumns;
    TSourceRows First;                              // rows, as many as were asked for so far
};

/// The text of a page as its component reads it.
class TPage
{
public:
    explicit TPage(const TKvImportFromHTML& Import)
        : Whole(Import.Extensions.Contains(xhEncoding) ? TKvTextFile(Import.SourceFileName, FindHtmlEncoding)
                                                       : TKvTextFile(Import.SourceFileName, bmIsText)),
          Text(MarkupText(Whole, Import.SourceFileName, Import.Extensions.Contains(xhEncoding)))
    {
    }

    TKvHtmlRows Rows(const TKvImportFromHTML& Import) const
    {
        return TKvHtmlRows(Text, Import.Extensions, Import.TableNumber);
    }

private:
    const TKvTextFile Whole;
    const std::string_view Text;
};

/// Moves to row `Number`, from 1; false when there are fewer.
bool MoveToRow(TKvHtmlRows& Rows, int Number)
{
    for (int Row = 1; Row <= Number; ++Row)
        if (!Rows.Next())
            return false;
    return true;
}

THtmlSource::THtmlSource(const TSourceOptions& Given)
    : Options(Given), Range(RowRangeBelowHeader(Options, RowWord)), File(Options.FileName)
{
    SetUpSource(Import, File.Name(), Range, Options);
    Import.TableNumber = Options.Html.TableNumber;
    if (!Options.Classic)
        Import.Extensions = AllExtensions;
    Read(SampleRows);
}

void THtmlSource::Read(int Count)
{
    try {
        const TPage Page(Import);
        FColumns = ReadColumns(Page.Rows(Import));
        First = ReadRows(Page.Rows(Import), Count);
    }
    catch (const EFileError& Error) {
        throw EFileError(Explain(Error.Message));
    }
    catch (const EConvertError& Error) {
        throw Exception(Explain(Error.Message));
    }
}

std::string THtmlSource::ToUtf8(std::string_view Text) const
{
    return ToDisplay(Text, Options.MsDos);
}

/// Those of the header row, else of the first row that is imported.
std::vector<TSourceColumn> THtmlSource::ReadColumns(TKvHtmlRows Rows) const
{
    const bool Found = MoveToRow(Rows, HasNames() ? Range.Header : Range.First);
    if (Rows.Tables() < Import.TableNumber)
        throw Exception("--table-number " + std::to_string(Import.TableNumber) + ": " + DisplayName() + " has " +
                        (Rows.Tables() == 0 ? "no table" : "tables 1 to " + std::to_string(Rows.Tables())));
    std::vector<TSourceColumn> Result;
    for (std::size_t I = 0; Found && I < Rows.Columns(); ++I) {
        auto Name = HasNames() ? ToUtf8(Trim(Rows.Text(I))) : std::string();
        Result.push_back({.Source = "Field" + std::to_string(I + 1), .Name = ReplaceAll(std::move(Name), "\n", " ")});
    }
    return Result;
}

std::vector<TSourceColumn> THtmlSource::Columns()
{
    if (Options.Classic && Options.FindNames)
        throw EUsageError("with --classic the first mapping takes the first cell of a row and so on, whatever columns are "
                          "called; use --by-position or --map");
    return FColumns;
}

std::string THtmlSource::RemarkOnStranger(const std::string& Name)
{
    if (Options.Classic)
        return "cells go to the mappings in their order, whatever columns are called";
    if (SameText(Name.substr(0, 5), "Field") && Name.find_first_not_of("0123456789", 5) == Name.npos && Name.size() > 5)
        return "there is no such column in the first row that was looked at: the field stays empty where it is missing";
    throw Exception("'" + Name + "' is no column: columns are called Field1, Field2, ...");
}

TSourceRows THtmlSource::FirstRows(int Count)
{
    if (First.HasMore && std::ssize(First.Rows) < Count)
        Read(Count);
    return FirstOf(First, Count);
}

TSourceRows THtmlSource::ReadRows(TKvHtmlRows Rows, int Count) const
{
    TSourceRows Result{.Columns = FColumns, .Rows = {}, .Places = {}, .Warnings = {}};
    std::int64_t Number = Range.First;
    bool There = MoveToRow(Rows, Range.First);
    for (; There && Number <= Range.Last && std::ssize(Result.Rows) < Count; There = Rows.Next(), ++Number) {
        auto& Texts = Result.Rows.emplace_back();
        for (std::size_t I = 0; I < Rows.Columns(); ++I)
            Texts.push_back(ToUtf8(Rows.Text(I)));
        Result.Places.push_back(std::to_string(Number));
        while (Result.Columns.size() < Texts.size())
            Result.Columns.push_back({.Source = "Field" + std::to_string(Result.Columns.size() + 1), .Name = {}});
    }
    Result.HasMore = There && Number <= Range.Last;
    return Result;
}

std::vector<std::string> THtmlSource::Findings() const
{
    if (!Options.Classic)
        return {};
    return {"--classic: the first mapping takes the first cell of a row and so on"};
}

std::vector<std::string> THtmlSource::Warnings() const
{
    if (Import.TablesRead() < 2)
        return {};
    return {"rows of " + GroupDigits(Import.TablesRead()) + " tables were read one after the other; --table-number takes one"};
}

} // namespace

std::unique_ptr<TSource> MakeHtmlSource(const TSourceOptions& Options)
{
    return std::make_unique<THtmlSource>(Options);
}

} // namespace kv

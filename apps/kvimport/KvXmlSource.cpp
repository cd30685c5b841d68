#include "KvXmlSource.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFirstRows.h"
#include "KvRowRange.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvText.h"
#include "KvTextFile.h"
#include "KvXmlRows.h"
#include "Kvi2xml.h"

namespace kv {

namespace {

constexpr int NamingRecords = 100;                  // that are looked at when no FIELDS section names columns

constexpr TKvIXMLExtensions AllExtensions{xxTagSyntax, xxWholeNames, xxReferences, xxEncoding, xxMissingIsNull};

class TXmlSource final : public TSource
{
public:
    explicit TXmlSource(const TSourceOptions& Given);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return "row"; }
    bool HasNames() const override { return true; }
    std::vector<TSourceColumn> Columns() override { return FColumns; }
    TSourceRows FirstRows(int Count) override;
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }

private:
    std::string RemarkOnStranger(const std::string& Name) override;
    std::string ToUtf8(std::string_view Text) const;
    void Read(int Count);
    std::vector<std::string> ReadNames(TKvXmlRows Rows) const;
    TSourceRows ReadRows(TKvXmlRows Rows, int Count) const;

    const TSourceOptions Options;
    const TSourceFile File;
    TKvImportFromXML Import;
    std::vector<TSourceColumn> FColumns;
    TSourceRows First;                              // rows, as many as were asked for so far
};

TXmlSource::TXmlSource(const TSourceOptions& Given) : Options(Given), File(Options.FileName)
{
    SetUpSource(Import, File.Name(), RowRangeOf(Options), Options);
    Import.TableName = FromDisplay(Options.Xml.RowTag);
    if (!Options.Classic)
        Import.Extensions = AllExtensions;
    Read(SampleRows);
}

std::string TXmlSource::ToUtf8(std::string_view Text) const
{
    return ToDisplay(Text, Options.MsDos);
}

/// The columns and the first records, as the component reads them.
void TXmlSource::Read(int Count)
{
    const bool TellsEncoding = Import.Extensions.Contains(xxEncoding);
    try {
        const auto Whole = TellsEncoding ? TKvTextFile(File.Name(), FindXmlFileEncoding) : TKvTextFile(File.Name(), bmIsText);
        const auto Text = MarkupText(Whole, File.Name(), TellsEncoding);
        const auto Rows = [&] { return TKvXmlRows(Text, Import.Extensions, Import.TableName, File.Name()); };
        FColumns.clear();
        for (const auto& Name : ReadNames(Rows()))
            FColumns.push_back({.Source = Name, .Name = ToUtf8(Name)});
        First = ReadRows(Rows(), Count);
    }
    catch (const EFileError& Error) {
        throw EFileError(Explain(Error.Message));
    }
    catch (const Exception& Error) {
        throw Exception(Explain(Error.Message));
    }
}

/// Those of the FIELDS section before the first record; where there is none, and for records of another tag,
/// which it does not describe, those of the first records.
std::vector<std::string> TXmlSource::ReadNames(TKvXmlRows Rows) const
{
    std::vector<std::string> Names;
    for (int I = 0; I < NamingRecords && Rows.Next(); ++I) {
        if (Import.TableName.empty() && !Rows.Fields().empty())
            break;
        for (const auto Name : Rows.AttributeNames())
            if (std::ranges::find(Names, Name) == Names.end())
                Names.emplace_back(Name);
    }
    if (!Import.TableName.empty() || Rows.Fields().empty())
        return Names;
    Names.clear();
    for (const auto& Field : Rows.Fields())
        Names.push_back(Field.Name);
    return Names;
}

std::string TXmlSource::RemarkOnStranger(const std::string& Name)
{
    if (Options.Classic)
        return TSource::RemarkOnStranger(Name);
    return "the file announces no such attribute: the field stays empty where it is missing";
}

TSourceRows TXmlSource::FirstRows(int Count)
{
    if (First.HasMore && std::ssize(First.Rows) < Count)
        Read(Count);
    return FirstOf(First, Count);
}

TSourceRows TXmlSource::ReadRows(TKvXmlRows Rows, int Count) const
{
    TSourceRows Result{.Columns = WithoutNames(FColumns), .Rows = {}, .Places = {}, .Warnings = {}};
    for (const auto& Column : FColumns)
        Rows.AddColumn(Column.Source);
    std::int64_t Number = 1;
    bool There = Rows.Next();
    for (; There && Number <= Import.RowLast && std::ssize(Result.Rows) < Count; There = Rows.Next(), ++Number) {
        if (Number < Import.RowFirst)
            continue;
        auto& Texts = Result.Rows.emplace_back();
        for (std::size_t I = 0; I < FColumns.size(); ++I)
            Texts.push_back(ToUtf8(Rows.Value(I).value_or(Options.Classic ? std::string_view(FColumns[I].Source) : "")));
        Result.Places.push_back(std::to_string(Number));
    }
    Result.HasMore = There && Number <= Import.RowLast;
    return Result;
}

} // namespace

std::unique_ptr<TSource> MakeXmlSource(const TSourceOptions& Options)
{
    return std::make_unique<TXmlSource>(Options);
}

} // namespace kv

// KvMarkupRun - imports of files of tags that are ready to run: a file of its own, a destination in memory.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvMemoryDataSet.h"
#include "KvTempFolder.h"
#include "Kvi2html.h"
#include "Kvi2xml.h"

namespace kv {

using TRows = std::vector<std::string>;

/// Imports into the text fields A, B and C, by default from the source columns "a", "b" and "c".
template <class TImport> class TMarkupRun : public TImport
{
public:
    explicit TMarkupRun(std::string_view Text)
    {
        this->SourceFileName = Folder.Write("file", Text);
        SetFields({{.Name = "A", .DataType = ftMemo},
                   {.Name = "B", .DataType = ftMemo},
                   {.Name = "C", .DataType = ftMemo}});
        this->SetDataSet(&Destination);
        MapTo({"a", "b", "c"});
        this->AnimatedStatus = false;
        this->Options = {};
    }

    /// Other fields of the destination; drops its records.
    void SetFields(std::vector<TFieldDef> Defs)
    {
        Destination.Close();
        Destination.SetFieldDefs(std::move(Defs));
        Destination.Open();
    }

    /// Mappings "A=<Sources[0]>", "B=<Sources[1]>", ...
    void MapTo(const std::vector<std::string>& Sources)
    {
        this->Mappings().Clear();
        for (std::size_t I = 0; I < Sources.size(); ++I)
            this->Mappings().Add(Destination.Fields(static_cast<int>(I)).FieldName() + "=" + Sources[I]);
    }

    /// The same with extensions.
    TMarkupRun(std::string_view Text, decltype(TImport::Extensions) Rules) : TMarkupRun(Text)
    {
        this->Extensions = Rules;
    }

    /// Executes and gives the records of the destination, values separated by "|", no value as "-".
    TRows Run()
    {
        this->Execute();
        EXPECT_EQ(this->Statistic.Result, irExecuted) << this->ErrorMessage();
        EXPECT_EQ(this->Statistic.TotalErrors, 0);
        TRows Records;
        for (Destination.First(); !Destination.Eof(); Destination.Next()) {
            std::string Row;
            for (int I = 0; I < Destination.FieldCount(); ++I) {
                const auto& Field = Destination.Fields(I);
                Row += (I > 0 ? "|" : "") + (Field.IsNull() ? "-" : Field.AsString());
            }
            Records.push_back(Row);
        }
        EXPECT_EQ(this->Statistic.TotalAdded, static_cast<int>(Records.size()));
        return Records;
    }

    /// Executes, expects a failure and gives its message, the file called FILE.
    std::string RunAndFail()
    {
        this->Execute();
        EXPECT_EQ(this->Statistic.Result, irFailed);
        std::string Message = this->ErrorMessage();
        if (const auto Place = Message.find(this->SourceFileName); Place != Message.npos)
            Message.replace(Place, this->SourceFileName.size(), "FILE");
        return Message;
    }

    /// The lines that automatic mapping adds.
    TRows DetectedMappings()
    {
        this->Mappings().Clear();
        this->DetectAutoMapping();
        return {this->Mappings().begin(), this->Mappings().end()};
    }

    using TImport::DetectAutoMapping;
    using TImport::GetTotalCount;
    using TImport::TableType;

    const TTempFolder Folder;
    TMemoryDataSet Destination;
};

using THtmlRun = TMarkupRun<TKvImportFromHTML>;
using TXmlRun = TMarkupRun<TKvImportFromXML>;

/// What a preview routine called back with: one line a row, values separated by "|".
struct TPreviewed
{
    TStrings Columns;
    TRows Rows;

    TPreviewCallback Callback()
    {
        return [this](TPersistent*, int ColCount, int Row, bool, const TVariant& Values) {
            EXPECT_EQ(Row, static_cast<int>(Rows.size()) + 1);
            EXPECT_EQ(ColCount, Columns.Count());
            std::string Line;
            for (int I = 0; I < ColCount; ++I)
                Line += (I > 0 ? "|" : "") + Values[I].ToText();
            Rows.push_back(Line);
        };
    }
};

/// What `Load`, a preview routine, shows of a file.
template <class TLoad>
TRows PreviewOf(TLoad Load, const std::string& FileName, const std::string& Names, const std::string& RowTag = "",
                int RowFirst = 1, int RowLast = RowLastMax)
{
    TPreviewed Seen;
    Load(nullptr, Names, FileName, RowTag, RowFirst, RowLast, false, Seen.Columns, Seen.Callback());
    return Seen.Rows;
}

/// Rows of three cells: the number of the row, "b" and "c".
inline std::string NumberedHtmlRows(int Count)
{
    std::string Rows;
    for (int I = 1; I <= Count; ++I)
        Rows += "<tr><td>" + std::to_string(I) + "</td><td>b</td><td>c</td></tr>\n";
    return Rows;
}

/// The same as attributes a, b and c.
inline std::string NumberedXmlRows(int Count)
{
    std::string Rows;
    for (int I = 1; I <= Count; ++I)
        Rows += "<ROW a=\"" + std::to_string(I) + "\" b=\"b\" c=\"c\"/>\n";
    return Rows;
}

/// One text, as the older rules read it and as they do with extensions.
template <class TExtensions> struct TReadingsWith
{
    const char* Name;
    TExtensions Extensions;
    std::string Text;
    TRows Classic;
    TRows Extended;
};
template <class TExtensions> void PrintTo(const TReadingsWith<TExtensions>& Readings, std::ostream* Out)
{
    *Out << Readings.Text;
}

/// The name of a row in a table of tests.
inline constexpr auto NameOfRow = [](const auto& Info) { return std::string(Info.param.Name); };

} // namespace kv

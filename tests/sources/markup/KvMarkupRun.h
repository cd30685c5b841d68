// KvMarkupRun - imports of files of tags that are ready to run.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvException.h"
#include "KvFileRun.h"
#include "Kvi2html.h"
#include "Kvi2xml.h"

namespace kv {

/// Imports into the text fields A, B and C, by default from the source columns "a", "b" and "c". No value
/// reads as "-".
template <class TImport> class TMarkupRun : public TFileRun<TImport>
{
public:
    explicit TMarkupRun(std::string_view Text) : TFileRun<TImport>(Text)
    {
        this->NullText = "-";
        this->MapTo({"a", "b", "c"});
    }
    /// The same with extensions.
    TMarkupRun(std::string_view Text, decltype(TImport::Extensions) Rules) : TMarkupRun(Text)
    {
        this->Extensions = Rules;
    }

    /// Executes a run that refuses records, and gives its messages. The others are in Destination.
    TRows RunAndRefuse()
    {
        TRows Messages;
        this->OnErrorEvent = [&Messages](TKvImportBaseComponent&, const Exception& Error, bool&) {
            Messages.push_back(Error.Message);
        };
        this->Execute();
        this->OnErrorEvent = {};
        EXPECT_EQ(this->Statistic.Result, irExecuted) << this->ErrorMessage();
        EXPECT_EQ(this->Statistic.TotalErrors, static_cast<int>(Messages.size()));
        return Messages;
    }

    /// What the first field of the destination holds.
    TRows FirstValues()
    {
        TRows Values;
        for (this->Destination.First(); !this->Destination.Eof(); this->Destination.Next())
            Values.push_back(this->Destination.Fields(0).AsString());
        return Values;
    }
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

/// What `Load`, a preview routine, shows of a file by the older rules.
template <class TLoad>
TRows PreviewOf(TLoad Load, const std::string& FileName, const std::string& Names,
                const std::string& RowTag = "", int RowFirst = 1, int RowLast = RowLastMax)
{
    TPreviewed Seen;
    Load(nullptr, Names, FileName, RowTag, RowFirst, RowLast, false, Seen.Columns, Seen.Callback(), {});
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

// dBase and FoxPro tables of other programs, compared value by value with what
// independent tools read from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "KvCodePage.h"
#include "KvCorpus.h"
#include "KvCsvDump.h"
#include "KvDbaseFile.h"
#include "KvDbaseHeader.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvIsoDate.h"
#include "KvText.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

/// What is right although the dump differs, and how often.
enum TRule {
    ruOtherTable,
    ruNoTable,
    ruDeletedRecord,
    ruHiddenField,
    ruKindUnknown,
    ruMemoNumber,
    ruNoMemoFile,
    ruMemoFileInCapitals,
    ruOtherCodePage,
    ruUnknownCodePage,
    ruSameName,
    ruBlankMoment,
    ruBlankDate,
    ruNoDate,
    ruCutSecond,
    ruWholeSecond,
    ruMidnight,
    ruNameWithRest,
    ruBlanksBefore,
    ruBlanksBehind
};
constexpr std::string_view RuleTexts[] = {
    "the tool takes the table for one of another version",
    "a table without fields is none",
    "the tool gives deleted records too",
    "the tool shows the hidden field of bits",
    "the tool does not know the kind of the field, and leaves it out or shows its bytes",
    "the tool gives the number of a memo's block",
    "the file of memos is missing: an error of the record",
    "the tool does not find the file of memos, whose extension is in capitals",
    "the tool takes letters beyond ASCII for those of another code page",
    "nobody knows the code page that the table names: an error of the record",
    "the tool knows one field of a name, or calls the second otherwise",
    "the tool takes a blank date and time for a day before our era",
    "the tool takes a blank date for 30 November 1899",
    "a date that is none is an error of its record; the tool shows it, or nothing",
    "the tool leaves a second as it was cut to milliseconds",
    "the tool drops milliseconds",
    "the tool takes midnight for no time",
    "the tool reads a name past its end",
    "the tool drops blanks before a text",
    "bytes keep the blanks behind them"};
using TRuleCounts = std::map<TRule, int>;

// --- Their tables ------------------------------------------------------------------------------------

struct TTheirValue
{
    enum TKind { None, Number, Text, Boolean } Kind = None;
    double Numeric = 0;                             ///< Also of a boolean.
    std::string Characters;
};

struct TTheirTable
{
    std::string Tool;
    std::vector<std::string> Names;
    std::string Letters;                            ///< Of the fields' kinds, where the tool tells them.
    std::vector<std::vector<TTheirValue>> Rows;
};

TTheirValue FromJson(const nlohmann::json& Row, const std::string& Name)
{
    const auto Found = Row.find(Name);
    if (Found == Row.end() || Found->is_null())
        return {};
    if (Found->is_boolean())
        return {TTheirValue::Boolean, Found->get<bool>() ? 1.0 : 0.0, ""};
    if (Found->is_number())
        return {TTheirValue::Number, Found->get<double>(), ""};
    return {TTheirValue::Text, 0, Found->get<std::string>()};
}

TTheirTable ReadRowDump(const fs::path& Path)
{
    std::ifstream File(Path);
    const auto Dump = nlohmann::json::parse(File);
    TTheirTable Table{"dbffile", {}, {}, {}};
    for (const auto& Field : Dump.at("fields")) {
        Table.Names.push_back(Field.at("name"));
        Table.Letters += Field.at("type").get<std::string>();
    }
    for (const auto& Row : Dump.at("records")) {
        Table.Rows.emplace_back();
        for (const auto& Name : Table.Names)
            Table.Rows.back().push_back(FromJson(Row, Name));
    }
    return Table;
}

TTheirTable ReadLineDump(const fs::path& Path)
{
    TTheirTable Table{"ogr", {}, {}, {}};
    for (const auto& Line : ReadCsvDump(Path)) {
        std::vector<TTheirValue> Row;
        for (const auto& Value : Line)
            Row.push_back({Value.Text.empty() ? TTheirValue::None : TTheirValue::Text, 0, Value.Text});
        Table.Rows.push_back(Row);
    }
    for (const auto& Name : Table.Rows.at(0))
        Table.Names.push_back(Name.Characters);
    Table.Rows.erase(Table.Rows.begin());
    return Table;
}

TTheirTable ReadSheetDump(const fs::path& Path)
{
    TTheirTable Table{"sheetjs", {}, {}, {}};
    const auto Sheets = ReadCellDump(Path);
    if (Sheets.empty())
        return Table;
    for (const auto& [Ref, Cell] : Sheets[0].second) {
        const auto [Row, Column] = Ref;
        if (Row == 0) {
            Table.Names.push_back(Cell.Text);
            continue;
        }
        Table.Rows.resize(static_cast<std::size_t>(Row));
        auto& Values = Table.Rows.back();
        Values.resize(std::max(Table.Names.size(), static_cast<std::size_t>(Column) + 1));
        if (Cell.Type == 's' || Cell.Number)
            Values.at(static_cast<std::size_t>(Column)) = {
                Cell.Type == 's' ? TTheirValue::Text : Cell.Type == 'b' ? TTheirValue::Boolean
                                                                        : TTheirValue::Number,
                Cell.Number.value_or(0), Cell.Text};
    }
    return Table;
}

// --- The comparison ----------------------------------------------------------------------------------

std::optional<double> NumberInText(std::string_view Text)
{
    double Value = 0;
    const auto* const Last = Text.data() + Text.size();
    const auto [End, Error] = std::from_chars(Text.data(), Last, Value);
    return End == Last && Error == std::errc() ? std::optional(Value) : std::nullopt;
}

std::optional<double> NumberOf(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkInteger:  return static_cast<double>(Value.Integer());
    case vkDouble:   return Value.Double();
    case vkCurrency: return Value.Currency().ToDouble();
    case vkBoolean:  return Value.Boolean() ? 1 : 0;
    case vkDateTime: return Value.DateTime().Days;
    default:         return std::nullopt;
    }
}

/// What a field of the letter can be.
bool IsKindOf(char Letter, TFieldType Type)
{
    switch (Letter) {
    case 'C': return Type == ftString;
    case 'N': return IsNumericField(Type);
    case 'F':
    case 'B': return Type == ftFloat;
    case 'L': return Type == ftBoolean;
    case 'D': return Type == ftDate;
    case 'T': return Type == ftDateTime;
    case 'I': return Type == ftInteger || Type == ftAutoInc;
    case 'Y': return Type == ftCurrency;
    case 'M': return Type == ftMemo || Type == ftBlob;
    case 'G': return Type == ftOle;
    case 'W': return Type == ftBlob;
    case 'V': return Type == ftString || Type == ftVarBytes;
    case 'Q': return Type == ftVarBytes;
    default:  return false;
    }
}

std::string Ascii(std::string_view Text)
{
    std::string Result;
    std::ranges::copy_if(Text, std::back_inserter(Result),
                         [](char Char) { return static_cast<signed char>(Char) > 0; });
    return Result;
}

/// A date in the ways in which the tools write it: with "/", and with a time in any case.
bool IsDateText(TDateTime Value, std::string Text)
{
    std::ranges::replace(Text, '/', '-');
    auto Ours = DateTimeToIso(Value);
    Ours[10] = 'T';
    if (Ours.size() == 19)
        Ours += ".000";
    return Text == DateToIso(Value) || Text == Ours + "Z";
}

/// One file, compared with one dump.
class TComparison
{
public:
    TComparison(const fs::path& TheFile, TTheirTable Dump, TRuleCounts& TheRules)
        : File(TheFile), Bytes(ReadFileBytes(TheFile.string())),
          Header(ReadDbaseHeader(Bytes.View(), TheFile.string())), Table(TheFile.string()),
          Theirs(std::move(Dump)), Rules(TheRules)
    {
    }

    void Compare()
    {
        if (IsMisread())
            return;
        CompareNames();
        if (Theirs.Tool == "dbffile")
            DropDeletedRecords();
        std::size_t Row = 0;
        for (Table.First(); !Table.Eof(); Table.Next(), ++Row) {
            if (Row >= Theirs.Rows.size()) {
                ADD_FAILURE() << "more records than the tool reads";
                return;
            }
            SCOPED_TRACE("record " + std::to_string(Row + 1));
            for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I)
                CompareValue(I, I < Theirs.Rows[Row].size() ? Theirs.Rows[Row][I] : TTheirValue());
        }
        EXPECT_EQ(Row, Theirs.Rows.size());
        EXPECT_EQ(Row, Table.RecordCount());
    }

private:
    /// Some tools read the head of some tables as that of others, and find nothing or everything wrong.
    bool IsMisread()
    {
        const auto Version = static_cast<unsigned char>(Bytes.View()[0]);
        const bool Misread = (Theirs.Tool == "ogr" && Version == 0x8C) ||
                             (Theirs.Tool == "sheetjs" && (Version == 0x32 || Theirs.Names.empty()));
        if (Misread)
            ++Rules[ruOtherTable];
        return Misread;
    }

    void CompareNames()
    {
        for (std::size_t I = 0; I < Theirs.Names.size(); ++I) {
            if (I == Table.FieldDefs().size() && Theirs.Names[I] == "_NullFlags") {
                ++Rules[ruHiddenField];
                continue;
            }
            ASSERT_LT(I, Table.FieldDefs().size());
            EXPECT_TRUE(Theirs.Letters.empty() || IsKindOf(Theirs.Letters[I], Table.FieldDefs()[I].DataType))
                << Theirs.Names[I];
            const auto& Ours = Table.FieldDefs()[I].Name;
            if (Ours == Theirs.Names[I])
                continue;
            if (Ours.starts_with("Point_ID_"))
                ++Rules[ruSameName];
            else if (Theirs.Tool == "sheetjs" && Theirs.Names[I].starts_with(Ours))
                ++Rules[ruNameWithRest];
            else if (Ascii(Ours) != Ours && Ascii(Theirs.Names[I]) != Theirs.Names[I])
                ++Rules[ruOtherCodePage];
            else
                ADD_FAILURE() << Ours << " is called " << Theirs.Names[I];
        }
    }

    void DropDeletedRecords()
    {
        for (std::size_t I = Theirs.Rows.size(); I-- > 0;)
            if (Bytes.View()[Header.HeaderSize + I * Header.RecordSize] == '*') {
                Theirs.Rows.erase(Theirs.Rows.begin() + static_cast<std::ptrdiff_t>(I));
                ++Rules[ruDeletedRecord];
            }
    }

    void CompareValue(std::size_t Field, const TTheirValue& Value)
    {
        std::string Error;
        TVariant Ours;
        try {
            Ours = Table.Value(Field);
        }
        catch (const EFormatError& Caught) {
            Error = Caught.Message;
        }
        if (Error.empty() && Agrees(Ours, Value))
            return;
        if (const auto Rule = Explain(Header.Fields.Visible[Field], Ours, Error, Value))
            ++Rules[*Rule];
        else
            ADD_FAILURE() << Theirs.Tool << ", " << Table.FieldDefs()[Field].Name << ": '"
                          << (Error.empty() ? Ours.ToText() : Error) << "', theirs '" << Value.Characters
                          << "' "
                          << Value.Numeric;
    }

    static bool Agrees(const TVariant& Ours, const TTheirValue& Value)
    {
        if (Value.Kind == TTheirValue::None || (Value.Kind == TTheirValue::Text && Value.Characters.empty()))
            return !Ours.HasValue() || Ours.ToText().empty();
        if (Value.Kind != TTheirValue::Text)
            return Ours.IsString() ? NumberInText(Ours.Text()) == Value.Numeric
                                   : NumberOf(Ours) == Value.Numeric;
        std::string Buffer;
        switch (Ours.Kind()) {
        case vkString:
            return Ours.Text() == Value.Characters || AnsiToUtf8(Ours.Text(), Buffer) == Value.Characters;
        case vkDateTime: return IsDateText(Ours.DateTime(), Value.Characters);
        case vkBoolean:
            return std::string_view(Ours.Boolean() ? "TtYy" : "FfNn").find(Value.Characters) !=
                   std::string_view::npos;
        default:         return NumberOf(Ours) == NumberInText(Value.Characters);
        }
    }

    /// Why the values differ; nothing when nobody can tell.
    std::optional<TRule> Explain(const TKvDbaseField& Field, const TVariant& Ours, const std::string& Error,
                                 const TTheirValue& Value) const
    {
        if (!Error.empty())
            return ExplainError(Error, Value);
        if (Field.Storage == dvMemo && Theirs.Tool != "dbffile")
            return IsMemoNumber(Value) ? ruMemoNumber : ruKindUnknown;
        if (!IsKnownToTool(Field))
            return ruKindUnknown;
        if (Ours.IsNull())
            return ExplainNull(Field.Storage, Value);
        if (Field.Storage == dvMoment)
            return ExplainMoment(Ours.DateTime(), Value);
        if (Field.Storage == dvMemo && Value.Kind == TTheirValue::None && fs::exists(Companion(".FPT")))
            return ruMemoFileInCapitals;
        if (Field.Name == "Point_ID")
            return ruSameName;
        if (Ours.IsString() && Value.Kind == TTheirValue::Text)
            return ExplainText(Ours.Text(), Value.Characters);
        return std::nullopt;
    }

    std::optional<TRule> ExplainError(const std::string& Error, const TTheirValue& Value) const
    {
        const bool HasNoMemo = Value.Kind == TTheirValue::None || IsMemoNumber(Value) || Theirs.Tool == "ogr";
        if (Error.find("Cannot open file") != Error.npos && HasNoMemo)
            return ruNoMemoFile;
        if (Error.find("Unknown code page") != Error.npos)
            return ruUnknownCodePage;
        if (Error.ends_with("is no date"))
            return ruNoDate;
        return std::nullopt;
    }

    static std::optional<TRule> ExplainNull(TKvDbaseStorage Storage, const TTheirValue& Value)
    {
        if (Storage == dvMoment && (Value.Numeric == -2415019 || Value.Characters.starts_with("-00471")))
            return ruBlankMoment;
        if (Storage == dvDay && Value.Numeric == -30)
            return ruBlankDate;
        return std::nullopt;
    }

    static std::optional<TRule> ExplainMoment(TDateTime Ours, const TTheirValue& Value)
    {
        constexpr double Millisecond = 1.0 / 86400000;
        if (Value.Kind == TTheirValue::None && Ours.Days == std::floor(Ours.Days))
            return ruMidnight;
        if (Value.Kind == TTheirValue::Number && std::abs(Ours.Days - Value.Numeric) < 1.1 * Millisecond)
            return ruCutSecond;
        const auto Text = DateTimeToIso(Ours);
        if (Text.size() > 19 && Value.Characters == Text.substr(0, 10) + "T" + Text.substr(11, 8) + ".000Z")
            return ruWholeSecond;
        return std::nullopt;
    }

    static std::optional<TRule> ExplainText(std::string_view Ours, std::string_view Value)
    {
        if (Ours.ends_with(Value) && IsBlank(Ours.substr(0, Ours.size() - Value.size())))
            return ruBlanksBefore;
        if (Ours.starts_with(Value) && IsBlank(Ours.substr(Value.size())))
            return ruBlanksBehind;
        if (Ascii(Ours) != Ours && Ascii(Value) != Value && Ascii(Trim(Ours)) == Ascii(Trim(Value)))
            return ruOtherCodePage;
        return std::nullopt;
    }

    static bool IsMemoNumber(const TTheirValue& Value)
    {
        return Value.Characters.starts_with("##MEMO##") ||
               (!Value.Characters.empty() && NumberInText(Value.Characters));
    }

    bool IsKnownToTool(const TKvDbaseField& Field) const
    {
        const auto IsDigitsOrText = Field.Storage == dvText || Field.Storage == dvNumber ||
                                    Field.Storage == dvFloat || Field.Storage == dvLogical ||
                                    Field.Storage == dvDay || Field.Storage == dvRawText;
        if (Theirs.Tool == "ogr")
            return IsDigitsOrText;
        const bool HasSize = Field.Storage == dvVarText || Field.Storage == dvVarBytes;
        return !HasSize && (Field.Storage != dvMemo || Field.Type == ftMemo);
    }

    fs::path Companion(const char* Extension) const { return fs::path(File).replace_extension(Extension); }

    const fs::path File;
    const TKvFileBytes Bytes;
    const TKvDbaseHeader Header;
    TKvDbaseFile Table;
    TTheirTable Theirs;
    TRuleCounts& Rules;
};

bool IsTable(const fs::path& File) { return SameText(File.extension().string(), ".dbf"); }

/// The dumps that there are for a file.
std::vector<TTheirTable> DumpsOf(const fs::path& Corpus, const fs::path& File)
{
    const auto Dump = [&](std::string_view Tool) {
        return Corpus / "expected" / "dbase" / (File.filename().string() + "." + std::string(Tool));
    };
    std::vector<TTheirTable> Dumps;
    if (fs::exists(Dump("dbffile.json")))
        Dumps.push_back(ReadRowDump(Dump("dbffile.json")));
    if (fs::exists(Dump("ogr.csv")))
        Dumps.push_back(ReadLineDump(Dump("ogr.csv")));
    if (fs::exists(Dump("sheetjs.json")))
        Dumps.push_back(ReadSheetDump(Dump("sheetjs.json")));
    return Dumps;
}

} // namespace

TEST(KvDbase, AgreesWithOtherToolsOnEveryTable)
{
    const auto Corpus = CorpusFolder("dbase");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with dbase and expected/dbase";
    TRuleCounts Rules;
    int Files = 0, Comparisons = 0;
    for (const auto& File : CorpusFiles(*Corpus, "dbase")) {
        if (!IsTable(File))
            continue;
        SCOPED_TRACE(File.filename().string());
        ++Files;
        for (auto& Dump : DumpsOf(*Corpus, File)) {
            ++Comparisons;
            if (File.stem() == "dbf__polygon")
                ++Rules[ruNoTable];
            else
                TComparison(File, std::move(Dump), Rules).Compare();
        }
    }
    std::cout << Files << " tables compared with " << Comparisons << " dumps; differences explained:\n";
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " x " << RuleTexts[Rule] << '\n';
}

} // namespace kv

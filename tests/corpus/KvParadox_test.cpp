// Paradox tables of other programs, compared value by value with what an independent tool reads from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "KvCorpus.h"
#include "KvCsvDump.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvParadoxFile.h"
#include "KvText.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

/// What the dump has instead of the value, and how often.
enum TRule {
    ruBlankIsLowest,
    ruDayNumber,
    ruMilliseconds,
    ruStoredDecimal,
    ruNoDecimal,
    ruStoredBlob,
    ruStoredFormattedMemo
};
constexpr std::string_view RuleTexts[] = {
    "the tool gives a blank integer, date or time as -2147483648",
    "the tool gives a date as a day number",
    "the tool gives a time or a timestamp in milliseconds",
    "the tool gives a decimal number as it is stored",
    "a decimal number has digits above 9: an error of its record",
    "the tool gives a long value as its record stores it: the leader, place and size of the rest",
    "a formatted memo comes as its text: the tool gives place and size of text and formatting codes"};
using TRuleCounts = std::map<TRule, int>;

TFieldType FieldTypeOf(char Letter)
{
    static const std::map<char, TFieldType> Types = {
        {'A', ftString}, {'D', ftDate},    {'S', ftSmallint}, {'I', ftInteger}, {'$', ftCurrency},
        {'N', ftFloat},
        {'L', ftBoolean}, {'M', ftMemo},   {'B', ftBlob},     {'F', ftFmtMemo}, {'O', ftOle},
        {'G', ftGraphic},
        {'T', ftTime},   {'@', ftDateTime}, {'+', ftAutoInc}, {'#', ftBCD},     {'Y', ftBytes}};
    return Types.at(Letter);
}

double NumberOf(std::string_view Text)
{
    double Value = 0;
    const auto [End, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Value);
    EXPECT_TRUE(Error == std::errc() && End == Text.data() + Text.size()) << Text;
    return Value;
}

/// The digits of a stored decimal number without zeros that say nothing, nothing when it has none.
std::optional<std::string> DigitsOf(std::string_view Hex)
{
    const auto Head = static_cast<unsigned char>(HexToText(Hex.substr(0, 2))[0]);
    const bool IsNegative = Head < 0x80;
    std::string Digits;
    for (const char Digit : Hex.substr(2)) {
        const int Value = Digit <= '9' ? Digit - '0' : Digit - 'a' + 10;
        const int Real = IsNegative ? 15 - Value : Value;
        if (Real > 9)
            return std::nullopt;
        Digits += static_cast<char>('0' + Real);
    }
    Digits.insert(Digits.size() - (Head & 0x3F), ".");
    Digits.erase(0, Digits.find_first_not_of('0'));
    Digits.erase(Digits.find_last_not_of('0') + 1);
    if (Digits.ends_with('.'))
        Digits.pop_back();
    if (Digits.empty() || Digits[0] == '.')
        Digits.insert(0, "0");
    return (IsNegative && Digits != "0" ? "-" : "") + Digits;
}

/// One file, compared with its dump.
class TComparison
{
public:
    TComparison(const fs::path& TheFile, TRuleCounts& TheRules)
        : File(TheFile), Table(TheFile.string()), Rules(TheRules)
    {
    }

    void Compare(const std::vector<std::vector<TCsvValue>>& Dump)
    {
        CompareFields(Dump.at(1));
        ASSERT_EQ(Table.FieldDefs().size(), Dump[1].size());
        std::size_t Line = 2;
        for (Table.First(); !Table.Eof(); Table.Next(), ++Line) {
            ASSERT_LT(Line, Dump.size()) << "more records than the tool reads";
            SCOPED_TRACE("record " + std::to_string(Line - 1));
            ASSERT_EQ(Dump[Line].size(), Dump[1].size());
            for (std::size_t I = 0; I < Dump[Line].size(); ++I) {
                SCOPED_TRACE(Table.FieldDefs()[I].Name);
                CompareValue(I, Dump[Line][I]);
            }
        }
        EXPECT_EQ(Line, Dump.size()) << "fewer records than the tool reads";
        EXPECT_EQ(Table.RecordCount(), Dump.size() - 2);
    }

private:
    void CompareFields(const std::vector<TCsvValue>& Names)
    {
        for (std::size_t I = 0; I < Names.size(); ++I) {
            const auto& Def = Table.FieldDefs().at(I);
            EXPECT_EQ(Def.Name, Names[I].Text);
            EXPECT_EQ(Def.DataType, FieldTypeOf(Names[I].Behind.at(1)));
            if (Def.DataType == ftString || Def.DataType == ftBytes) {
                EXPECT_EQ(std::to_string(Def.Size), Names[I].Behind.substr(2));
            }
        }
    }

    void CompareValue(std::size_t Field, const TCsvValue& Theirs)
    {
        if (Theirs.Text.starts_with("bcd:0x"))
            CompareDecimal(Field, std::string_view(Theirs.Text).substr(6));
        else if (Theirs.Text.starts_with("blob:0x"))
            CompareBlob(Field, HexToText(std::string_view(Theirs.Text).substr(7)));
        else
            ComparePlain(Field, Theirs);
    }

    void ComparePlain(std::size_t Field, const TCsvValue& Theirs)
    {
        const auto Ours = Table.Value(Field);
        if (Theirs.Text == "-2147483648")
            ++Rules[ruBlankIsLowest];
        if (Theirs.Text == "-2147483648" || (Theirs.Text.empty() && !Theirs.IsQuoted)) {
            EXPECT_TRUE(Ours.IsNull()) << Ours.ToText();
            return;
        }
        switch (Ours.Kind()) {
        case vkString:   EXPECT_EQ(Ours.Text(), Theirs.Text); break;
        case vkInteger:  EXPECT_EQ(std::to_string(Ours.Integer()), Theirs.Text); break;
        case vkBoolean:  EXPECT_EQ(Ours.Boolean() ? "1" : "0", Theirs.Text); break;
        case vkDouble:   EXPECT_EQ(Ours.Double(), NumberOf(Theirs.Text)); break;
        case vkDateTime: CompareDateTime(Table.FieldDefs()[Field].DataType, Ours.DateTime(),
                                         NumberOf(Theirs.Text)); break;
        default:         ADD_FAILURE() << "no value, the tool has " << Theirs.Text;
        }
    }

    void CompareDateTime(TFieldType Type, TDateTime Ours, double Theirs)
    {
        constexpr int DayZero = 25569 - 719163;     // 1 January 1970 as TDateTime and counted from the year 1
        constexpr double Milliseconds = 86400000;
        if (Type == ftDate) {
            EXPECT_EQ(Ours.Days, Theirs + DayZero);
        } else {
            EXPECT_NEAR(Ours.Days, Theirs / Milliseconds + (Type == ftTime ? 0 : DayZero),
                        0.1 / Milliseconds);
        }
        ++Rules[Type == ftDate ? ruDayNumber : ruMilliseconds];
    }

    void CompareDecimal(std::size_t Field, std::string_view Hex)
    {
        if (Hex.find_first_not_of('0') == Hex.npos) {
            EXPECT_TRUE(Table.Value(Field).IsNull());
            ++Rules[ruStoredDecimal];
        } else if (const auto Digits = DigitsOf(Hex)) {
            EXPECT_EQ(Table.Value(Field).ToText(), *Digits);
            ++Rules[ruStoredDecimal];
        } else {
            EXPECT_THROW(Table.Value(Field), EFormatError);
            ++Rules[ruNoDecimal];
        }
    }

    void CompareBlob(std::size_t Field, const std::string& Stored)
    {
        const auto Ours = Table.Value(Field);
        const auto Leader = Stored.substr(0, Stored.size() - 10);
        std::size_t Size = 0;
        for (std::size_t I = 0; I < 4; ++I)
            Size |= std::size_t{static_cast<unsigned char>(Stored[Stored.size() - 6 + I])} << 8 * I;
        if (Size == 0) {
            EXPECT_TRUE(Ours.IsNull());
            ++Rules[ruStoredBlob];
            return;
        }
        const auto IsFormatted = Table.FieldDefs()[Field].DataType == ftFmtMemo;
        if (IsFormatted) {
            EXPECT_LT(Ours.Text().size(), Size);
        } else {
            EXPECT_EQ(Ours.Text().size(), Size);
            EXPECT_EQ(Ours.Text().substr(0, Leader.size()), Leader.substr(0, std::min(Leader.size(), Size)));
        }
        if (Size > Leader.size()) {
            EXPECT_NE(Blobs().find(Ours.Text()), std::string_view::npos) << Ours.Text();
        }
        ++Rules[IsFormatted ? ruStoredFormattedMemo : ruStoredBlob];
    }

    /// The file of blobs, which stands beside the table with an extension in the same case.
    std::string_view Blobs()
    {
        auto Path = File;
        BlobBytes = ReadFileBytes(Path.replace_extension(File.extension() == ".DB" ? ".MB" : ".mb").string());
        return BlobBytes.View();
    }

    const fs::path File;
    TKvParadoxFile Table;
    TKvFileBytes BlobBytes;
    TRuleCounts& Rules;
};

bool IsTable(const fs::path& File) { return SameText(File.extension().string(), ".db"); }
bool IsEncrypted(const fs::path& File) { return File.stem() == "pdxdriver__encrypted"; }

std::string ErrorOf(const fs::path& File)
{
    try {
        TKvParadoxFile Table(File.string());
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

/// The text form of the field's values, one a record.
std::vector<std::string> ColumnOf(const fs::path& File, std::size_t Field)
{
    std::vector<std::string> Values;
    TKvParadoxFile Table(File.string());
    for (Table.First(); !Table.Eof(); Table.Next())
        Values.push_back(Table.Value(Field).ToText());
    return Values;
}

} // namespace

TEST(KvParadox, AgreesWithTheOtherToolOnEveryTable)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    TRuleCounts Rules;
    int Files = 0;
    for (const auto& File : CorpusFiles(*Corpus, "paradox")) {
        if (!IsTable(File) || IsEncrypted(File))
            continue;
        SCOPED_TRACE(File.filename().string());
        const auto Dump = *Corpus / "expected" / "paradox" / (File.filename().string() + ".pxlib.csv");
        ASSERT_TRUE(fs::exists(Dump)) << Dump;
        TComparison(File, Rules).Compare(ReadCsvDump(Dump));
        ++Files;
    }
    std::cout << Files << " tables compared; differences explained:\n";
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " x " << RuleTexts[Rule] << '\n';
}

TEST(KvParadox, AFormattedMemoOfAnotherProgramIsItsText)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    const auto Texts = ColumnOf(*Corpus / "paradox" / "pdxdriver__fmemo.db", 1);
    ASSERT_EQ(Texts.size(), 2u);
    EXPECT_EQ(Texts[0], "123");
    EXPECT_EQ(Texts[1].size(), 560u);
    EXPECT_EQ(std::ranges::count(Texts[1], '\n'), 5);
    EXPECT_EQ(Texts[1].find_first_not_of("0123456789\r\n"), std::string::npos);
}

TEST(KvParadox, AnEncryptedTableOfAnotherProgramIsRefusedByName)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    const auto File = *Corpus / "paradox" / "pdxdriver__encrypted.db";
    EXPECT_EQ(ErrorOf(File), "File \"" + File.string() + "\" is encrypted");
}

TEST(KvParadox, AFileOfBlobsIsNoTable)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    for (const auto& File : CorpusFiles(*Corpus, "paradox"))
        if (!IsTable(File)) {
            const auto* const Reason = File.stem() == "pdxreader__CUSTOMER" ? "kind 0 of version 0 is unknown"
                                                                            : "its blocks cannot have 130 KB";
            EXPECT_EQ(ErrorOf(File), "File \"" + File.string() + "\" is no Paradox table: " + Reason);
        }
}

} // namespace kv

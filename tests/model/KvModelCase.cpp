#include "KvModelCase.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <utility>

namespace kv {

namespace {

class TDice
{
public:
    explicit TDice(std::uint64_t Seed) : Engine(Seed) {}

    int Below(int Count) { return static_cast<int>(Engine() % static_cast<unsigned>(Count)); }
    bool OneIn(int Count) { return Below(Count) == 0; }
    template <class TItems> auto AnyOf(const TItems& Items)
    {
        return Items[static_cast<std::size_t>(Below(static_cast<int>(std::size(Items))))];
    }
    template <class TItem> void Shuffle(std::vector<TItem>& Items)
    {
        for (std::size_t I = Items.size(); I > 1; --I)
            std::swap(Items[I - 1], Items[static_cast<std::size_t>(Below(static_cast<int>(I)))]);
    }

private:
    std::mt19937_64 Engine;
};

// Few, so that keys meet.
constexpr std::array Integers = {"1", "2", "3", "4", "5", "6", "-7", "007", "2147483648", "9007199254740993"};
constexpr std::array Texts = {"Rom", "rom", "Oslo", "a,b", "say \"x\"", "<b>&amp;", "x=1", "0", "two words"};
constexpr std::array WideTexts = {"Köln", "Łódź", "日本"};
constexpr std::array ShortTexts = {"A", "a", "B", "Bern", "sixsix", "7"};
constexpr std::array Decimals = {"0", "1", "12.50", "-0.25", "99999.99", "3.00"};
constexpr std::array Reals = {"0.5", "-2", "1024.25", "7.125"};
constexpr std::array Days = {"2024-02-29", "1999-12-31", "2024-01-05", "2031-07-01"};
constexpr std::array Truths = {"True", "False"};

std::string ValidText(TDice& Dice, TModelKind Kind, bool IsAscii)
{
    switch (Kind) {
    case mkInteger:   return Dice.AnyOf(Integers);
    case mkText:      return !IsAscii && Dice.OneIn(4) ? Dice.AnyOf(WideTexts) : Dice.AnyOf(Texts);
    case mkShortText: return !IsAscii && Dice.OneIn(8) ? Dice.AnyOf(WideTexts) : Dice.AnyOf(ShortTexts);
    case mkDecimal:   return Dice.AnyOf(Decimals);
    case mkReal:      return Dice.AnyOf(Reals);
    case mkDate:      return Dice.AnyOf(Days);
    case mkBoolean:   return Dice.AnyOf(Truths);
    }
    std::abort();
}

std::string WrongText(TDice& Dice, TModelKind Kind)
{
    switch (Kind) {
    case mkText:
    case mkShortText: return "seven sins";          // which mkText takes
    case mkDate:      return Dice.AnyOf(std::array{"2023-02-29", "2024-13-01", "soon"});
    case mkInteger:   return Dice.AnyOf(std::array{"x", "1.5", "12 pieces"});
    default:          return Dice.AnyOf(std::array{"x", "1-2", "maybe"});
    }
}

constexpr std::array Names = {"ID", "CODE", "QTY", "NAME", "DAY", "PAID", "PRICE", "RATE"};
constexpr std::array KeyKinds = {mkInteger, mkShortText, mkDate};

void MakeColumns(TDice& Dice, TModelTable& Table)
{
    const int KeyCount = 1 + Dice.Below(2);
    const int Count = KeyCount + 1 + Dice.Below(5);
    for (int I = 0; I < Count; ++I) {
        TModelColumn Column{.Name = Names[static_cast<std::size_t>(I)]};
        Column.Kind = I < KeyCount ? Dice.AnyOf(KeyKinds) : static_cast<TModelKind>(Dice.Below(ModelKinds));
        const bool IsNumber =
            Column.Kind == mkInteger || Column.Kind == mkDecimal || Column.Kind == mkReal;
        Column.IsRequired = Dice.OneIn(4);
        Column.IsUnique = I >= KeyCount && Dice.OneIn(6);
        Column.IsPositive = IsNumber && Dice.OneIn(4);
        Table.Columns.push_back(Column);
    }
    for (int I = 0; I < KeyCount; ++I)
        Table.Keys.push_back(I);
}

void MakeKey(TDice& Dice, TModelTable& Table)
{
    Table.KeyKind = static_cast<TModelKey>(Dice.Below(mkPlain + 1));
    const bool IsInteger = Table.Keys.size() == 1 && Table.Columns[0].Kind == mkInteger;
    if (IsInteger && Table.KeyKind == mkPrimary)
        Table.KeyKind = mkRowid;                    // SQLite makes that of it
    if (!IsInteger && Table.KeyKind == mkRowid)
        Table.KeyKind = mkPrimary;
    if (Table.KeyKind == mkWithoutRowid)
        for (const int Key : Table.Keys)
            Table.Columns[static_cast<std::size_t>(Key)].IsRequired = true;
    if (Table.KeyKind == mkRowid)
        Table.Columns[0].IsRequired = false;        // it numbers itself
}

/// Keys are always there, other columns mostly; in any order.
std::vector<int> MakeFileColumns(TDice& Dice, const TModelTable& Table)
{
    std::vector<int> Columns;
    for (int I = 0; I < static_cast<int>(Table.Columns.size()); ++I)
        if (I < static_cast<int>(Table.Keys.size()) || !Dice.OneIn(6))
            Columns.push_back(I);
    if (Columns.size() < 2)
        Columns.push_back(static_cast<int>(Table.Columns.size()) - 1);
    Dice.Shuffle(Columns);
    return Columns;
}

TModelRecord MakeRecord(TDice& Dice, const TModelTable& Table, const std::vector<int>& Columns, bool IsAscii,
                        int WrongOneIn)
{
    TModelRecord Record(Columns.size());
    bool IsEmpty = true;
    for (std::size_t I = 0; I < Columns.size(); ++I) {
        const auto Kind = Table.Columns[static_cast<std::size_t>(Columns[I])].Kind;
        const bool IsLastChance = I + 1 == Columns.size() && IsEmpty; // a record of nothing is none
        if (Dice.OneIn(10) && !IsLastChance)
            continue;
        Record[I] = Dice.OneIn(WrongOneIn) ? WrongText(Dice, Kind) : ValidText(Dice, Kind, IsAscii);
        IsEmpty = false;
    }
    return Record;
}

} // namespace

TModelCase MakeModelCase(std::uint64_t Seed)
{
    TDice Dice(Seed);
    TModelCase Case;
    MakeColumns(Dice, Case.Table);
    MakeKey(Dice, Case.Table);
    Case.File = static_cast<TModelFileKind>(Dice.Below(ModelFileKinds));
    const bool IsAscii = Case.File == mfDbase || Case.File == mfWorkbook;

    TModelJob Before;
    for (int I = 0; I < static_cast<int>(Case.Table.Columns.size()); ++I)
        Before.Columns.push_back(I);
    for (int I = Dice.Below(12); I > 0; --I)
        Before.Records.push_back(MakeRecord(Dice, Case.Table, Before.Columns, true, 1000));
    RunModel(Case.Table, Before);

    Case.Job.Mode = static_cast<TImportMode>(Dice.Below(imCopy + 1));
    Case.Job.Columns = MakeFileColumns(Dice, Case.Table);
    const int WrongOneIn = Dice.OneIn(3) ? 1000 : 30;
    for (int I = 1 + Dice.Below(Dice.OneIn(20) ? 300 : 15); I > 0; --I)
        Case.Job.Records.push_back(MakeRecord(Dice, Case.Table, Case.Job.Columns, IsAscii, WrongOneIn));
    Case.IsDryRun = Dice.OneIn(8);
    if (Dice.OneIn(3))
        Case.Batch = 1 + Dice.Below(4);
    else if (Dice.OneIn(4))
        Case.StopAfter = Dice.Below(4);
    return Case;
}

std::vector<std::string> TModelCase::ColumnNames() const
{
    std::vector<std::string> Result;
    for (const int Column : Job.Columns)
        Result.push_back(Table.Columns[static_cast<std::size_t>(Column)].Name);
    return Result;
}

std::string TModelCase::Text() const
{
    std::string Result = Table.Declaration() + "\nmode " + std::to_string(Job.Mode) + ", batch " +
                         std::to_string(Batch) + (IsDryRun ? ", dry" : "") +
                         (StopAfter ? ", stops after " + std::to_string(*StopAfter) : "") + "\nbefore:\n";
    for (const auto& Row : Table.Rows)
        Result += "  " + RowText(Row) + "\n";
    return Result + NameOf(File) + ":\n" + BytesOf(mfText, ColumnNames(), Job.Records);
}

} // namespace kv

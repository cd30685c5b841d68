#include "KvJobChecks.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>

#include "KvDataSet.h"
#include "KvDateText.h"
#include "KvDisplayText.h"
#include "KvFormatSettings.h"
#include "KvText.h"

namespace kv {

namespace {

bool IsDigit(char Char)
{
    return std::isdigit(static_cast<unsigned char>(Char)) != 0;
}

/// The types whose text loses its thousand separators.
bool IsRealNumber(TFieldType Type)
{
    return Type == ftFloat || Type == ftCurrency || Type == ftBCD;
}

/// Positions, in the view, of columns that go into fields of types that `IsWanted` takes.
std::vector<std::size_t> ColumnsInto(bool (*IsWanted)(TFieldType), const TJobSource& Source,
                                     const TJobPlan& Plan, const TDataSet& Destination)
{
    std::vector<std::size_t> Result;
    for (const auto& Fate : Plan.Columns) {
        const auto* const Field =
            Fate.Field.empty() ? nullptr : Destination.FindField(FromDisplay(Fate.Field));
        const auto Column = std::ranges::find(Source.Columns(), Fate.Column.Name, &TKvISourceColumn::Name);
        if (Field && IsWanted(Field->DataType()) && Column != Source.Columns().end())
            Result.push_back(static_cast<std::size_t>(Column - Source.Columns().begin()));
    }
    return Result;
}

bool IsDate(TFieldType Type)
{
    return Type == ftDate || Type == ftDateTime;
}

/// A text of the source and its row.
struct TSeenText
{
    std::string Text;
    const TKvISourceRow* Row;
};

/// The texts of column `Index` that are not blank.
std::vector<TSeenText> TextsOf(const TKvISourceView& View, std::size_t Index)
{
    std::vector<TSeenText> Texts;
    for (const auto& Row : View.Rows)
        if (Index < Row.Values.size() && Row.Values[Index].Value.IsString() &&
            !Row.Values[Index].Value.IsBlank())
            Texts.push_back({Row.Values[Index].Value.ToText(), &Row});
    return Texts;
}

bool IsNoDate(const TSeenText& Seen)
{
    return !TryTextToDateTime(Seen.Text);
}

/// A way to write dates.
struct TDateForm
{
    const char* Order;                              // "dmy"
    const char* Pattern;                            // with "/" between its parts
};

constexpr TDateForm DateForms[] = {
    {"ymd", "yyyy/MM/dd"}, {"dmy", "dd/MM/yyyy"}, {"mdy", "MM/dd/yyyy"}};

/// Puts a form in force and the one before back.
class TDateFormInForce
{
public:
    TDateFormInForce(const TDateForm& Form, char Separator) : Before(FormatSettings())
    {
        FormatSettings().ShortDateFormat = Form.Pattern;
        std::ranges::replace(FormatSettings().ShortDateFormat, '/', Separator);
        FormatSettings().DateSeparator = Separator;
    }
    TDateFormInForce(const TDateFormInForce&) = delete;
    TDateFormInForce& operator=(const TDateFormInForce&) = delete;
    ~TDateFormInForce() { FormatSettings() = Before; }

private:
    const TFormatSettings Before;
};

/// The form in which the most of `Texts` are dates, as `Found` then has it. True when most are, and more than
/// now.
bool FindDateForm(const std::vector<TSeenText>& Texts, TJobFinding& Found)
{
    const auto Dates = [&Texts] { return std::ssize(Texts) - std::ranges::count_if(Texts, IsNoDate); };
    Found.Limit = std::ssize(Texts);
    Found.Count = std::max<std::int64_t>(Dates(), Found.Limit / 2);
    for (const char Separator : {'-', '.', '/'})
        for (const auto& Form : DateForms) {
            const TDateFormInForce InForce(Form, Separator);
            const std::int64_t Count = Dates();
            if (Count <= Found.Count)
                continue;
            Found.Count = Count;
            Found.Was = Form.Order;
            Found.Character = Separator;
        }
    return !Found.Was.empty();
}

} // namespace

std::vector<TJobFinding> CheckHeader(const TJobSource& Source, const TDataSet& Destination)
{
    if (Source.HasTitles() || Source.MapsItself() || Source.View().Rows.empty())
        return {};
    const auto& First = Source.View().Rows.front();
    std::vector<std::string> Values;
    for (const auto& Value : First.Values)
        Values.push_back(Value.Value.ToText());
    if (!LooksLikeHeader(Values, Destination))
        return {};
    return {{.Kind = jfLooksLikeHeader,
             .Name = Source.Title(),
             .Unit = Source.Unit(),
             .Number = First.Position.Number}};
}

std::vector<TJobFinding> CheckDates(const TJobSource& Source, const TJobPlan& Plan,
                                    const TDataSet& Destination)
{
    std::vector<TJobFinding> Result;
    for (const auto Column : ColumnsInto(IsDate, Source, Plan, Destination)) {
        const auto Texts = TextsOf(Source.View(), Column);
        const auto Wrong = std::ranges::find_if(Texts, IsNoDate);
        if (Wrong == Texts.end())
            continue;
        TJobFinding Found{.Kind = jfOtherDates,
                          .Name = Source.Title(),
                          .Value = ToDisplay(Wrong->Text),
                          .Place = Wrong->Row->Position.Text()};
        if (FindDateForm(Texts, Found))
            Result.push_back(std::move(Found));
    }
    return Result;
}

bool IsGroupedInThousands(std::string_view Number, char Separator, char DecimalSeparator)
{
    Number = Trim(Number);
    if (!Number.empty() && (Number.front() == '-' || Number.front() == '+'))
        Number.remove_prefix(1);
    const auto Whole = Number.substr(0, std::min(Number.find(DecimalSeparator), Number.size()));
    if (Number.substr(Whole.size()).find(Separator) != Number.npos)
        return false;
    if (Whole.size() > 1 && Whole.front() == '0' && Whole.find(Separator) != Whole.npos)
        return false;                               // "0,500" is half of one
    std::size_t Digits = 0;                         // since the last separator
    bool Grouped = false;
    for (const char Char : Whole) {
        if (Char == Separator) {
            if (Digits == 0 || Digits > 3 || (Grouped && Digits != 3))
                return false;
            Digits = 0;
            Grouped = true;
        }
        else if (IsDigit(Char))
            ++Digits;
        else
            return true;                            // no number: the field says so
    }
    return !Grouped || Digits == 3;
}

std::vector<TJobFinding> CheckReferences(const std::vector<TKvTableReference>& References, TImportMode Mode)
{
    std::vector<TJobFinding> Result;
    if (Mode == imDelete || Mode == imCopy)
        for (const auto& Reference : References)
            Result.push_back({.Kind = Reference.Changes ? jfChangesOthers : jfHeldByOthers,
                              .Name = ToDisplay(Reference.Table)});
    return Result;
}

void CheckThousands(const TJobSource& Source, const TJobPlan& Plan, const TDataSet& Destination)
{
    const auto& Formats = Source.Component().DataFormats;
    const auto Columns = ColumnsInto(IsRealNumber, Source, Plan, Destination);
    for (const auto& Row : Source.View().Rows)
        for (const auto Column : Columns) {
            if (Column >= Row.Values.size() || !Row.Values[Column].Value.IsString())
                continue;
            const auto Number = SourceText(Row.Values[Column].Value);
            if (!IsGroupedInThousands(Number, Formats.ThousandSeparator, Formats.DecimalSeparator))
                Refuse({.Kind = jfNotThousands,
                        .Name = Source.Title(),
                        .Value = Number,
                        .Place = Row.Position.Text(),
                        .Character = Formats.ThousandSeparator});
        }
}

} // namespace kv

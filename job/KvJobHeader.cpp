#include "KvJobHeader.h"

#include <algorithm>
#include <map>

#include "KvDisplayText.h"
#include "KvText.h"
#include "KviSource.h"

namespace kv {

namespace {

/// Digits with whatever stands between them: a number, a date, a time.
bool IsFigure(std::string_view Text)
{
    return Text.find_first_of("0123456789") != Text.npos &&
           Text.find_first_not_of("0123456789.,+-/:' ") == Text.npos;
}

TJobSampleRow SampleOf(const TKvISourceRow& Row)
{
    TJobSampleRow Result;
    Result.Number = static_cast<int>(Row.Position.Number);
    for (const auto& [Value, Error] : Row.Values) {
        Result.Texts.emplace_back(Trim(ToDisplay(Value.ToText())));
        if (Result.Texts.back().empty())
            continue;
        ++Result.Filled;
        Result.HasFigures = Result.HasFigures || !Value.IsString() || IsFigure(Result.Texts.back());
    }
    return Result;
}

/// Values in the middle one of the rows that hold any.
std::size_t UsualFill(const TJobSample& Sample)
{
    std::vector<std::size_t> Counts;
    for (const auto& Row : Sample)
        if (Row.Filled > 0)
            Counts.push_back(Row.Filled);
    if (Counts.empty())
        return 0;
    const auto Middle = Counts.begin() + static_cast<std::ptrdiff_t>((Counts.size() - 1) / 2);
    std::ranges::nth_element(Counts, Middle);
    return *Middle;
}

/// The title of a report, or a line between it and the table.
bool IsAboveTable(const TJobSampleRow& Row, std::size_t Usual)
{
    return Row.Filled == 0 || (Usual > 1 && Row.Filled == 1) || 2 * Row.Filled < Usual;
}

bool HasName(const TJobSampleRow& Row, const std::string& Name)
{
    return std::ranges::any_of(Row.Texts, [&](const auto& Text) { return SameText(BareTitle(Text), Name); });
}

/// True when a value of the row stands in its column of one below, but not the whole row.
bool Recurs(const TJobSample& Sample, std::size_t Index)
{
    const auto& Texts = Sample[Index].Texts;
    const auto HasOneOf = [&Texts](const TJobSampleRow& Row) {
        for (std::size_t I = 0; I < std::min(Texts.size(), Row.Texts.size()); ++I)
            if (!Texts[I].empty() && Texts[I] == Row.Texts[I])
                return Row.Texts != Texts;
        return false;
    };
    return std::any_of(Sample.begin() + static_cast<std::ptrdiff_t>(Index) + 1, Sample.end(), HasOneOf);
}

} // namespace

TJobSample SampleOf(const TKvISourceView& View)
{
    TJobSample Sample;
    for (const auto& Row : View.Rows)
        Sample.push_back(SampleOf(Row));
    return Sample;
}

bool MayBeHeader(const TJobSample& Sample, std::size_t Number)
{
    if (Number < 1 || Number > Sample.size())
        return false;
    const auto& Row = Sample[Number - 1];
    return Row.Filled > 0 && !Row.HasFigures && !Recurs(Sample, Number - 1);
}

int FindHeader(const TJobSample& Sample, const std::vector<std::string>& Wanted)
{
    for (std::size_t I = 0; I < Sample.size(); ++I)
        if (std::ranges::any_of(Wanted, [&](const auto& Name) { return HasName(Sample[I], Name); }))
            return static_cast<int>(I) + 1;
    const auto Usual = UsualFill(Sample);
    const auto IsInTable = [Usual](const TJobSampleRow& Row) { return !IsAboveTable(Row, Usual); };
    const auto First = std::ranges::find_if(Sample, IsInTable) - Sample.begin() + 1;
    if (MayBeHeader(Sample, static_cast<std::size_t>(First)))
        return static_cast<int>(First);
    // A header with hardly a name in it, which is as wide as the rows below.
    return MayBeHeader(Sample, 1) && Sample.front().Texts.size() >= Usual ? 1 : 0;
}

std::size_t RowsOfOneWidth(const TJobSample& Sample)
{
    std::map<std::size_t, std::size_t> Rows;        // by width
    std::size_t Most = 0;
    for (const auto& Row : Sample)
        if (Row.Texts.size() > 1)
            Most = std::max(Most, ++Rows[Row.Texts.size()]);
    return Most;
}

std::string_view BareTitle(std::string_view Title)
{
    Title = Trim(Title);
    const bool IsQuoted = Title.size() > 1 && (Title.front() == '"' || Title.front() == '\'') &&
                          Title.front() == Title.back();
    return IsQuoted ? Trim(Title.substr(1, Title.size() - 2)) : Title;
}

} // namespace kv

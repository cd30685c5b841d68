#include "KvConsoleProgress.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "KvTerminalText.h"

namespace kv {

namespace {

constexpr int BarMin = 10, BarMax = 40;             // columns between the brackets
constexpr double SteadyAfter = 1;                   // seconds until the rate says something
constexpr std::string_view FullBlock = "█";
constexpr std::string_view PartBlocks[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};

bool IsSizeKnown(const TConsoleProgress& Progress)
{
    return Progress.Max > Progress.Min;
}

double PartDone(const TConsoleProgress& Progress)
{
    if (!IsSizeKnown(Progress))
        return 0;
    const auto Whole = static_cast<double>(Progress.Max) - Progress.Min;
    return std::clamp((static_cast<double>(Progress.Position) - Progress.Min) / Whole, 0.0, 1.0);
}

std::string Bar(double Part, int Width, bool Blocks)
{
    std::string Result = Blocks ? "" : "[";
    const auto Eighths = static_cast<int>(Part * Width * 8);
    const int Full = Eighths / 8;
    for (int I = 0; I < Full; ++I)
        Result += Blocks ? FullBlock : "#";
    int Used = Full;
    if (Blocks && Eighths % 8 != 0) {
        Result += PartBlocks[Eighths % 8];
        ++Used;
    }
    Result.append(static_cast<std::size_t>(std::max(Width - Used, 0)), ' ');
    return Result + (Blocks ? "▏" : "]");
}

std::string Percent(const TConsoleProgress& Progress)
{
    const auto Text = std::to_string(PercentDone(Progress));
    return PadToWidth(Text, 3, true) + " %";
}

std::string Counted(const TConsoleProgress& Progress)
{
    auto Result = GroupDigits(Progress.Position);
    if (IsSizeKnown(Progress))                      // an expectation, which the work may exceed
        Result += " of " + GroupDigits(std::max(Progress.Max, Progress.Position));
    return Result;
}

std::string Errors(const TConsoleProgress& Progress)
{
    return GroupDigits(Progress.Errors) + (Progress.Errors == 1 ? " error" : " errors");
}

/// Empty as long as nothing can be said.
std::string TimeLeft(const TConsoleProgress& Progress)
{
    const double Part = PartDone(Progress);
    if (Part <= 0 || Progress.Seconds < SteadyAfter)
        return {};
    const auto Seconds = static_cast<std::int64_t>(std::ceil(Progress.Seconds * (1 - Part) / Part));
    const auto TwoDigits = [](std::int64_t Value) { return (Value < 10 ? "0" : "") + std::to_string(Value); };
    const auto Minutes = Seconds / 60;
    const auto Clock = Minutes < 60 ? std::to_string(Minutes)
                                    : std::to_string(Minutes / 60) + ":" + TwoDigits(Minutes % 60);
    return Clock + ":" + TwoDigits(Seconds % 60) + " left";
}

} // namespace

int PercentDone(const TConsoleProgress& Progress)
{
    return static_cast<int>(PartDone(Progress) * 100);
}

std::string ProgressLine(const TConsoleProgress& Progress, int Width, bool Blocks)
{
    const auto Title = VisibleText(Progress.Title);
    if (!IsSizeKnown(Progress) && Progress.Position == 0)
        return FitToWidth(Title + " ...", Width);

    std::string Figures = IsSizeKnown(Progress) ? Percent(Progress) + "  " : "";
    Figures += Counted(Progress);
    if (Progress.Errors > 0)
        Figures += "  " + Errors(Progress);
    if (const auto Left = TimeLeft(Progress); !Left.empty())
        Figures += "  " + Left;

    const int Room = Width - DisplayWidth(Figures);
    const int TitleRoom = std::max(Room - 2, 0);
    const auto Name = TitleRoom >= 8 ? FitToWidth(Title, TitleRoom) : std::string();
    const int BarRoom = Room - DisplayWidth(Name) - 6; // two blanks on both sides and the ends of the bar
    std::string Line = Name.empty() ? "" : Name + "  ";
    if (IsSizeKnown(Progress) && BarRoom >= BarMin)
        Line += Bar(PartDone(Progress), std::min(BarRoom, BarMax), Blocks) + "  ";
    return FitToWidth(Line + Figures, Width);
}

std::string ProgressMessage(const TConsoleProgress& Progress)
{
    std::string Line = VisibleText(Progress.Title) + ": ";
    if (IsSizeKnown(Progress))
        Line += std::to_string(PercentDone(Progress)) + " %, ";
    Line += Counted(Progress) + " records";
    if (Progress.Errors > 0)
        Line += ", " + Errors(Progress);
    return Line;
}

} // namespace kv

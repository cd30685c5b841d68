#include "KvCompareReport.h"

#include <algorithm>
#include <cstdio>

namespace kv::bench {

namespace {

constexpr double Megabyte = 1e6;

const char* Verdict(bool Met)
{
    return Met ? "ok" : "missed";
}

void PrintFigures(const std::string& Name, const TOutcome& Outcome)
{
    const auto& Best = Outcome.Best;
    std::printf("  %-34s %8.3f %8.3f %8.3f %8.0f", Name.c_str(), Best.WallSeconds, Outcome.MedianWallSeconds,
                Best.CpuSeconds, static_cast<double>(Best.PeakBytes) / Megabyte);
}

void PrintRatio(const TOutcome& Judged, const TOutcome& Other, double Target)
{
    const auto Ratio = Judged.Best.WallSeconds / Other.Best.WallSeconds;
    const auto CpuRatio = Judged.Best.CpuSeconds / Other.Best.CpuSeconds;
    std::printf(" %8.2f %8.2f  <= %.2f  %s", Ratio, CpuRatio, Target, Verdict(Ratio <= Target));
}

} // namespace

void PrintContest(const TContest& Contest, const std::vector<TOutcome>& Outcomes)
{
    std::printf("\n%s\n  %-34s %8s %8s %8s %8s %8s %8s  target\n", Contest.Work.c_str(), "", "wall s",
                "median", "cpu s", "peak MB", "ratio", "of cpu");
    const auto& Judged = Outcomes.front();
    for (std::size_t Index = 0; Index < Outcomes.size(); Index++) {
        if (!Outcomes[Index].Failure.empty())
            continue;
        PrintFigures(Contest.Contestants[Index].Name, Outcomes[Index]);
        if (Index > 0 && Judged.Failure.empty())
            PrintRatio(Judged, Outcomes[Index], Contest.Contestants[Index].Target);
        std::printf("\n");
    }
}

bool PrintTrouble(const TContest& Contest, const std::vector<TOutcome>& Outcomes)
{
    const auto Model = std::find_if(Outcomes.rbegin(), Outcomes.rend(),
                                    [](const TOutcome& Outcome) { return Outcome.Failure.empty(); });
    bool Good = true;
    for (std::size_t Index = 0; Index < Outcomes.size(); Index++) {
        const auto& Outcome = Outcomes[Index];
        const auto* Name = Contest.Contestants[Index].Name.c_str();
        if (!Outcome.Failure.empty())
            std::printf("  %s failed at %s: %s\n", Name, Contest.Work.c_str(), Outcome.Failure.c_str());
        else if (Outcome.Digest != Model->Digest)
            std::printf("  %s left another table:\n    %s\n    instead of\n    %s\n", Name,
                        Outcome.Digest.c_str(), Model->Digest.c_str());
        else
            continue;
        Good = false;
    }
    return Good;
}

void PrintMemory(const TOutcome& Outcome, std::uint64_t MaxBytes)
{
    if (!Outcome.Failure.empty())
        return;
    std::printf("  %-34s %.0f MB of at most %.0f MB  %s\n", "memory",
                static_cast<double>(Outcome.Best.PeakBytes) / Megabyte,
                static_cast<double>(MaxBytes) / Megabyte, Verdict(Outcome.Best.PeakBytes <= MaxBytes));
}

void PrintGrowth(const std::vector<std::uint64_t>& Sizes, const std::vector<TGrowthLine>& Lines)
{
    std::printf("\nmicroseconds a row\n  %-26s %-10s", "", "");
    for (const auto Rows : Sizes)
        std::printf(" %10s", Grouped(Rows).c_str());
    for (const auto& Line : Lines) {
        std::printf("\n  %-26s %-10s", Line.Work.c_str(), Line.Program.c_str());
        for (std::size_t Index = 0; Index < Sizes.size(); Index++) {
            const auto& Outcome = Line.Outcomes[Index];
            if (Outcome.Failure.empty())
                std::printf(" %10.3f", Outcome.Best.WallSeconds * 1e6 / static_cast<double>(Sizes[Index]));
            else
                std::printf(" %10s", "failed");
        }
    }
    std::printf("\n");
}

std::string Grouped(std::uint64_t Number)
{
    auto Text = std::to_string(Number);
    for (auto At = Text.size(); At > 3; At -= 3)
        Text.insert(At - 3, ",");
    return Text;
}

} // namespace kv::bench

#include "KvMutants.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "KvDamage.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

unsigned NumberOf(const char* Variable, unsigned WhenUnset)
{
    const char* const Text = std::getenv(Variable);
    return Text ? static_cast<unsigned>(std::strtoul(Text, nullptr, 10)) : WhenUnset;
}

rusage UsageOf(TMutantReader Reader)
{
    rusage Usage{};
    ::getrusage(Reader == mrThisProcess ? RUSAGE_SELF : RUSAGE_CHILDREN, &Usage);
    return Usage;
}

double ProcessorSeconds(TMutantReader Reader)
{
    const auto Usage = UsageOf(Reader);
    const auto Seconds = [](const timeval& Time) {
        return static_cast<double>(Time.tv_sec) + static_cast<double>(Time.tv_usec) / 1e6;
    };
    return Seconds(Usage.ru_utime) + Seconds(Usage.ru_stime);
}

long PeakMegabytes(TMutantReader Reader) { return UsageOf(Reader).ru_maxrss / 1024; }

/// The files of a mutant, there as long as the object. Gone files are written faster than old ones over
/// again: for those some file systems wait for the disk.
class TMutant
{
public:
    TMutant(const TTempFolder& Folder, const TMutantOrigin& Origin, TDamage& Damage)
    {
        const auto Damaged = Damage.Number(Origin.Files.size());
        for (const auto& File : Origin.Files) {
            const bool IsDamaged = Names.size() == Damaged;
            Names.push_back(Folder.Write(File.Name,
                                         IsDamaged ? Damage.Of(File.Bytes, File.BlockSize) : File.Bytes));
        }
    }
    TMutant(const TMutant&) = delete;
    TMutant& operator=(const TMutant&) = delete;
    ~TMutant()
    {
        for (const auto& Name : Names)
            std::filesystem::remove(Name);
    }

    const std::string& Name() const { return Names.front(); }

private:
    std::vector<std::string> Names;
};

} // namespace

TMutantOutcomes ReadMutants(const std::vector<TMutantOrigin>& Origins, const TMutantLimits& Limits,
                            const std::function<void(const std::string& File, TMutantOutcomes&)>& Read)
{
    const auto Seed = NumberOf("KV_MUTANT_SEED", 1), Count = NumberOf("KV_MUTANTS", Limits.Count);
    const TTempFolder Folder;
    TDamage Damage(Seed);
    TMutantOutcomes Outcomes;
    double Slowest = 0;
    const auto MemoryBefore = PeakMegabytes(Limits.Reader);
    for (unsigned I = 0; I < Count; ++I) {
        const auto& Origin = Origins[Damage.Number(Origins.size())];
        SCOPED_TRACE("mutant " + std::to_string(I) + " of seed " + std::to_string(Seed) + ", from " +
                     Origin.Name);
        const TMutant Mutant(Folder, Origin, Damage);
        const auto Begin = ProcessorSeconds(Limits.Reader);
        Read(Mutant.Name(), Outcomes);
        const auto Took = ProcessorSeconds(Limits.Reader) - Begin;
        EXPECT_LT(Took, Limits.MaxSeconds);
        Slowest = std::max(Slowest, Took);
    }
    const auto Growth = PeakMegabytes(Limits.Reader) - MemoryBefore;
#ifndef __SANITIZE_ADDRESS__                        // which keeps freed memory for a while
    EXPECT_LE(Growth, Limits.MaxMegabytes);
#endif
    std::cout << Count << " mutants of seed " << Seed << ", from " << Origins.size()
              << " files; the slowest took "
              << Slowest << " s, memory grew by " << Growth << " MB\n";
    for (const auto& [Outcome, Times] : Outcomes)
        std::cout << "  " << Times << " x " << Outcome << '\n';
    return Outcomes;
}

std::string KnownOutcome(const std::string& Message, std::span<const std::string_view> Known)
{
    const auto Found =
        std::ranges::find_if(Known,
                             [&](std::string_view Words) { return Message.find(Words) != Message.npos; });
    if (Found != Known.end())
        return std::string(*Found);
    ADD_FAILURE() << "no message of ours: " << Message;
    return Message;
}

} // namespace kv

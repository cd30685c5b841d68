// Damaged copies of Paradox tables and of their files of blobs: each gives records or a clear error, in bounded
// time and memory.
//
//   KV_MUTANTS      how many, 4000 when not set
//   KV_MUTANT_SEED  what they are made from, 1 when not set
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "KvCompanionFile.h"
#include "KvCorpus.h"
#include "KvDamage.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvParadoxFile.h"
#include "KvTempFolder.h"
#include "KvText.h"

namespace kv {

namespace {

namespace fs = std::filesystem;
using TClock = std::chrono::steady_clock;

constexpr std::chrono::seconds MaxTime(1);          // for one mutant
constexpr long MaxGrowth = 64 * 1024;               // of the memory that all of them take, in KB
constexpr std::size_t TableBlockSize = 1024;        // or several times that
constexpr std::size_t BlobBlockSize = 4096;

unsigned NumberOf(const char* Variable, unsigned WhenUnset)
{
    const char* const Text = std::getenv(Variable);
    return Text ? static_cast<unsigned>(std::strtoul(Text, nullptr, 10)) : WhenUnset;
}

std::string BytesOf(const std::string& FileName)
{
    return std::string(ReadFileBytes(FileName).View());
}

/// A table with its blobs, which are empty when it has none.
struct TOriginal
{
    std::string Table;
    std::string Blobs;
};

std::vector<TOriginal> OriginalsOf(const fs::path& Corpus)
{
    std::vector<TOriginal> Originals;
    for (const auto& File : CorpusFiles(Corpus, "paradox")) {
        if (!SameText(File.extension().string(), ".db"))
            continue;
        const auto Blobs = CompanionFileName(File.string(), ".MB");
        Originals.push_back({BytesOf(File.string()), fs::exists(Blobs) ? BytesOf(Blobs) : std::string()});
    }
    return Originals;
}

/// What came of the mutants, and how often.
using TOutcomes = std::map<std::string, int>;

/// The reader's errors by their fixed words.
std::string KindOf(const std::string& Message)
{
    for (const char* const Known : {"is no Paradox table", "is an index", "is encrypted", "is damaged after record"})
        if (Message.find(Known) != Message.npos)
            return Known;
    return Message;
}

/// Reads everything; gives what ended it.
std::string ReadAll(const std::string& FileName, TOutcomes& Outcomes)
{
    try {
        TKvParadoxFile Table(FileName);
        for (Table.First(); !Table.Eof(); Table.Next())
            for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I)
                try {
                    const auto Loan = Table.Value(I);
                    const TVariant Copy(Loan);      // which reads all that was lent
                    ++Outcomes["values"];
                }
                catch (const EFormatError&) {
                    ++Outcomes["values that are an error of their record"];
                }
        return "read to its end";
    }
    catch (const EFormatError& Error) {
        return KindOf(Error.Message);
    }
}

long PeakMemory()
{
    rusage Usage;
    getrusage(RUSAGE_SELF, &Usage);
    return Usage.ru_maxrss;
}

} // namespace

TEST(KvParadoxMutants, GiveRecordsOrAClearError)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    const auto Originals = OriginalsOf(*Corpus);
    const auto Seed = NumberOf("KV_MUTANT_SEED", 1), Count = NumberOf("KV_MUTANTS", 4000);
    std::cout << "seed " << Seed << ", " << Count << " mutants of " << Originals.size() << " tables\n";

    const TTempFolder Folder;
    const auto MemoryBefore = PeakMemory();
    TDamage Damage(Seed);
    TOutcomes Outcomes;
    for (unsigned Mutant = 0; Mutant < Count; ++Mutant) {
        SCOPED_TRACE("mutant " + std::to_string(Mutant));
        auto [Table, Blobs] = Originals[Damage.Number(Originals.size())];
        if (!Blobs.empty() && Damage.Number(2) == 0)
            Blobs = Damage.Of(Blobs, BlobBlockSize);
        else
            Table = Damage.Of(Table, TableBlockSize);
        const auto BlobFile = Folder.Write("a.mb", Blobs), FileName = Folder.Write("a.db", Table);
        const auto Begin = TClock::now();
        const auto Outcome = ReadAll(FileName, Outcomes);
        EXPECT_LT(TClock::now() - Begin, MaxTime);
        ++Outcomes[Outcome];
        fs::remove(BlobFile);                       // writing over files makes some file systems wait for the disk
        fs::remove(FileName);
    }
    EXPECT_LT(PeakMemory() - MemoryBefore, MaxGrowth);
    for (const auto& [Outcome, Times] : Outcomes)
        std::cout << "  " << Times << " x " << Outcome << '\n';
    constexpr std::size_t KnownOutcomes = 7;        // two of values, five of files: no others come
    EXPECT_LE(Outcomes.size(), KnownOutcomes);
}

} // namespace kv

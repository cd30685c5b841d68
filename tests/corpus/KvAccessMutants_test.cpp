// Damaged copies of Access databases: each gives records or a clear error, in bounded time and memory, and
// never takes the program along that imports it.
//
//   KV_MUTANTS      how many, 100 when not set
//   KV_MUTANT_SEED  what they are made from, 1 when not set
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "KvAccessEngine.h"
#include "KvCorpus.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using TClock = std::chrono::steady_clock;

constexpr std::chrono::seconds Patience(1);           // what runs in circles would run for ever
constexpr std::chrono::seconds MaxTime(30);         // for all tables of one mutant
constexpr std::size_t MaxFileSize = 150'000;

int NumberOf(const char* Variable, int WhenUnset)
{
    const char* const Text = std::getenv(Variable);
    return Text ? std::atoi(Text) : WhenUnset;
}

std::vector<std::string> SmallFiles(const std::filesystem::path& Corpus)
{
    std::vector<std::string> Files;
    for (const auto& File : CorpusFiles(Corpus, "access"))
        if (std::filesystem::file_size(File) <= MaxFileSize)
            Files.push_back(File.string());
    return Files;
}

/// Damages the bytes of a file in one of four ways; the same numbers make the same damage.
class TDamage
{
public:
    explicit TDamage(unsigned Seed) : Random(Seed) {}

    std::size_t Number(std::size_t Below) { return std::uniform_int_distribution<std::size_t>(0, Below - 1)(Random); }

    std::string Of(std::string Bytes)
    {
        switch (Number(4)) {
        case 0:  Bytes.resize(Number(Bytes.size())); break;
        case 1:  FlipBits(Bytes); break;
        case 2:  OverwriteWords(Bytes); break;
        default: OverwriteStarts(Bytes); break;
        }
        return Bytes;
    }

private:
    void FlipBits(std::string& Bytes)
    {
        for (std::size_t Count = 1 + Number(64); Count > 0; --Count)
            Bytes[Number(Bytes.size())] ^= static_cast<char>(1 << Number(8));
    }
    void Overwrite(std::string& Bytes, std::size_t Position)
    {
        constexpr std::uint32_t Words[] = {0, 1, 0x7F, 0xFF, 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        const auto Word = Words[Number(std::size(Words))];
        for (std::size_t I = 0; I < 1u << Number(3) && Position + I < Bytes.size(); ++I)
            Bytes[Position + I] = static_cast<char>(Word >> 8 * I);
    }
    void OverwriteWords(std::string& Bytes)
    {
        for (std::size_t Count = 1 + Number(16); Count > 0; --Count)
            Overwrite(Bytes, Number(Bytes.size()));
    }
    /// Where pages keep their counts and pointers.
    void OverwriteStarts(std::string& Bytes)
    {
        constexpr std::size_t PageSize = 2048, HeaderSize = 64;
        for (std::size_t Count = 1 + Number(4); Count > 0; --Count)
            Overwrite(Bytes, Number(Bytes.size() / PageSize) * PageSize + Number(HeaderSize));
    }

    std::mt19937 Random;
};

/// What came of a mutant, in a word; the values that could not be read are part of its records.
using TOutcomes = std::map<std::string, int>;

std::string OutcomeOf(const std::string& Message)
{
    for (const char* const Known : {"killed by signal", "made no progress", "is damaged", "cannot be read", "can be found",
                                    "not an Access database", "unknown version", "more memory", "has no table"})
        if (Message.find(Known) != Message.npos)
            return Known;
    return Message;
}

void ReadTable(TAccessDatabase& Database, const std::string& Name)
{
    const auto Records = Database.OpenRecordset(Name, AccessTableRecordset, AccessNoOptions, AccessPessimistic);
    for (; !Records->Eof(); Records->MoveNext())
        for (std::size_t I = 0; I < Records->Fields().size(); ++I)
            try {
                Records->Value(static_cast<int>(I));
            }
            catch (const EDatabaseError&) {
            }
}

void ReadMutant(const std::string& File, TOutcomes& Outcomes)
{
    const auto Note = [&Outcomes, &File](const std::string& Message) {
        EXPECT_TRUE(Message.starts_with(File + ": ")) << Message;
        EXPECT_EQ(Message.find("has no meaning"), Message.npos) << Message;
        ++Outcomes[OutcomeOf(Message)];
    };
    try {
        const auto Database = MakeAccessEngine({KV_ACCESS_PROGRAM, Patience})->OpenDatabase(File);
        for (const auto& Table : Database->TableDefs())
            try {
                if (Table.IsSystem && Table.Name != "MSysObjects")
                    continue;
                ReadTable(*Database, Table.Name);
                ++Outcomes["read"];
            }
            catch (const EDatabaseError& Error) {
                Note(Error.Message);
            }
    }
    catch (const EDatabaseError& Error) {
        Note(Error.Message);
    }
}

TEST(KvAccessMutants, GiveRecordsOrAClearError)
{
    const auto Corpus = CorpusFolder("access");
    if (!Corpus)
        GTEST_SKIP() << "there is no corpus";
    const auto Files = SmallFiles(*Corpus);
    const int Count = NumberOf("KV_MUTANTS", 100), Seed = NumberOf("KV_MUTANT_SEED", 1);
    TDamage Damage(static_cast<unsigned>(Seed));
    const TTempFolder Folder;
    TOutcomes Outcomes;
    TClock::duration Longest{};
    for (int I = 0; I < Count; ++I) {
        const auto& File = Files[Damage.Number(Files.size())];
        SCOPED_TRACE("mutant " + std::to_string(I) + " of seed " + std::to_string(Seed) + ", from " + File);
        const auto Mutant = Folder.Write("mutant.mdb", Damage.Of(std::string(ReadFileBytes(File).View())));
        const auto Begun = TClock::now();
        ReadMutant(Mutant, Outcomes);
        const auto Took = TClock::now() - Begun;
        EXPECT_LT(Took, MaxTime);
        Longest = std::max(Longest, Took);
    }
    std::cout << Count << " mutants of seed " << Seed << ", the slowest "
              << std::chrono::duration_cast<std::chrono::milliseconds>(Longest).count() << " ms\n";
    for (const auto& [Outcome, Times] : Outcomes)
        std::cout << "  " << Times << " tables: " << Outcome << '\n';
    rusage Children{};
    ::getrusage(RUSAGE_CHILDREN, &Children);
    std::cout << "  at most " << Children.ru_maxrss / 1024 << " MB\n";
    EXPECT_LT(Children.ru_maxrss / 1024, 2100);
    EXPECT_GT(Outcomes["read"], 0);
}

} // namespace

} // namespace kv

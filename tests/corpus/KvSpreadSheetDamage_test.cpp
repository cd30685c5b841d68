// Damaged copies of workbooks and worksheets: each gives cells or a clear error, in bounded time and memory.
//
//   KV_DAMAGE       "all" for every copy, in place of a sample
//   KV_DAMAGE_SEED  what the sample and the flipped bits come from, 1 when not set
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "KvCorpus.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvStorage.h"
#include "Kvwks.h"
#include "Kvwq.h"
#include "Kvxls.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr double MaxSeconds = 1;                    // of processor time, for one load
constexpr std::uint64_t MaxMemory = 256 << 20;      // beyond what the program has
constexpr std::size_t EveryByteUpTo = 64 << 10, PlacesBeyond = 4096;
constexpr int Flips = 10'000, SampledCuts = 1'000, SampledFlips = 500;

constexpr TSpreadSheetExtensions Readings[] = {
    {},
    {seFormulaResults, seCustomDates, seDateMode, seCellExtent, seWideRows, seFileCodePage, seSignedIntegers,
     seCellRecords}};

template <class TReader> std::unique_ptr<TSpreadSheetFile> Make() { return std::make_unique<TReader>(); }

struct TFormat
{
    std::string_view Folder;
    std::unique_ptr<TSpreadSheetFile> (*MakeReader)();
};
constexpr TFormat Formats[] = {{"xls-biff2-4", Make<TMSExcel>}, {"xls-biff5", Make<TMSExcel>},
                               {"xls-biff8", Make<TMSExcel>},   {"lotus", Make<TLotus123>},
                               {"quattro", Make<TQuattroPro>}};

bool DamagesAll()
{
    const char* const Wanted = std::getenv("KV_DAMAGE");
    return Wanted && std::string_view(Wanted) == "all";
}

unsigned Seed()
{
    const char* const Wanted = std::getenv("KV_DAMAGE_SEED");
    return Wanted ? static_cast<unsigned>(std::atoi(Wanted)) : 1;
}

double ProcessorSeconds()
{
    timespec Now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Now);
    return static_cast<double>(Now.tv_sec) + static_cast<double>(Now.tv_nsec) / 1e9;
}

/// Lets the program have so much more memory than it has now, as long as the object lives. AddressSanitizer
/// needs far more than it is asked for.
class TMemoryLimit
{
public:
    explicit TMemoryLimit([[maybe_unused]] std::uint64_t More)
    {
        ::getrlimit(RLIMIT_AS, &Before);
#ifndef __SANITIZE_ADDRESS__
        std::uint64_t Pages = 0;
        std::ifstream("/proc/self/statm") >> Pages;
        const auto Now = Pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
        const rlimit Limit{Now + More, Before.rlim_max};
        ::setrlimit(RLIMIT_AS, &Limit);
#endif
    }
    TMemoryLimit(const TMemoryLimit&) = delete;
    TMemoryLimit& operator=(const TMemoryLimit&) = delete;
    ~TMemoryLimit() { ::setrlimit(RLIMIT_AS, &Before); }

private:
    rlimit Before{};
};

/// A copy of a file in memory, to be damaged.
class TPatient
{
public:
    explicit TPatient(std::string_view Bytes)
        : Healthy(Bytes), Descriptor(::memfd_create("damaged", MFD_CLOEXEC))
    {
        Write(0, Bytes);
    }
    TPatient(const TPatient&) = delete;
    TPatient& operator=(const TPatient&) = delete;
    ~TPatient() { ::close(Descriptor); }

    std::string Name() const { return "/proc/self/fd/" + std::to_string(Descriptor); }

    void CutAt(std::size_t Size) { EXPECT_EQ(::ftruncate(Descriptor, static_cast<off_t>(Size)), 0); }
    void Flip(std::size_t Position, int Bit)
    {
        const char Damaged = static_cast<char>(Healthy[Position] ^ 1 << Bit);
        Write(Position, {&Damaged, 1});
    }

private:
    void Write(std::size_t Position, std::string_view Bytes)
    {
        EXPECT_EQ(::pwrite(Descriptor, Bytes.data(), Bytes.size(), static_cast<off_t>(Position)),
                  std::ssize(Bytes));
    }

    const std::string_view Healthy;
    const int Descriptor;
};

/// How the loads went.
class TRecovery
{
public:
    /// Loads the file in both readings. The cells that each found; none after an error.
    std::vector<std::optional<std::size_t>> Load(const TFormat& Format, const std::string& Name)
    {
        std::vector<std::optional<std::size_t>> Cells;
        for (const auto Reading : Readings)
            Cells.push_back(Load(Format, Name, Reading));
        return Cells;
    }
    void Print() const
    {
        rusage Usage{};
        ::getrusage(RUSAGE_SELF, &Usage);
        std::cout << Loads << " loads of seed " << Seed() << ", " << Errors << " errors, the slowest "
                  << static_cast<int>(Slowest * 1000) << " ms, resident at most " << Usage.ru_maxrss / 1024
                  << " MB\n";
    }

    int Loads = 0, Errors = 0;

private:
    std::optional<std::size_t> Load(const TFormat& Format, const std::string& Name,
                                    TSpreadSheetExtensions Reading)
    {
        const auto Reader = Format.MakeReader();
        Reader->Extensions = Reading;
        const auto Begun = ProcessorSeconds();
        bool Failed = false;
        try {
            Reader->LoadFromFile(Name);
        }
        catch (const Exception& Error) {
            Failed = true;
            EXPECT_NE(Error.Message, "");
        }
        const auto Took = ProcessorSeconds() - Begun;
        EXPECT_LT(Took, MaxSeconds);
        Slowest = std::max(Slowest, Took);
        ++Loads;
        Errors += Failed;
        if (Failed)
            return {};
        std::size_t Cells = 0;
        for (std::size_t Sheet = 0; Sheet < Reader->Sheets.Count(); ++Sheet)
            for (std::size_t Row = 0; Row < Reader->Sheets[Sheet].Cells.Count(); ++Row)
                Cells += Reader->Sheets[Sheet].Cells[Row].CellCount();
        return Cells;
    }

    double Slowest = 0;
};

struct TFile
{
    const TFormat* Format;
    fs::path Path;
    std::string Bytes;
};

/// The files of all formats; none without a corpus.
std::vector<TFile> Files()
{
    std::vector<TFile> Result;
    for (const auto& Format : Formats)
        if (const auto Corpus = CorpusFolder(Format.Folder))
            for (const auto& Path : CorpusFiles(*Corpus, Format.Folder))
                Result.push_back({&Format, Path, std::string(ReadFileBytes(Path.string()).View())});
    return Result;
}

/// Where to cut a file, the last place first, so that one copy can be cut again and again.
std::vector<std::size_t> PlacesOf(std::size_t Size, std::mt19937& Random)
{
    std::vector<std::size_t> Places;
    for (std::size_t Place = 0; Place < std::min(Size, EveryByteUpTo); ++Place)
        Places.push_back(Place);
    for (std::size_t I = 0; Size > EveryByteUpTo && I < PlacesBeyond; ++I)
        Places.push_back(std::uniform_int_distribution(EveryByteUpTo, Size - 1)(Random));
    std::ranges::sort(Places, std::greater());
    return Places;
}

std::size_t CountPlaces(const std::vector<TFile>& Files)
{
    std::size_t Count = 0;
    for (const auto& File : Files)
        Count += std::min(File.Bytes.size(), EveryByteUpTo) +
                 (File.Bytes.size() > EveryByteUpTo ? PlacesBeyond : 0);
    return Count;
}

class KvSpreadSheetDamage : public testing::Test
{
protected:
    void SetUp() override
    {
        if (Corpus.empty())
            GTEST_SKIP() << "no files: KV_CORPUS names no folder with workbooks or worksheets";
    }

    const std::vector<TFile> Corpus = Files();
    std::mt19937 Random{Seed()};
    TRecovery Recovery;
};

} // namespace

// A compound document says how long its streams are: what is missing is missed.
TEST_F(KvSpreadSheetDamage, ACutFileGivesAnErrorOrCellsAndACutDocumentNoFewer)
{
    const TMemoryLimit Limit(MaxMemory);
    const auto OneIn = DamagesAll() ? 1 : CountPlaces(Corpus) / SampledCuts;
    for (const auto& File : Corpus) {
        TPatient Patient(File.Bytes);
        const auto Whole = Recovery.Load(*File.Format, Patient.Name());
        const bool IsDocument = IsStorage(File.Bytes);
        for (const auto Place : PlacesOf(File.Bytes.size(), Random)) {
            if (Random() % OneIn != 0)
                continue;
            SCOPED_TRACE(File.Path.string() + " cut at byte " + std::to_string(Place));
            Patient.CutAt(Place);
            const auto Cut = Recovery.Load(*File.Format, Patient.Name());
            for (std::size_t Reading = 0; IsDocument && Reading < Cut.size(); ++Reading)
                EXPECT_TRUE(!Cut[Reading] || Cut[Reading] == Whole[Reading]) << "reading " << Reading;
        }
    }
    Recovery.Print();
    EXPECT_GT(Recovery.Errors, 0);
    EXPECT_LT(Recovery.Errors, Recovery.Loads);
}

TEST_F(KvSpreadSheetDamage, AFlippedBitGivesCellsOrAnError)
{
    const TMemoryLimit Limit(MaxMemory);
    for (int I = 0; I < (DamagesAll() ? Flips : SampledFlips); ++I) {
        const auto& File = Corpus[Random() % Corpus.size()];
        const auto Position = Random() % File.Bytes.size();
        const auto Bit = static_cast<int>(Random() % 8);
        SCOPED_TRACE(File.Path.string() + ", bit " + std::to_string(Bit) + " of byte " +
                     std::to_string(Position));
        TPatient Patient(File.Bytes);
        Patient.Flip(Position, Bit);
        Recovery.Load(*File.Format, Patient.Name());
    }
    Recovery.Print();
    EXPECT_GT(Recovery.Errors, 0);
    EXPECT_LT(Recovery.Errors, Recovery.Loads);
}

} // namespace kv

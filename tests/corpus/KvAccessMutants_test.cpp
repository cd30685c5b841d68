// Damaged copies of Access databases (KvMutants). None takes the program along that imports it.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "KvAccessEngine.h"
#include "KvCorpus.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvMutants.h"

namespace kv {

namespace {

constexpr std::chrono::seconds Patience(1);         // what runs in circles would run for ever
constexpr TMutantLimits Limits{.Count = 1000, .Reader = mrChildProcess, .MaxSeconds = 30,
                               .MaxMegabytes = 2100};
constexpr std::size_t PageSize = 2048;              // or twice that
constexpr std::size_t MaxFileSize = 150'000;

constexpr std::string_view Known[] = {
    "killed by signal",       "made no progress", "is damaged",        "cannot be read", "can be found",
    "not an Access database", "unknown version",  "Unknown code page", "more memory",    "has no table"};

std::vector<TMutantOrigin> SmallFiles(const std::filesystem::path& Corpus)
{
    std::vector<TMutantOrigin> Files;
    for (const auto& File : CorpusFiles(Corpus, "access"))
        if (std::filesystem::file_size(File) <= MaxFileSize)
            Files.push_back({File.filename().string(),
                             {{"mutant.mdb", std::string(ReadFileBytes(File.string()).View()), PageSize}}});
    return Files;
}

void ReadTable(TAccessDatabase& Database, const std::string& Name)
{
    const auto Records = Database.OpenRecordset(Name, AccessTableRecordset, AccessNoOptions,
                                                AccessPessimistic);
    for (; !Records->Eof(); Records->MoveNext())
        for (std::size_t I = 0; I < Records->Fields().size(); ++I)
            try {
                Records->Value(static_cast<int>(I));
            }
            catch (const EDatabaseError&) {         // a value that cannot be read is part of its record
            }
}

void ReadDatabase(const std::string& File, TMutantOutcomes& Outcomes)
{
    const auto Note = [&Outcomes, &File](const std::string& Message) {
        EXPECT_TRUE(Message.starts_with(File + ": ")) << Message;
        EXPECT_EQ(Message.find("has no meaning"), Message.npos) << Message;
        ++Outcomes[KnownOutcome(Message, Known)];
    };
    try {
        const auto Database = MakeAccessEngine({KV_ACCESS_PROGRAM, Patience})->OpenDatabase(File);
        for (const auto& Table : Database->TableDefs())
            try {
                if (Table.IsSystem && Table.Name != "MSysObjects")
                    continue;
                ReadTable(*Database, Table.Name);
                ++Outcomes["tables read to their end"];
            }
            catch (const EDatabaseError& Error) {
                Note(Error.Message);
            }
    }
    catch (const EDatabaseError& Error) {
        Note(Error.Message);
    }
}

} // namespace

TEST(KvAccessMutants, GiveRecordsOrAClearError)
{
    const auto Corpus = CorpusFolder("access");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with access and expected/access";
    auto Outcomes = ReadMutants(SmallFiles(*Corpus), Limits, ReadDatabase);
    EXPECT_GT(Outcomes["tables read to their end"], 0);
}

} // namespace kv

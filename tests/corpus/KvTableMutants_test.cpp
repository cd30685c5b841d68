// Damaged copies of Paradox and dBase tables and of what stands beside them (KvMutants).
#include <gtest/gtest.h>

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KvCompanionFile.h"
#include "KvCorpus.h"
#include "KvDbaseFile.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvMutants.h"
#include "KvParadoxFile.h"
#include "KvText.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr TMutantLimits Limits{.Count = 5000, .Reader = mrThisProcess, .MaxSeconds = 1, .MaxMegabytes = 64};

/// A kind of file, with the size of its blocks.
struct TKind
{
    std::string_view Extension;
    std::size_t BlockSize;
};

TMutantFile FileOf(const std::string& Name, const TKind& Kind)
{
    return {"a" + std::string(Kind.Extension), std::string(ReadFileBytes(Name).View()), Kind.BlockSize};
}

/// The tables of a folder of the corpus, each with those of its companions that are there.
std::vector<TMutantOrigin> OriginsOf(const fs::path& Corpus, std::string_view Folder, const TKind& Table,
                                     const std::vector<TKind>& Companions)
{
    std::vector<TMutantOrigin> Origins;
    for (const auto& File : CorpusFiles(Corpus, Folder)) {
        if (!SameText(File.extension().string(), Table.Extension))
            continue;
        Origins.push_back({File.filename().string(), {FileOf(File.string(), Table)}});
        for (const auto& Companion : Companions)
            if (const auto Name = CompanionFileName(File.string(), Companion.Extension); fs::exists(Name))
                Origins.back().Files.push_back(FileOf(Name, Companion));
    }
    return Origins;
}

void ReadRecords(TKvTableFile& Table, TMutantOutcomes& Outcomes)
{
    auto& Values = Outcomes["values"];
    auto& Errors = Outcomes["values that are an error of their record"];
    for (Table.First(); !Table.Eof(); Table.Next())
        for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I)
            try {
                const auto Loan = Table.Value(I);
                const TVariant Copy(Loan);          // which reads all that was lent
                ++Values;
            }
            catch (const EFormatError&) {
                ++Errors;
            }
}

/// Reads everything; `Known` are the words of the errors that may end it.
template <class TFile>
void ReadAll(const std::string& FileName, std::span<const std::string_view> Known, TMutantOutcomes& Outcomes)
{
    try {
        TFile Table(FileName);
        ReadRecords(Table, Outcomes);
        ++Outcomes["read to its end"];
    }
    catch (const Exception& Error) {
        EXPECT_NE(Error.Message.find(FileName), std::string::npos) << Error.Message;
        ++Outcomes[KnownOutcome(Error.Message, Known)];
    }
}

} // namespace

TEST(KvParadoxMutants, GiveRecordsOrAClearError)
{
    const auto Corpus = CorpusFolder("paradox");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with paradox and expected/paradox";
    constexpr std::string_view Known[] = {"is no Paradox table", "is an index", "is encrypted",
                                          "is damaged after record", "name of field"};
    ReadMutants(OriginsOf(*Corpus, "paradox", {".db", 1024}, {{".mb", 4096}}), Limits,
                [&](const std::string& File, TMutantOutcomes& Outcomes) {
                    ReadAll<TKvParadoxFile>(File, Known, Outcomes);
                });
}

TEST(KvDbaseMutants, GiveRecordsOrAClearError)
{
    const auto Corpus = CorpusFolder("dbase");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with dbase and expected/dbase";
    constexpr std::string_view Known[] = {"is no dBase table", "is encrypted", "ends after record",
                                          "name of field"};
    ReadMutants(OriginsOf(*Corpus, "dbase", {".dbf", 1024}, {{".dbt", 512}, {".fpt", 512}}), Limits,
                [&](const std::string& File, TMutantOutcomes& Outcomes) {
                    ReadAll<TKvDbaseFile>(File, Known, Outcomes);
                });
}

} // namespace kv

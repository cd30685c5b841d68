// Compound documents of other programs: every stream can be read, or the file is damaged in a known way.
#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <string>
#include <string_view>

#include "KvCorpus.h"
#include "KvException.h"
#include "KvStorage.h"
#include "KvText.h"

namespace kv {

namespace {

/// What the file and its streams lack, one message a line.
std::string FaultsOf(const std::string& Path)
{
    std::string Faults;
    const TKvStorage Storage(Path);
    for (const auto& Element : Storage.Elements()) {
        if (Element.Kind != skStream)
            continue;
        try {
            Storage.OpenStream(Element.Name).RequireAll();
        }
        catch (const EFormatError& Error) {
            Faults += Error.Message.substr(Error.Message.find(" past byte ")) + '\n';
        }
    }
    return Faults;
}

bool HasWorkbook(const std::string& Path)
{
    const TKvStorage Storage(Path);
    for (const std::string_view Name : {"Book", "Workbook"})
        for (const auto& Element : Storage.Elements())
            if (SameText(Element.Name, Name))
                return true;
    return false;
}

/// Damaged on purpose, to try readers out.
const std::map<std::string, std::string> Damaged = {
    {"edr__Test_git_issue_382_oom.xls",
     " past byte 512 of 15502: its chain of sectors returns to sector 0\n"
     " past byte 1024 of 4096: its chain of sectors returns to sector 0\n"
     " past byte 1024 of 4096: its chain of sectors returns to sector 0\n"},
    {"poi__61300.xls", " past byte 1024 of 4076863688: its chain of sectors ends\n"},
    {"poi__clusterfuzz-testcase-minimized-POIHSSFFuzzer-4819588401201152.xls",
     " past byte 1646 of 2976521: the file ends in sector 5\n"}};

} // namespace

TEST(KvStorage, ReadsEveryFileThatIsNotDamagedOnPurpose)
{
    int Files = 0;
    for (const std::string_view Format : {"xls-biff5", "xls-biff8"}) {
        const auto Corpus = CorpusFolder(Format);
        if (!Corpus)
            GTEST_SKIP() << "no files: KV_CORPUS names no folder with " << Format << " and expected/"
                         << Format;
        for (const auto& File : CorpusFiles(*Corpus, Format)) {
            SCOPED_TRACE(File.filename().string());
            const auto Known = Damaged.find(File.filename().string());
            EXPECT_EQ(FaultsOf(File.string()), Known == Damaged.end() ? "" : Known->second);
            EXPECT_TRUE(HasWorkbook(File.string()));
            ++Files;
        }
    }
    std::cout << Files << " files read\n";
}

TEST(KvStorage, FilesOfOlderVersionsAreNoCompoundDocuments)
{
    const auto Corpus = CorpusFolder("xls-biff2-4");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with xls-biff2-4 and expected/xls-biff2-4";
    for (const auto& File : CorpusFiles(*Corpus, "xls-biff2-4"))
        EXPECT_FALSE(IsStorageFile(File.string())) << File;
}

} // namespace kv

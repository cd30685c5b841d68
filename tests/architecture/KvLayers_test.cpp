#include "KvLayers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

namespace {

/// A tree with one header in each folder, named after it.
TKvLayers SmallTree()
{
    return TKvLayers({"platform/runtime/Runtime.h", "platform/dataset/DataSet.h", "platform/ui/Ui.h",
                      "platform/storage/Storage.h", "platform/sqlite/Sqlite.h", "platform/qt/QtUi.h",
                      "engine/Engine.h", "sources/text/Text.h", "sources/spreadsheet/Spreadsheet.h",
                      "sources/factory/Factory.h", "job/Job.h", "wizard/Wizard.h", "design/Design.h",
                      "apps/kvimport/Program.h", "apps/kvwizard/Window.h"});
}

struct TIncludeRow
{
    std::string_view File;
    std::string_view Header;
};

std::ostream& operator<<(std::ostream& Out, const TIncludeRow& Row)
{
    return Out << Row.File << " includes " << Row.Header;
}

std::string JudgeRow(const TIncludeRow& Row)
{
    return SmallTree().Judge({std::string(Row.File), 1, std::string(Row.Header)});
}

class KvLayersAllow : public testing::TestWithParam<TIncludeRow> {};
class KvLayersRefuseOwn : public testing::TestWithParam<TIncludeRow> {};
class KvLayersRefuseForeign : public testing::TestWithParam<TIncludeRow> {};
class KvLayersRefuseUnknown : public testing::TestWithParam<TIncludeRow> {};

TEST_P(KvLayersAllow, TheLine)
{
    EXPECT_EQ(JudgeRow(GetParam()), "");
}

TEST_P(KvLayersRefuseOwn, TheLine)
{
    EXPECT_THAT(JudgeRow(GetParam()), testing::HasSubstr(", which "));
    EXPECT_THAT(JudgeRow(GetParam()), testing::EndsWith(" may not include"));
}

TEST_P(KvLayersRefuseForeign, TheLine)
{
    EXPECT_THAT(JudgeRow(GetParam()), testing::EndsWith(" must not leave its adapter"));
}

TEST_P(KvLayersRefuseUnknown, TheLine)
{
    EXPECT_THAT(JudgeRow(GetParam()), testing::ContainsRegex("no rule says|no place among the layers"));
}

INSTANTIATE_TEST_SUITE_P(WhatLiesBelow, KvLayersAllow, testing::Values(
    TIncludeRow{"platform/runtime/A.cpp", "Runtime.h"},
    TIncludeRow{"platform/dataset/A.cpp", "Runtime.h"},
    TIncludeRow{"platform/sqlite/A.cpp", "DataSet.h"},
    TIncludeRow{"engine/A.cpp", "Ui.h"},
    TIncludeRow{"sources/text/A.cpp", "Engine.h"},
    TIncludeRow{"sources/text/A.cpp", "DataSet.h"},
    TIncludeRow{"sources/spreadsheet/A.cpp", "Storage.h"},
    TIncludeRow{"sources/factory/A.cpp", "Spreadsheet.h"},
    TIncludeRow{"job/A.cpp", "Text.h"},
    TIncludeRow{"job/A.h", "DataSet.h"},
    TIncludeRow{"wizard/A.cpp", "Job.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "Job.h"},
    TIncludeRow{"wizard/A.cpp", "Text.h"},
    TIncludeRow{"wizard/A.cpp", "Factory.h"},
    TIncludeRow{"design/A.cpp", "Wizard.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "Sqlite.h"},
    TIncludeRow{"apps/kvwizard/A.cpp", "Wizard.h"}));

INSTANTIATE_TEST_SUITE_P(UpwardArrows, KvLayersRefuseOwn, testing::Values(
    TIncludeRow{"platform/runtime/A.h", "DataSet.h"},
    TIncludeRow{"platform/runtime/A.h", "Engine.h"},
    TIncludeRow{"platform/dataset/A.h", "Engine.h"},
    TIncludeRow{"platform/sqlite/A.h", "Engine.h"},
    TIncludeRow{"engine/A.cpp", "Text.h"},
    TIncludeRow{"engine/A.cpp", "Program.h"},
    TIncludeRow{"sources/text/A.cpp", "Wizard.h"},
    TIncludeRow{"sources/text/A.cpp", "Job.h"},
    TIncludeRow{"job/A.cpp", "Sqlite.h"},
    TIncludeRow{"job/A.cpp", "Wizard.h"},
    TIncludeRow{"job/A.cpp", "Program.h"},
    TIncludeRow{"wizard/A.cpp", "Design.h"},
    TIncludeRow{"design/A.cpp", "Window.h"}));

INSTANTIATE_TEST_SUITE_P(Neighbours, KvLayersRefuseOwn, testing::Values(
    TIncludeRow{"platform/dataset/A.h", "Ui.h"},
    TIncludeRow{"platform/ui/A.h", "DataSet.h"},
    TIncludeRow{"platform/sqlite/A.h", "Storage.h"},
    TIncludeRow{"platform/console/A.h", "Sqlite.h"},
    TIncludeRow{"sources/text/A.cpp", "Spreadsheet.h"},
    TIncludeRow{"sources/spreadsheet/A.cpp", "Text.h"},
    TIncludeRow{"sources/text/A.cpp", "Factory.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "Window.h"}));

INSTANTIATE_TEST_SUITE_P(Adapters, KvLayersRefuseOwn, testing::Values(
    TIncludeRow{"engine/A.cpp", "Sqlite.h"},
    TIncludeRow{"engine/A.cpp", "Storage.h"},
    TIncludeRow{"sources/text/A.cpp", "Storage.h"},
    TIncludeRow{"sources/database/A.cpp", "Sqlite.h"},
    TIncludeRow{"sources/spreadsheet/A.cpp", "Sqlite.h"}));

INSTANTIATE_TEST_SUITE_P(ForeignHeadersAtHome, KvLayersAllow, testing::Values(
    TIncludeRow{"platform/sqlite/A.cpp", "sqlite3.h"},
    TIncludeRow{"platform/postgres/A.cpp", "libpq-fe.h"},
    TIncludeRow{"platform/access/A.cpp", "glib.h"},
    TIncludeRow{"platform/access/A.cpp", "mdbtools.h"},
    TIncludeRow{"platform/runtime/KvIconv.h", "iconv.h"},
    TIncludeRow{"platform/runtime/A.cpp", "sys/mman.h"},
    TIncludeRow{"platform/console/A.cpp", "unistd.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "CLI/CLI.hpp"},
    TIncludeRow{"apps/kvimport/A.cpp", "nlohmann/json.hpp"},
    TIncludeRow{"wizard/A.cpp", "QDialog"},
    TIncludeRow{"design/A.cpp", "QtDesigner/QDesignerCustomWidgetInterface"},
    TIncludeRow{"platform/qt/A.cpp", "QtWidgets/QWidget"},
    TIncludeRow{"sources/text/KvtextForm.cpp", "QWidget"},
    TIncludeRow{"apps/kvwizard/A.cpp", "QApplication"}));

INSTANTIATE_TEST_SUITE_P(ForeignHeadersOutside, KvLayersRefuseForeign, testing::Values(
    TIncludeRow{"platform/dataset/A.cpp", "sqlite3.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "sqlite3.h"},
    TIncludeRow{"platform/sqlite/A.cpp", "libpq-fe.h"},
    TIncludeRow{"engine/A.cpp", "postgresql/libpq-fe.h"},
    TIncludeRow{"platform/tables/A.cpp", "mdbtools.h"},
    TIncludeRow{"platform/runtime/A.cpp", "glib/gstring.h"},
    TIncludeRow{"platform/runtime/KvText.cpp", "iconv.h"},
    TIncludeRow{"platform/runtime/KvCodePage.cpp", "iconv.h"},
    TIncludeRow{"platform/console/A.cpp", "CLI/CLI.hpp"},
    TIncludeRow{"engine/A.cpp", "nlohmann/json.hpp"},
    TIncludeRow{"engine/A.cpp", "QString"},
    TIncludeRow{"sources/text/A.cpp", "QtCore/QString"},
    TIncludeRow{"apps/kvimport/A.cpp", "qobject.h"}));

INSTANTIATE_TEST_SUITE_P(SystemHeadersOutsideThePlatform, KvLayersRefuseForeign, testing::Values(
    TIncludeRow{"engine/A.cpp", "unistd.h"},
    TIncludeRow{"sources/text/A.cpp", "sys/mman.h"},
    TIncludeRow{"apps/kvimport/A.cpp", "fcntl.h"}));

INSTANTIATE_TEST_SUITE_P(StandardHeaders, KvLayersAllow, testing::Values(
    TIncludeRow{"engine/A.cpp", "string_view"},
    TIncludeRow{"platform/runtime/A.cpp", "cstdint"},
    TIncludeRow{"sources/text/A.cpp", "locale.h"}));

INSTANTIATE_TEST_SUITE_P(HeadersThatNoRuleKnows, KvLayersRefuseUnknown, testing::Values(
    TIncludeRow{"engine/A.cpp", "boost/any.hpp"},
    TIncludeRow{"engine/A.cpp", "bits/stdc++.h"},
    TIncludeRow{"sources/text/A.cpp", "Missing.h"}));

INSTANTIATE_TEST_SUITE_P(FoldersThatNoRuleKnows, KvLayersRefuseUnknown, testing::Values(
    TIncludeRow{"helpers/A.cpp", "string"},
    TIncludeRow{"sources/A.cpp", "string"},
    TIncludeRow{"engine/details/A.cpp", "string"}));

TEST(KvLayers, SayWhichLineBreaksThemAndWhy)
{
    EXPECT_EQ(SmallTree().Judge({"engine/Kvibase.cpp", 12, "Sqlite.h"}),
              "engine/Kvibase.cpp:12: Sqlite.h belongs to platform/sqlite, which engine may not include");
    EXPECT_EQ(SmallTree().Judge({"engine/Kvibase.cpp", 3, "sqlite3.h"}),
              "engine/Kvibase.cpp:3: sqlite3.h is a header of SQLite and must not leave its adapter");
}

TEST(KvLayers, SeeThroughThePathOfAnOwnHeader)
{
    EXPECT_NE(JudgeRow({"engine/A.cpp", "../platform/sqlite/Sqlite.h"}), "");
}

TEST(KvLayers, FindIncludeLinesInEverySpelling)
{
    const auto Found = FindIncludeLines("engine/A.cpp", "#include \"One.h\"\n"
                                                        "// #include \"NotThis.h\"\n"
                                                        "  #  include<two>  // why\r\n"
                                                        "#if 0\n#include <three.h>\n#endif");
    std::vector<std::string> Lines;
    for (const auto& Include : Found)
        Lines.push_back(std::to_string(Include.Line) + ' ' + Include.Header);
    EXPECT_EQ(Lines, (std::vector<std::string>{"1 One.h", "3 two", "5 three.h"}));
}

TEST(SourceTree, IncludesPointDownAndForeignHeadersStayInTheirAdapters)
{
    const std::filesystem::path Root = KV_SOURCE_DIR;
    const auto Sources = FindSources(Root);
    ASSERT_FALSE(Sources.empty()) << "no sources below " << Root;
    const TKvLayers Layers(Sources);
    for (const auto& Source : Sources) {
        for (const auto& Include : FindIncludeLines(Source, ReadText(Root / Source))) {
            const auto Complaint = Layers.Judge(Include);
            EXPECT_TRUE(Complaint.empty()) << Complaint;
        }
    }
}

TEST(SourceTree, HeaderNamesAreUnique)
{
    std::map<std::string, std::string> Seen;
    for (const auto& Source : FindSources(KV_SOURCE_DIR)) {
        const std::filesystem::path Path = Source;
        if (Path.extension() != ".h")
            continue;
        const auto [Other, Added] = Seen.emplace(Path.filename().string(), Source);
        EXPECT_TRUE(Added) << Source << " has the name of " << Other->second;
    }
}

} // namespace

} // namespace kv

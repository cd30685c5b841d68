#include "KvHeaderReach.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

void AddText(TKvHeaderReach& Reach, std::string_view Path, std::string_view Text)
{
    Reach.Add(Path, FindIncludeLines(Path, Text));
}

TEST(KvHeaderReach, FollowsIncludesOverOtherHeaders)
{
    TKvHeaderReach Reach;
    AddText(Reach, "sources/a/A.h", "#include \"B.h\"\n#include \"C.h\"\n");
    AddText(Reach, "engine/B.h", "#include <string>\n#include \"D.h\"\n");
    AddText(Reach, "sources/a/C.h", "#include \"D.h\"\n#include \"A.h\"\n");
    AddText(Reach, "sources/a/D.h", "");
    EXPECT_THAT(Reach.PulledBy("sources/a/A.h"),
                ElementsAre(Pair("engine/B.h", "A.h > B.h"), Pair("sources/a/C.h", "A.h > C.h"),
                            Pair("sources/a/D.h", "A.h > B.h > D.h")));
    EXPECT_THAT(Reach.PulledBy("sources/a/D.h"), IsEmpty());
}

TEST(KvHeaderReach, KnowsHeadersOfTheTreeOnly)
{
    TKvHeaderReach Reach;
    AddText(Reach, "sources/a/A.h", "#include \"Foreign.h\"\n#include <vector>\n#include \"A.cpp\"\n");
    AddText(Reach, "sources/a/A.cpp", "#include \"B.h\"\n");
    AddText(Reach, "sources/a/B.h", "");
    EXPECT_THAT(Reach.PulledBy("sources/a/A.h"), IsEmpty());
}

/// What a program that uses a component may see of sources and adapters, besides the components: their base
/// classes and the rules that they can be told to keep to.
const std::set<std::string_view>& PublicHeaders()
{
    static const std::set<std::string_view> Names = {
        "platform/tables/KvTableType.h",
        "sources/markup/KvHTMLExtensions.h",
        "sources/markup/KvMarkupImport.h",
        "sources/markup/KvXMLExtensions.h",
        "sources/spreadsheet/KvSpreadSheetExtensions.h",
        "sources/text/KvTextExtensions.h",
    };
    return Names;
}

/// Kvi2txt.h is one; Kvi2txtLine.h is a part of it.
bool IsComponent(const std::string& Path)
{
    static const std::regex Pattern("sources/[a-z]+/Kvi2[a-z]+\\.h");
    return std::regex_match(Path, Pattern);
}

/// The engine and the ports are what everything stands on.
bool IsInside(const std::string& Path)
{
    for (const char* const Shared : {"engine/", "platform/runtime/", "platform/dataset/", "platform/ui/"})
        if (Path.starts_with(Shared))
            return false;
    return !IsComponent(Path) && !PublicHeaders().contains(Path);
}

TEST(SourceTree, HeadersOfComponentsPullInNoInsidesOfReaders)
{
    const std::filesystem::path Root = KV_SOURCE_DIR;
    const auto Sources = FindSources(Root);
    TKvHeaderReach Reach;
    for (const auto& Source : Sources)
        if (Source.ends_with(".h"))
            AddText(Reach, Source, ReadText(Root / Source));
    int Components = 0;
    for (const auto& Source : Sources) {
        if (!IsComponent(Source))
            continue;
        ++Components;
        for (const auto& [Path, Way] : Reach.PulledBy(Source))
            EXPECT_FALSE(IsInside(Path)) << Source << " pulls in the insides of a reader: " << Way;
    }
    EXPECT_GT(Components, 0) << "no components below " << Root;
}

} // namespace

} // namespace kv

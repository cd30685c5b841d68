#include "KviTableType.h"

namespace kv {

namespace {

constexpr auto NoKind = static_cast<TTableTypeImport>(teAccess + 1);
constexpr auto StillOpen = static_cast<TTableTypeImport>(-1);

TEST(KviTableType, EveryKindHasAnExtension)
{
    EXPECT_EQ(GetDefExt(teParadox), ".DB");
    EXPECT_EQ(GetDefExt(teDBase), ".DBF");
    EXPECT_EQ(GetDefExt(teText), ".TXT");
    EXPECT_EQ(GetDefExt(teHTML), ".HTM");
    EXPECT_EQ(GetDefExt(teXLS), ".XLS");
    EXPECT_EQ(GetDefExt(teWKS), ".WK1");
    EXPECT_EQ(GetDefExt(teQuattro), ".WQ1");
    EXPECT_EQ(GetDefExt(teXML), ".XML");
    EXPECT_EQ(GetDefExt(teAccess), ".MDB");
    EXPECT_EQ(GetDefExt(NoKind), "");
    EXPECT_EQ(GetDefExt(StillOpen), "");
}

TEST(KviTableType, NamesAreThoseOfTheValuesWithoutPrefix)
{
    static constexpr std::string_view Names[] = {"Paradox", "DBase",   "Text", "HTML",  "XLS",
                                                 "WKS",     "Quattro", "XML",  "Access"};
    for (int I = 0; I <= teAccess; ++I) {
        EXPECT_EQ(TableTypeName(static_cast<TTableTypeImport>(I)), Names[I]);
        EXPECT_EQ(TableTypeOfName(Names[I]), static_cast<TTableTypeImport>(I));
    }
    EXPECT_EQ(TableTypeName(NoKind), "");
    EXPECT_EQ(TableTypeName(StillOpen), "");
}

TEST(KviTableType, NamesAreFoundInAnyCase)
{
    EXPECT_EQ(TableTypeOfName("dbase"), teDBase);
    EXPECT_EQ(TableTypeOfName("xls"), teXLS);
    EXPECT_EQ(TableTypeOfName(""), std::nullopt);
    EXPECT_EQ(TableTypeOfName("teXLS"), std::nullopt);
    EXPECT_EQ(TableTypeOfName("Excel"), std::nullopt);
}

} // namespace

} // namespace kv

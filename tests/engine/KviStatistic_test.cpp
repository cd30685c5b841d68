#include "KviStatistic.h"

#include "KvException.h"
#include "KviDataFormats.h"

namespace kv {

namespace {

using testing::ElementsAre;

void Fill(TKvIStatistic& S)
{
    S.TotalCount = 1;
    S.TotalImported = 2;
    S.TotalAdded = 3;
    S.TotalDeleted = 4;
    S.TotalUpdated = 5;
    S.TotalErrors = 6;
    S.UpdateStep = 7;
    S.LastAction = iaDelete;
    S.Result = irExecuted;
}

std::vector<int> All(const TKvIStatistic& S)
{
    return {S.TotalCount,  S.TotalImported, S.TotalAdded, S.TotalDeleted, S.TotalUpdated,
            S.TotalErrors, S.UpdateStep,    S.LastAction, S.Result};
}

TEST(KviStatistic, StartsAtNoneWithARefreshEveryRecord)
{
    EXPECT_THAT(All(TKvIStatistic()), ElementsAre(0, 0, 0, 0, 0, 0, 1, iaUnknown, irUnknown));
}

TEST(KviStatistic, AssignCopiesCountersAndLastActionButNotResult)
{
    TKvIStatistic From, To;
    Fill(From);
    To.Result = irCanceled;
    To.Assign(From);
    EXPECT_THAT(All(To), ElementsAre(1, 2, 3, 4, 5, 6, 7, iaDelete, irCanceled));
}

TEST(KviStatistic, AssignRefusesOtherObjects)
{
    TKvIStatistic Statistic;
    try {
        Statistic.Assign(TKvIDataFormats());
        FAIL() << "assigned";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, "Cannot assign a TKvIDataFormats to a TKvIStatistic.");
    }
}

TEST(KviStatistic, ResetKeepsUpdateStepAndResult)
{
    TKvIStatistic Statistic;
    Fill(Statistic);
    Statistic.Reset();
    EXPECT_THAT(All(Statistic), ElementsAre(0, 0, 0, 0, 0, 0, 7, iaUnknown, irExecuted));
}

TEST(KviStatistic, StoresTotalCountUpdateStepAndResultOnly)
{
    std::vector<std::string> Names, Stored;
    for (const auto& Property : TKvIStatistic().PublishedProperties()) {
        Names.emplace_back(Property.Name);
        if (Property.Stored)
            Stored.emplace_back(Property.Name);
    }
    EXPECT_THAT(Names,
                ElementsAre("TotalCount", "TotalImported", "TotalAdded", "TotalDeleted", "TotalUpdated",
                            "TotalErrors", "UpdateStep", "LastAction", "Result"));
    EXPECT_THAT(Stored, ElementsAre("TotalCount", "UpdateStep", "Result"));
}

TEST(KviStatistic, EnumerationsHaveTheirNames)
{
    TKvIStatistic Statistic;
    SetPropValue(Statistic, "LastAction", "iaUpdate");
    SetPropValue(Statistic, "Result", "irFailed");
    EXPECT_EQ(Statistic.LastAction, iaUpdate);
    EXPECT_EQ(Statistic.Result, irFailed);
}

// Specifications and programs rely on the ordinals.
static_assert(teParadox == 0 && teDBase == 1 && teText == 2 && teHTML == 3 && teXLS == 4 && teWKS == 5 &&
              teQuattro == 6 && teXML == 7 && teAccess == 8);
static_assert(csiANSI_WINDOWS == 0 && csiASCII_MSDOS == 1);
static_assert(imAppend == 0 && imUpdate == 1 && imAppendUpdate == 2 && imDelete == 3 && imCopy == 4);
static_assert(iaUnknown == 0 && iaAdd == 1 && iaUpdate == 2 && iaDelete == 3);
static_assert(irUnknown == 0 && irExecuted == 1 && irCanceled == 2 && irFailed == 3);
static_assert(fdNone == 0 && fdCustom == 1 && fdTab == 2 && fdSemicolon == 3 && fdComma == 4 && fdSpace == 5);
static_assert(tqNone == 0 && tqCustom == 1 && tqQuot == 2 && tqApos == 3);
static_assert(rsCustom == 0 && rsCRLF == 1 && rsCR == 2 && rsLF == 3);
static_assert(soShowMessage == 0 && soExtendedStatistic == 1);
static_assert(doMDY == 0 && doDMY == 1 && doYMD == 2 && doYDM == 3 && doDYM == 4 && doMYD == 5);

} // namespace

} // namespace kv

// The importers of the three formats.
#include <gtest/gtest.h>

#include <memory>

#include "KvComponent.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"
#include "Kvwks.h"
#include "Kvwq.h"
#include "Kvxls.h"

namespace kv {

namespace {

/// What a source's class keeps to itself.
template <class TImport> struct TOpened : TImport
{
    using TImport::TableType;
    using TImport::WorkBookCreation;
};

template <class TImport, class TReader> void ExpectReader()
{
    TOpened<TImport> Import;
    EXPECT_NE(dynamic_cast<TReader*>(Import.WorkBookCreation().get()), nullptr);
}

} // namespace

TEST(Kvi2cellKinds, EachHasItsReader)
{
    ExpectReader<TKvImportFromXLS, TMSExcel>();
    ExpectReader<TKvImportFromWKS, TLotus123>();
    ExpectReader<TKvImportFromQuattro, TQuattroPro>();
}

TEST(Kvi2cellKinds, EachHasItsTableType)
{
    EXPECT_EQ(TOpened<TKvImportFromXLS>().TableType, teXLS);
    EXPECT_EQ(TOpened<TKvImportFromWKS>().TableType, teWKS);
    EXPECT_EQ(TOpened<TKvImportFromQuattro>().TableType, teQuattro);
}

TEST(Kvi2cellKinds, EachHasItsExtension)
{
    EXPECT_EQ(TKvImportFromXLS::Extension(), ".XLS");
    EXPECT_EQ(TKvImportFromWKS::Extension(), ".WK1");
    EXPECT_EQ(TKvImportFromQuattro::Extension(), ".WQ1");
    EXPECT_EQ(TKvImportFromXLS().SourceFileName, "KvImport.XLS");
    EXPECT_EQ(TKvImportFromWKS().SourceFileName, "KvImport.WK1");
    EXPECT_EQ(TKvImportFromQuattro().SourceFileName, "KvImport.WQ1");
}

TEST(Kvi2cellKinds, EachHasItsFileFiltersBeforeAllFiles)
{
    EXPECT_EQ(TKvImportFromXLS::FillFileFilters(),
              "Excel spreadsheet (*.xls)|*.XLS|Excel file (*.xls)|*.XLS|All files (*.*)|*.*");
    EXPECT_EQ(TKvImportFromWKS::FillFileFilters(),
              "Lotus 1-2-3 file (*.wk1)|*.WK1|Lotus 1-2-3 file (*.wk2)|*.WK2|Lotus Symphony "
              "file (*.wr1)|*.WR1|"
              "All files (*.*)|*.*");
    EXPECT_EQ(TKvImportFromQuattro::FillFileFilters(), "QuattroPro file (*.wq1)|*.WQ1|All files (*.*)|*.*");
}

TEST(Kvi2cellKinds, EachHasItsClassName)
{
    EXPECT_EQ(TKvImportFromXLS().ClassName(), "TKvImportFromXLS");
    EXPECT_EQ(TKvImportFromWKS().ClassName(), "TKvImportFromWKS");
    EXPECT_EQ(TKvImportFromQuattro().ClassName(), "TKvImportFromQuattro");
}

TEST(Kvi2cellKinds, EachLivesWithItsOwner)
{
    TComponent Owner;
    new TKvImportFromXLS(&Owner);
    new TKvImportFromWKS(&Owner);
    new TKvImportFromQuattro(&Owner);
    EXPECT_EQ(Owner.Components().size(), 3U);
}

} // namespace kv

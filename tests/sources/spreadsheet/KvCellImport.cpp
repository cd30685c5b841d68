#include "KvCellImport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace kv {

namespace {

class TScriptedReader final : public TSpreadSheetFile
{
public:
    TScriptedReader(const TBookScript& Given, int& LoadCount, int& ReaderCount)
        : Script(Given), Loads(LoadCount), Readers(ReaderCount)
    {
        ++Readers;
    }
    ~TScriptedReader() override { --Readers; }

    void LoadFromFile(const std::string& Path) override
    {
        TSpreadSheetFile::LoadFromFile(Path);
        ++Loads;
        Script(*this);
    }

private:
    const TBookScript& Script;
    int& Loads;
    int& Readers;
};

} // namespace

void AddSheet(TSpreadSheetFile& Reader, const std::string& Caption, const TSheetRows& Rows)
{
    const auto Index = static_cast<int>(Reader.Sheets.Count());
    bool Skip = false;
    Reader.OnSheet(Reader, Caption, Index, Skip);
    std::size_t Columns = 0;
    for (std::size_t Row = 0; Row < Rows.size(); ++Row) {
        Columns = std::max(Columns, Rows[Row].size());
        for (std::size_t Col = 0; Col < Rows[Row].size(); ++Col)
            Reader.OnCellValue(Reader, Index, static_cast<int>(Row), static_cast<int>(Col), Rows[Row][Col], taLeftJustify);
    }
    Reader.OnDimensions(Reader, Index, 0, static_cast<int>(Rows.size()), 0, static_cast<int>(Columns));
}

TCellImport::TCellImport(TBookScript Given) : TKvImportFromCell(nullptr), Script(std::move(Given))
{
    SourceFileName = Folder.Write("book", "");
    SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
    SetDataSet(&Destination);
    SetMappings({"A=A", "B=B", "C=C"});
    AnimatedStatus = false;
    Options = {};
}

TCellImport::TCellImport(const TSheetRows& Rows)
    : TCellImport([Rows](TSpreadSheetFile& Reader) { AddSheet(Reader, "Orders", Rows); })
{
}

std::unique_ptr<TSpreadSheetFile> TCellImport::WorkBookCreation()
{
    return std::make_unique<TScriptedReader>(Script, Loads, Readers);
}

void TCellImport::SetFields(std::vector<TFieldDef> Defs)
{
    Destination.Close();
    Destination.SetFieldDefs(std::move(Defs));
    Destination.Open();
}

std::vector<std::string> TCellImport::Run()
{
    Execute();
    EXPECT_EQ(Statistic.Result, irExecuted) << ErrorMessage();
    std::vector<std::string> Result;
    for (Destination.First(); !Destination.Eof(); Destination.Next()) {
        std::string Values;
        for (int I = 0; I < Destination.FieldCount(); ++I)
            Values += (I == 0 ? "" : "|") + Destination.Fields(I).AsString();
        Result.push_back(Values);
    }
    return Result;
}

std::string TCellImport::RunAndFail()
{
    Execute();
    EXPECT_EQ(Statistic.Result, irFailed);
    return ErrorMessage();
}

std::vector<std::string> TCellImport::DetectedMappings()
{
    SetMappings({});
    DetectAutoMapping();
    return {Mappings().begin(), Mappings().end()};
}

} // namespace kv

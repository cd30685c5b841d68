#include "KvCellImport.h"

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
            Reader.OnCellValue(Reader, Index, static_cast<int>(Row), static_cast<int>(Col), Rows[Row][Col],
                               taLeftJustify);
    }
    Reader.OnDimensions(Reader, Index, 0, static_cast<int>(Rows.size()), 0, static_cast<int>(Columns));
}

TCellImport::TCellImport(TBookScript Given) : TFileRun(""), Script(std::move(Given))
{
    MapTo({"A", "B", "C"});
}

TCellImport::TCellImport(const TSheetRows& Rows)
    : TCellImport([Rows](TSpreadSheetFile& Reader) { AddSheet(Reader, "Orders", Rows); })
{
}

std::unique_ptr<TSpreadSheetFile> TCellImport::WorkBookCreation()
{
    return std::make_unique<TScriptedReader>(Script, Loads, Readers);
}

} // namespace kv

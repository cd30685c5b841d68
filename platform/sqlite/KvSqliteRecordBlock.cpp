#include "KvSqliteRecordBlock.h"

#include <bit>
#include <string_view>

namespace kv {

void TSQLiteRecordBlock::Clear()
{
    Cells.clear();
    Texts.clear();
    FRows = EndedCells = EndedTexts = 0;
}

void TSQLiteRecordBlock::BeginRow()
{
    Cells.resize(EndedCells);
    Texts.resize(EndedTexts);
}

void TSQLiteRecordBlock::EndRow()
{
    ++FRows;
    EndedCells = Cells.size();
    EndedTexts = Texts.size();
}

void TSQLiteRecordBlock::Add(const TSQLiteValue& Value)
{
    switch (Value.Storage) {
    case ssNull:
    case ssInteger: Cells.push_back({Value.Integer, 0, Value.Storage}); break;
    case ssReal:    Cells.push_back({std::bit_cast<std::int64_t>(Value.Real), 0, ssReal}); break;
    case ssText:
    case ssBlob:
        Cells.push_back({static_cast<std::int64_t>(Texts.size()),
                         static_cast<std::uint32_t>(Value.Bytes.size()), Value.Storage});
        Texts.append(Value.Bytes);
        break;
    }
}

TSQLiteValue TSQLiteRecordBlock::Value(std::size_t Index) const
{
    const auto& Cell = Cells[Index];
    switch (Cell.Storage) {
    case ssNull:    break;
    case ssInteger: return TSQLiteValue::OfInteger(Cell.Content);
    case ssReal:    return TSQLiteValue::OfReal(std::bit_cast<double>(Cell.Content));
    case ssText:
    case ssBlob: {
        const std::string_view Text(Texts.data() + Cell.Content, Cell.Size);
        return Cell.Storage == ssText ? TSQLiteValue::OfText(Text) : TSQLiteValue::OfBlob(Text);
    }
    }
    return {};
}

} // namespace kv

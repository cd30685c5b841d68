#include "KvCells.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <system_error>

#include "KvException.h"
#include "KvFile.h"
#include "KvFileAlias.h"
#include "KvForeignFile.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr char MsgNotDefined[] = "File is not defined.";
constexpr char MsgNotExists[] = "File is not exists.";
constexpr char MsgCanceled[] = "Reading of the file was canceled by user.";

constexpr unsigned CellsBetweenPolls = 1 << 16;

/// False only for a name that stands for nothing: what cannot be looked at is for the reader to report.
bool Exists(const std::string& FileName)
{
    std::error_code Error;
    return std::filesystem::status(PathOfFile(FileName), Error).type() !=
           std::filesystem::file_type::not_found;
}

} // namespace

// TSpreadSheets

int TSpreadSheets::Add()
{
    auto Sheet = std::make_unique<TSpreadSheet>();
    Sheet->Caption = "Sheet" + std::to_string(Sheets.size() + 1);
    Sheets.push_back(std::move(Sheet));
    return static_cast<int>(Sheets.size()) - 1;
}

TSpreadSheet& TSpreadSheets::Spreadsheet(int Index)
{
    const auto Position = static_cast<std::size_t>(std::max(Index, 0));
    return *Sheets[Position < Sheets.size() ? Position : static_cast<std::size_t>(Add())];
}

void TSpreadSheets::Remove(int Index)
{
    const auto* const Sheet = &Spreadsheet(Index);
    std::erase_if(Sheets, [Sheet](const auto& Each) { return Each.get() == Sheet; });
}

// TCustomSpreadSheetFile

TPublishedProperties TCustomSpreadSheetFile::PublishedProperties() const
{
    auto Properties = TComponent::PublishedProperties();
    const auto Own = {Publish("FileName", &TCustomSpreadSheetFile::FileName),
                      PublishEvent("OnColumnWidth"),
                      PublishEvent("OnRowHeight"),
                      PublishEvent("OnDimensions"),
                      PublishEvent("OnCellValue"),
                      PublishEvent("OnSheet")};
    Properties.insert(Properties.end(), Own.begin(), Own.end());
    return Properties;
}

// TSpreadSheetFile

void TSpreadSheetFile::LoadFromFile(const std::string& Path)
{
    Sheets.Clear();
    Remarks.clear();
    if (IsBlank(Path))
        throw Exception(MsgNotDefined, {.Rule = erMissing});
    if (!Exists(Path))
        throw Exception(MsgNotExists, {.Rule = erMissing});
    FileName = Path;
    CellEvents = 0;
    OnSheet = std::bind_front(&TSpreadSheetFile::SheetEvent, this);
    OnDimensions = std::bind_front(&TSpreadSheetFile::DimsEvent, this);
    OnCellValue = std::bind_front(&TSpreadSheetFile::CellEvent, this);
}

void TSpreadSheetFile::SheetEvent(TCustomSpreadSheetFile& Sender, const std::string& Caption, int, bool&)
{
    auto& Sheet = Sheets[static_cast<std::size_t>(Sheets.Add())];
    Sheet.Caption = Caption;
    Sheet.Hidden = Sender.SheetHidden;
}

void TSpreadSheetFile::DimsEvent(TCustomSpreadSheetFile&, int SheetIndex, int, int LastRow, int,
                                 int LastColumn)
{
    auto& Cells = Sheets.Spreadsheet(SheetIndex).Cells;
    Cells.LastRow = static_cast<std::uint16_t>(LastRow);
    Cells.LastColumn = static_cast<std::uint16_t>(LastColumn);
}

void TSpreadSheetFile::CellEvent(TCustomSpreadSheetFile& Sender, int SheetIndex, int Row, int Column,
                                 const TVariant& Value, TAlignment Alignment)
{
    if (++CellEvents % CellsBetweenPolls == 0)
        RequireContinue();
    auto& Cells = Sheets.Spreadsheet(SheetIndex).Cells;
    if (!Value.HasValue())
        return;
    if (Value.IsString() && Value.Text().size() > TVariant::ShortTextMax && KeepsText(Value.Text()))
        Cells.SetSharedText(Column, Row, Value.Text(), Alignment);
    else
        Cells.SetValue(Column, Row, Value, Alignment);
    if (Sender.CellFault != cfNone && Extensions.Contains(seTellingErrors))
        Cells.SetFault(Column, Row, Sender.CellFault);
}

void TSpreadSheetFile::RaiseNotThisFormat(std::string_view Message, std::string_view Bytes) const
{
    const auto Kind = Extensions.Contains(seTellingErrors) ? ForeignKind(Bytes) : std::string_view();
    throw Exception(std::string(Message) + (Kind.empty() ? "" : ", but " + std::string(Kind)));
}

TKvFileBytes TSpreadSheetFile::ReadBytes() const
{
    bool GoesOn = true;
    const std::function<bool()> Asks = [&] { return GoesOn = Continue(); };
    auto Bytes = ReadFileBytes(FileName, std::numeric_limits<std::size_t>::max(),
                               Continue ? Asks : std::function<bool()>());
    if (!GoesOn)
        throw Exception(MsgCanceled, {.Rule = erCancelled});
    return Bytes;
}

void TSpreadSheetFile::RequireContinue() const
{
    if (Continue && !Continue())
        throw Exception(MsgCanceled, {.Rule = erCancelled});
}

} // namespace kv

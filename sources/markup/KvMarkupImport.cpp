#include "KvMarkupImport.h"

#include <algorithm>
#include <functional>

#include "KvText.h"

namespace kv {

namespace {

constexpr std::int64_t PollRows = 16384;            // between two looks at the Cancel button

} // namespace

TKvISourcePosition TKvImportFromMarkup::SourcePosition() const
{
    return {.Unit = PositionUnit(), .Number = std::max(RowFirst, 1) + CurrentRow};
}

// Loading.

void TKvImportFromMarkup::BeforeImport()
{
    FText = {};                                     // a run that an exception ended left its file behind
    RowCount = CurrentRow = 0;
    const std::function<bool()> Continue = [this] { return KeepsRunning(); };
    const auto Finder = EncodingFinder();
    if (Finder)
        File.emplace(SourceFileName, Finder, Continue);
    else
        File.emplace(SourceFileName, bmIsText, TKvTextFile::WholeFile, Continue);
    FText = MarkupText(*File, SourceFileName, Finder != nullptr);
    StartRows(FText);
    CountRows();
}

void TKvImportFromMarkup::AfterImport()
{
    FText = {};
    File.reset();
}

void TKvImportFromMarkup::CountRows()
{
    for (std::int64_t Number = 1; SkipRow(); ++Number) {
        if (RowFirst <= Number && Number <= RowLast)
            ++RowCount;
        if (Number % PollRows == 0 && !KeepsRunning()) {
            RowCount = 0;                           // cancelled: nothing of the file is imported
            return;
        }
    }
}

std::string_view MarkupText(const TKvTextFile& File, const std::string& FileName, bool TellsEncoding)
{
    const auto Text = File.Text();
    const auto Zero = Text.find('\0');
    if (Zero != Text.npos && TellsEncoding)
        throw EConvertError(FormatText("File \"%s\" has a zero byte at offset %d, as no text of its kind has",
                                       {FileName, std::to_string(Zero)}));
    return Text.substr(0, Zero);
}

// The rows.

void TKvImportFromMarkup::GoFirst()
{
    CurrentRow = 0;
    if (RowCount == 0)
        return;
    StartRows(FText);
    for (std::int64_t Number = 1; Number < RowFirst; ++Number)
        SkipRow();
    NextRow();
}

void TKvImportFromMarkup::GoNext()
{
    if (++CurrentRow < RowCount)
        NextRow();
}

int TKvImportFromMarkup::GetTotalCount()
{
    return static_cast<int>(std::min<std::int64_t>(RowCount, RowLastMax));
}

bool TKvImportFromMarkup::NeedMore()
{
    return CurrentRow < RowCount && WantsMoreThan(CurrentRow);
}

} // namespace kv

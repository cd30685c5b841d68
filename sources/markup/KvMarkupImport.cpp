#include "KvMarkupImport.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "KvText.h"
#include "KvTextFile.h"

namespace kv {

namespace {

constexpr std::int64_t PollRows = 16384;            // between two looks at the Cancel button

/// Of the byte `Index` of the text; -1 where that was converted.
std::int64_t OffsetInFile(const TKvTextFile& File, std::size_t Index)
{
    return File.Offset() < 0 ? -1 : File.Offset() + static_cast<std::int64_t>(Index);
}

} // namespace

/// The file in memory.
struct TKvImportFromMarkup::TLoaded
{
    std::string FileName;
    TEncodingFinder Finder = nullptr;
    std::optional<TKvTextFile> File;
    std::string_view Text;
    bool IsForLook = false;                         // and was read to its end
};

TKvImportFromMarkup::TKvImportFromMarkup(TComponent* Owner, TTableTypeImport Type, std::string_view Extension)
    : TKvImportFromFile(Owner, Type, Extension)
{
}

TKvImportFromMarkup::~TKvImportFromMarkup() = default;

TKvISourcePosition TKvImportFromMarkup::SourcePosition() const
{
    return {.Unit = PositionUnit(),
            .Number = std::max(RowFirst, 1) + CurrentRow,
            .Offset = RowIsThere ? OffsetOf(RowBegin()) : -1};
}

std::int64_t TKvImportFromMarkup::OffsetOf(const char* Place) const
{
    return OffsetInFile(*Loaded->File, static_cast<std::size_t>(Place - Loaded->Text.data()));
}

// Loading.

void TKvImportFromMarkup::BeforeImport()
{
    RowCount = CurrentRow = 0;
    RowIsThere = false;
    Load();
    StartRows(Text());
    CountRows();
}

void TKvImportFromMarkup::AfterImport()
{
    RowIsThere = false;
    Loaded.reset();
}

/// False when the user has cancelled.
bool TKvImportFromMarkup::Load()
{
    Loaded.reset();                                 // a run that an exception ended left its file behind
    auto New = std::make_unique<TLoaded>();
    New->FileName = SourceFileName;
    New->Finder = EncodingFinder();
    bool GoesOn = true;
    const std::function<bool()> Continue = [&] { return GoesOn = KeepsRunning(); };
    if (New->Finder)
        New->File.emplace(SourceFileName, New->Finder, Continue);
    else
        New->File.emplace(SourceFileName, bmIsText, TKvTextFile::WholeFile, Continue);
    New->Text = MarkupText(*New->File, SourceFileName, New->Finder != nullptr);
    Loaded = std::move(New);
    return GoesOn;
}

void TKvImportFromMarkup::CountRows()
{
    for (std::int64_t Number = 1; SkipRow(); ++Number) {
        if (RowFirst <= Number && Number <= RowLast)
            ++RowCount;
        if (!GoesOnAfter(Number)) {
            RowCount = 0;                           // cancelled: nothing of the file is imported
            return;
        }
    }
}

bool TKvImportFromMarkup::GoesOnAfter(std::int64_t Row) const
{
    return Row % PollRows != 0 || KeepsRunning();
}

std::string_view TKvImportFromMarkup::Text() const
{
    return Loaded ? Loaded->Text : std::string_view();
}

std::int64_t TKvImportFromMarkup::TextOffset() const
{
    return Loaded ? Loaded->File->Offset() : -1;
}

std::string_view MarkupText(const TKvTextFile& File, const std::string& FileName, bool TellsEncoding)
{
    const auto Text = File.Text();
    const auto Zero = Text.find('\0');
    if (Zero != Text.npos && TellsEncoding)
        throw EConvertError(FormatText("File \"%s\" has a zero byte at offset %d, as no text of its kind has",
                                       {FileName, std::to_string(Zero)}),
                            {.FileName = FileName,
                             .Rule = erFormat,
                             .Offset = OffsetInFile(File, Zero)});
    return Text.substr(0, Zero);
}

// A look.

bool TKvImportFromMarkup::IsKept() const
{
    return Loaded && Loaded->IsForLook && Loaded->FileName == SourceFileName &&
           Loaded->Finder == EncodingFinder();
}

bool TKvImportFromMarkup::LoadForLook()
{
    if (!IsKept()) {
        const bool IsWhole = Load();
        Loaded->IsForLook = IsWhole;
    }
    return Loaded->IsForLook;
}

void TKvImportFromMarkup::BeforeLook(const TKvISourceLook&)
{
    CurrentRow = 0;
    RowIsThere = false;
    RowCount = std::max<std::int64_t>(std::int64_t{RowLast} - std::max(RowFirst, 1) + 1, 0);
    LoadForLook();
    StartRows(Text());
}

void TKvImportFromMarkup::AfterLook()
{
    RowIsThere = false;
    if (!IsKept())
        Loaded.reset();
}

void TKvImportFromMarkup::EndLook()
{
    if (Loaded && Loaded->IsForLook)
        Loaded.reset();
}

// The rows.

void TKvImportFromMarkup::GoFirst()
{
    CurrentRow = 0;
    RowIsThere = false;
    if (RowCount == 0)
        return;
    StartRows(Text());
    for (std::int64_t Number = 1; Number < RowFirst; ++Number)
        if (!SkipRow() || !GoesOnAfter(Number))
            return;
    RowIsThere = NextRow();
}

void TKvImportFromMarkup::GoNext()
{
    RowIsThere = false;
    RowIsThere = ++CurrentRow < RowCount && NextRow();
}

int TKvImportFromMarkup::GetTotalCount()
{
    return static_cast<int>(std::min<std::int64_t>(RowCount, RowLastMax));
}

bool TKvImportFromMarkup::NeedMore()
{
    return RowIsThere && WantsMoreThan(CurrentRow);
}

} // namespace kv

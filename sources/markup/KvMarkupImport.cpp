#include "KvMarkupImport.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "KvCodePage.h"
#include "KvEncodingLabels.h"
#include "KvPublish.h"
#include "KvText.h"
#include "KvTextFile.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr std::int64_t PollRows = 16384;            // between two looks at the Cancel button

/// Of the byte `Index` of the text; -1 where that was converted.
std::int64_t OffsetInFile(const TKvTextFile& File, std::size_t Index)
{
    return File.Offset() < 0 ? -1 : File.Offset() + static_cast<std::int64_t>(Index);
}

/// One of the characters that stand for bytes without a meaning: U+0080 to U+009F, U+F7A0 to U+F7FF.
bool IsStandIn(std::string_view Utf8)
{
    const auto Byte = [Utf8](std::size_t I) { return static_cast<unsigned char>(Utf8[I]); };
    if (Utf8.size() > 1 && Byte(0) == 0xC2)
        return Byte(1) < 0xA0;
    return Utf8.size() > 2 && Byte(0) == 0xEF && ((Byte(1) == 0x9E && Byte(2) >= 0xA0) || Byte(1) == 0x9F);
}

} // namespace

/// The file in memory.
struct TKvImportFromMarkup::TLoaded
{
    std::string FileName;
    std::string CodePage;
    TEncodingFinder Finder = nullptr;
    std::optional<TKvTextFile> File;
    std::string_view Text;
    bool IsForLook = false;                         // and was read to its end
    std::optional<std::int64_t> Count;              // of the rows that are imported ...
    std::string CountSettings;                      // ... by these settings
};

TKvImportFromMarkup::TKvImportFromMarkup(TComponent* Owner, TTableTypeImport Type, std::string_view Extension)
    : TKvImportFromFile(Owner, Type, Extension)
{
}

TKvImportFromMarkup::~TKvImportFromMarkup() = default;

TPublishedProperties TKvImportFromMarkup::PublishedProperties() const
{
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {AsPlace(Publish("CodePage", &TKvImportFromMarkup::CodePage))});
}

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
    if (!IsKept())
        Load();
    Loaded->IsForLook = false;                      // it is taken
    StartRows(Text());
    if (HasCount())
        RowCount = *Loaded->Count;
    else
        CountRows();
}

bool TKvImportFromMarkup::LoadRecord()
{
    try {
        return TKvImportFromFile::LoadRecord();
    }
    catch (const EFormatError& Error) {
        RecordFailed(Error);
        return false;
    }
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
    New->CodePage = CodePage;
    New->Finder = EncodingFinder();
    bool GoesOn = true;
    const std::function<bool()> Continue = [&] { return GoesOn = KeepsRunning(); };
    std::string Label;
    const auto Declared = [&](std::string_view Start) {
        if (!New->CodePage.empty())
            return std::string_view(New->CodePage);
        Label = New->Finder(Start);
        return Label.empty() ? std::string_view() : EncodingOfLabel(Label);
    };
    if (New->Finder)
        New->File.emplace(SourceFileName, Declared, Continue);
    else
        New->File.emplace(SourceFileName, bmIsText, TKvTextFile::WholeFile, Continue);
    New->Text = MarkupText(*New->File, SourceFileName, New->Finder != nullptr);
    Loaded = std::move(New);
    RemarkEncoding(Label);
    return GoesOn;
}

/// `Label` is what the file says of its encoding, empty when it does not or is not asked.
void TKvImportFromMarkup::RemarkEncoding(std::string_view Label)
{
    EncodingRemarks.clear();
    const auto& File = *Loaded->File;
    HasStandIns = File.HasStandIns() && AnsiIsUtf8();
    if (!Loaded->Finder)
        return;
    const auto Add = [this](TKvISourceRemarkKind Kind, std::string_view Encoding) {
        EncodingRemarks.push_back({.Kind = Kind, .Name = std::string(Encoding)});
    };
    if (!Label.empty() && File.Encoding().empty())
        Add(srUnknownEncoding, Label);
    if (File.HasStandIns())
        Add(srUndefinedBytes, File.Encoding());
    else if (File.Offset() >= 0 && AnsiIsUtf8() && !IsValidUtf8(Loaded->Text))
        Add(srForeignText, AnsiCodePage());
}

/// Such characters are nobody's text: pages that have them are no pages of the web.
void TKvImportFromMarkup::CheckStandIns(std::string_view Value) const
{
    for (auto Rest = Value; !Rest.empty(); Rest.remove_prefix(1))
        if (IsStandIn(Rest))
            throw EFormatError(FormatText("\"%s\" has bytes that have no meaning in %s",
                                          {Value, Loaded->File->Encoding()}),
                               {.FileName = SourceFileName,
                                .Value = std::string(Value),
                                .Rule = erConversion});
}

std::string TKvImportFromMarkup::CountSettings() const
{
    return std::to_string(RowFirst) + " " + std::to_string(RowLast) + " " + RowSettings();
}

void TKvImportFromMarkup::KeepCount(std::int64_t Count)
{
    Loaded->Count = Count;
    Loaded->CountSettings = CountSettings();
}

bool TKvImportFromMarkup::HasCount() const
{
    return Loaded && Loaded->Count && Loaded->CountSettings == CountSettings();
}

void TKvImportFromMarkup::CountRows()
{
    for (std::int64_t Number = 1; SkipRow(); ++Number) {
        if (IsImported(Number))
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
           Loaded->CodePage == CodePage && Loaded->Finder == EncodingFinder();
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

void TKvImportFromMarkup::EndDetecting(bool Keep)
{
    if (Keep)
        Loaded->IsForLook = true;
    else
        AfterImport();
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

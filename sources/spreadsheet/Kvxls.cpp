#include "Kvxls.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "KvException.h"
#include "KvFile.h"
#include "KvPublish.h"
#include "KvStorage.h"
#include "KvText.h"
#include "KvxlsPlain.h"
#include "KvxlsWorkbook.h"

namespace kv {

namespace {

constexpr std::string_view VersionNames[] = {"evUnknown", "evExcel2", "evExcel3", "evExcel4",
                                             "evExcel5",  "evExcel7", "evExcel8"};

constexpr char MsgNoWorkbook[] = "File is not a Excel Workbook";

constexpr std::string_view Excel5Stream = "Book", Excel8Stream = "Workbook";

/// The first element of a document that holds a workbook.
const TKvStorageElement& FindWorkbook(const TKvStorage& Storage)
{
    const auto Found = std::ranges::find_if(Storage.Elements(), [](const TKvStorageElement& Element) {
        return SameText(Element.Name, Excel5Stream) || SameText(Element.Name, Excel8Stream);
    });
    if (Found == Storage.Elements().end())
        throw Exception(MsgNoWorkbook);
    return *Found;
}

const TKvStorageElement* FindStream(const TKvStorage& Storage, std::string_view Name)
{
    const auto Found = std::ranges::find_if(Storage.Elements(), [Name](const TKvStorageElement& Element) {
        return Element.Kind == skStream && SameText(Element.Name, Name);
    });
    return Found == Storage.Elements().end() ? nullptr : &*Found;
}

/// Newer workbooks are compound documents too when they have a password.
[[noreturn]] void RaiseNoWorkbook(const TKvStorage& Storage, TSpreadSheetExtensions Extensions)
{
    std::string Message = MsgNoWorkbook;
    if (Extensions.Contains(seTellingErrors) && FindStream(Storage, "EncryptedPackage"))
        Message += ", but a newer one with a password";
    else if (Extensions.Contains(seTellingErrors) && FindStream(Storage, "WordDocument"))
        Message += ", but a document of Word";
    throw Exception(Message);
}

/// The version that the name of a stream tells. With `FirstRecordTells` rather the one that stands there: not
/// all programs chose the name by what they wrote.
TExcelVersion VersionOf(std::string_view StreamName, std::string_view Stream, bool FirstRecordTells)
{
    const auto Version = FirstRecordTells ? TKvxlsWorkbook::VersionOf(Stream) : evUnknown;
    if (Version != evUnknown)
        return Version;
    return SameText(StreamName, Excel8Stream) ? evExcel8 : evExcel7;
}

} // namespace

TPublishedProperties TMSExcel::PublishedProperties() const
{
    auto Properties = TSpreadSheetFile::PublishedProperties();
    Properties.push_back(Publish("Version", &TMSExcel::Version, VersionNames));
    Properties.push_back(Publish("SheetIndex", &TMSExcel::SheetIndex));
    return Properties;
}

void TMSExcel::LoadFromFile(const std::string& Path)
{
    TSpreadSheetFile::LoadFromFile(Path);
    SharedStrings.clear();
    LendsStrings = false;
    Restart();                                      // a file that is refused leaves nothing of the one before
    const auto Bytes = ReadBytes();
    if (IsStorage(Bytes.View()))
        ReadDocument(Bytes.View());
    else
        ReadPlainStream(Bytes.View());
    if (!LendsStrings) {
        SharedStrings.clear();
        NewStrings();
    }
}

void TMSExcel::ImportFromStream()
{
    const auto Bytes = ReadBytes();
    ReadPlainStream(Bytes.View());
}

void TMSExcel::ImportFromOLEStream()
{
    const auto Bytes = ReadBytes();
    ReadDocument(Bytes.View());
}

void TMSExcel::ReadDocument(std::string_view DocumentBytes)
{
    const TKvStorage Storage(DocumentBytes, FileName);
    if (Extensions.Contains(seFileCodePage))
        ReadNewest(Storage);
    else
        ReadStream(Storage, FindWorkbook(Storage).Name);
}

/// Programs wrote the older workbook too for the sake of older programs, with what its code page holds of the
/// text.
void TMSExcel::ReadNewest(const TKvStorage& Storage)
{
    const auto* const Newer = FindStream(Storage, Excel8Stream);
    const auto* const Older = FindStream(Storage, Excel5Stream);
    if (!Newer && !Older)
        RaiseNoWorkbook(Storage, Extensions);
    if (!Newer || !Older)
        return ReadStream(Storage, Newer ? Newer->Name : Older->Name);
    try {
        ReadStream(Storage, Newer->Name);
    }
    catch (const Exception& Error) {
        if (Error.Facts.Rule == erCancelled)
            throw;
        Sheets.Clear();
        ReadStream(Storage, Older->Name);
        Remarks.push_back({.Kind = srOlderWorkbook, .Reason = Error.Message});
    }
}

void TMSExcel::ReadStream(const TKvStorage& Storage, const std::string& StreamName)
{
    const auto Stream = Storage.OpenStream(StreamName);
    const auto Bytes = Stream.ReadAll();
    try {
        if (ReadWorkbookStream(Bytes, VersionOf(StreamName, Bytes, Extensions.Contains(seCellRecords))))
            return;
    } catch (const EFormatError&) {
        Stream.RequireAll();                        // when the document is damaged, that is what to tell
        throw;
    }
    Stream.RequireAll();
}

void TMSExcel::ReadPlainStream(std::string_view Stream)
{
    Restart();
    const auto WorkbookVersion =
        Extensions.Contains(seCellRecords) ? TKvxlsWorkbook::VersionOf(Stream) : evUnknown;
    if (WorkbookVersion != evUnknown)
        ReadWorkbookStream(Stream, WorkbookVersion);
    else
        TKvxlsPlain(*this, Formats, Stream).Read();
}

bool TMSExcel::ReadWorkbookStream(std::string_view Stream, TExcelVersion TheVersion)
{
    Restart();
    Version = TheVersion;
    return TKvxlsWorkbook(*this, Formats, Stream).Read();
}

void TMSExcel::Restart()
{
    Formats = TKvxlsFormats(Extensions.Contains(seCustomDates));
    NewStrings();
    SheetIndex = -1;
    Version = evUnknown;
}

TKvxlsSharedStrings& TMSExcel::NewStrings()
{
    return SharedStrings.emplace_back();
}

bool TMSExcel::KeepsText(std::string_view Text)
{
    const bool Keeps = Strings().Holds(Text);
    LendsStrings = LendsStrings || Keeps;
    return Keeps;
}

bool TMSExcel::FormatIsDateTime(int XFIndex) const
{
    return std::in_range<std::uint16_t>(XFIndex) && Formats.IsDate(static_cast<std::uint16_t>(XFIndex));
}

} // namespace kv

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
    Restart();                                      // a file that is refused leaves nothing of the one before
    const auto Bytes = ReadBytes();
    if (IsStorage(Bytes.View()))
        ReadDocument(Bytes.View());
    else
        ReadPlainStream(Bytes.View());
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
    const auto& StreamName = FindWorkbook(Storage).Name;
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
    SheetIndex = -1;
    Version = evUnknown;
}

bool TMSExcel::FormatIsDateTime(int XFIndex) const
{
    return std::in_range<std::uint16_t>(XFIndex) && Formats.IsDate(static_cast<std::uint16_t>(XFIndex));
}

} // namespace kv

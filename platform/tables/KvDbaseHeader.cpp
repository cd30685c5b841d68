#include "KvDbaseHeader.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "KvByteCursor.h"
#include "KvDbaseLanguage.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t FieldsOffset = 32, Dbase2FieldsOffset = 8;
constexpr std::size_t Dbase2HeaderSize = 521;
constexpr std::string_view FieldLetters = "CNFLDIMTYVQGPWB+O@";
// Of the first field.
constexpr std::size_t LetterOffset = 43, Dbase2LetterOffset = 19, Dbase7LetterOffset = 100;

struct TVersion
{
    std::uint8_t Byte;
    TKvDbaseDialect Dialect;
    TKvDbaseMemoKind MemoKind;
};

constexpr TVersion Versions[] = {
    {0x02, ddDbase2, dmNone},
    {0x03, ddDbase, dmDbase3},                      // without memos, but not every program cared
    {0x04, ddDbase7, dmDbase4},
    {0x05, ddDbase, dmDbase4},
    {0x30, ddVisualFoxPro, dmFoxPro},
    {0x31, ddVisualFoxPro, dmFoxPro},
    {0x32, ddVisualFoxPro, dmFoxPro},
    {0x43, ddDbase, dmDbase4},
    {0x63, ddDbase, dmDbase4},
    {0x7B, ddDbase, dmDbase4},
    {0x83, ddDbase, dmDbase3},
    {0x8B, ddDbase, dmDbase4},
    {0x8C, ddDbase7, dmDbase4},
    {0x8E, ddDbase, dmDbase4},
    {0xCB, ddDbase, dmDbase4},
    {0xE5, ddDbase, dmNone},                        // its memos are of a kind that nobody describes
    {0xF5, ddDbase, dmFoxPro},
    {0xFB, ddDbase, dmFoxPro},
};

const TVersion* VersionOf(std::string_view Bytes)
{
    const auto* const Last = std::end(Versions);
    const auto* const Found =
        Bytes.empty() ? Last
                      : std::ranges::find(Versions, static_cast<std::uint8_t>(Bytes[0]), &TVersion::Byte);
    return Found != Last ? Found : nullptr;
}

bool IsFieldLetter(char Letter) { return FieldLetters.find(Letter) != FieldLetters.npos; }

/// No letter where the bytes end before.
char LetterAt(const TKvByteCursor& File, std::size_t Offset)
{
    return Offset < File.Size() ? File.At<char>(Offset) : '\0';
}

/// Of any list that a table of this version may have.
bool HasFieldLetter(const TKvByteCursor& File, TKvDbaseDialect Dialect)
{
    return IsFieldLetter(LetterAt(File, Dialect == ddDbase2 ? Dbase2LetterOffset : LetterOffset)) ||
           (Dialect == ddDbase7 && IsFieldLetter(LetterAt(File, Dbase7LetterOffset)));
}

TKvDbaseHeader ReadDbase2Header(TKvByteCursor File)
{
    TKvDbaseHeader Header;
    Header.HeaderSize = Dbase2HeaderSize;
    Header.RecordCount = File.At<std::uint16_t>(1);
    Header.RecordSize = File.At<std::uint16_t>(6);
    auto Fields = File.TakeSlice(Header.HeaderSize);
    Fields.Skip(Dbase2FieldsOffset);
    Header.Fields = ReadDbaseFields(Fields, ddDbase2, Header.RecordSize);
    return Header;
}

std::string TakeDriverName(TKvByteCursor& Header)
{
    const auto Name = Header.TakeBytes(32);
    Header.Skip(4);
    return std::string(Name.substr(0, Name.find('\0')));
}

/// Some programs call a table one of dBase 7 and list its fields as before. No header of dBase 7 has such a
/// size.
bool HasShortListing(const TKvByteCursor& File, std::size_t HeaderSize)
{
    constexpr std::size_t ListedSize = 32;
    return HeaderSize > FieldsOffset && HeaderSize % ListedSize == 1 &&
           IsFieldLetter(LetterAt(File, LetterOffset)) && LetterAt(File, HeaderSize - 1) == '\x0D';
}

TKvDbaseHeader ReadHeader(TKvByteCursor File, TVersion Version)
{
    TKvDbaseHeader Header;
    Header.RecordCount = File.At<std::uint32_t>(0x04);
    Header.HeaderSize = File.At<std::uint16_t>(0x08);
    Header.RecordSize = File.At<std::uint16_t>(0x0A);
    Header.CodePage = CodePageOfDriver(File.At<std::uint8_t>(0x1D));
    Header.MemoKind = Version.MemoKind;
    if (Version.Dialect == ddDbase7 && HasShortListing(File, Header.HeaderSize))
        Version.Dialect = ddDbase;
    auto Fields = File.TakeSlice(Header.HeaderSize);
    Fields.Skip(FieldsOffset);
    if (Version.Dialect == ddDbase7)
        if (const auto Name = TakeDriverName(Fields); Header.CodePage.empty())
            Header.CodePage = CodePageOfDriver(Name);
    Header.Fields = ReadDbaseFields(Fields, Version.Dialect, Header.RecordSize);
    return Header;
}

} // namespace

bool IsDbase(std::string_view Bytes)
{
    const auto* const Version = VersionOf(Bytes);
    if (!Version || Bytes.size() <= FieldsOffset)
        return false;
    const TKvByteCursor File(Bytes);
    const bool IsDbase2 = Version->Dialect == ddDbase2;
    if (!HasFieldLetter(File, Version->Dialect))
        return false;
    const auto Month = File.At<std::uint8_t>(IsDbase2 ? 3 : 2); // dBase II: MM DD YY, later ones YY MM DD
    const auto Day = File.At<std::uint8_t>(IsDbase2 ? 4 : 3);
    return Month <= 12 && Day <= 31 && (IsDbase2 || File.At<std::uint16_t>(0x08) > FieldsOffset);
}

TKvDbaseHeader ReadDbaseHeader(std::string_view Bytes, const std::string& FileName)
{
    try {
        const TKvByteCursor File(Bytes);
        const auto* const Version = VersionOf(Bytes);
        if (!Version)
            throw EFormatError(
                Bytes.empty() ? "it is empty"
                              : FormatText("its version 0x%s is unknown", {TextToHex(Bytes.substr(0, 1))}));
        if (Version->Dialect == ddDbase2)
            return ReadDbase2Header(File);
        if (File.At<std::uint8_t>(0x0F) != 0)
            throw EDatabaseError(FormatText("File \"%s\" is encrypted", {FileName}), {.FileName = FileName});
        return ReadHeader(File, *Version);
    }
    catch (const EFormatError& Error) {
        throw EFormatError(FormatText("File \"%s\" is no dBase table: %s", {FileName, Error.Message}),
                           {.FileName = FileName, .Rule = erFormat, .Offset = Error.Facts.Offset});
    }
}

} // namespace kv

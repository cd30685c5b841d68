#include "KvForeignFile.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "KvByteCursor.h"
#include "KvText.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view NewerWorkbook = "a newer workbook, of Excel 2007 or later";
constexpr std::string_view OpenWorkbook = "a workbook of OpenDocument";

constexpr std::size_t LookedAt = 4096;              // bytes of text

// A ZIP archive begins with a local header: 26 bytes, the lengths of name and extra field, the name.
constexpr std::string_view ZipBegin = "PK\x03\x04"sv;
constexpr std::size_t ZipNameSizeAt = 26, ZipNameAt = 30;

std::string_view FirstNameInZip(std::string_view Bytes)
{
    if (!Bytes.starts_with(ZipBegin) || Bytes.size() < ZipNameAt)
        return {};
    return Bytes.substr(ZipNameAt, LoadLittleEndian<std::uint16_t>(Bytes.data() + ZipNameSizeAt));
}

/// An entry "mimetype" comes first and is not compressed.
bool IsOpenWorkbook(std::string_view Bytes)
{
    constexpr std::string_view Type = "application/vnd.oasis.opendocument.spreadsheet";
    return FirstNameInZip(Bytes) == "mimetype" && Bytes.substr(ZipNameAt, 256).find(Type) != Bytes.npos;
}

std::string_view ZipKind(std::string_view Bytes)
{
    if (IsOpenWorkbook(Bytes))
        return OpenWorkbook;
    if (Bytes.find("xl/workbook") != Bytes.npos)    // names stand in it as they are
        return NewerWorkbook;
    return "a ZIP archive";
}

/// What begins with "<" is a page when it has one of the tags of pages.
std::string_view MarkupKind(std::string_view Text)
{
    std::string Lower(Text);
    std::ranges::transform(Lower, Lower.begin(), [](char Char) {
        return Char >= 'A' && Char <= 'Z' ? static_cast<char>(Char + ('a' - 'A')) : Char;
    });
    for (const auto Tag : {"<html"sv, "<!doctype html"sv, "<body"sv, "<table"sv, "<meta"sv, "<head>"sv})
        if (Lower.find(Tag) != Lower.npos && !Lower.starts_with("<?xml"))
            return "a page of HTML";
    return Lower.find("<html") != Lower.npos ? "a page of HTML" : "XML";
}

bool IsText(std::string_view Bytes)
{
    constexpr auto Controls = "\t\n\v\f\r\x1A\x1B"sv; // those that text has
    return std::ranges::none_of(Bytes, [Controls](char Char) {
        return static_cast<unsigned char>(Char) < ' ' && Controls.find(Char) == Controls.npos;
    });
}

} // namespace

std::string_view ForeignKind(std::string_view Bytes)
{
    if (Bytes.empty())
        return "empty";
    if (Bytes.starts_with(ZipBegin))
        return ZipKind(Bytes);
    if (Bytes.starts_with("%PDF-"))
        return "a PDF document";
    if (Bytes.starts_with("{\\rtf"))
        return "a document of rich text";
    if (Bytes.starts_with("\xFF\xFE") || Bytes.starts_with("\xFE\xFF"))
        return "text of 16 bits a character";
    auto Text = Bytes.substr(0, LookedAt);
    if (Text.starts_with("\xEF\xBB\xBF"))
        Text.remove_prefix(3);
    if (!IsText(Text))
        return {};
    return Trim(Text).starts_with('<') ? MarkupKind(Trim(Text)) : "text";
}

bool BeginsNewerWorkbook(std::string_view Beginning)
{
    const auto Name = FirstNameInZip(Beginning);
    return IsOpenWorkbook(Beginning) || Name == "[Content_Types].xml" || Name == "_rels/.rels" ||
           Name.starts_with("xl/") || Name.starts_with("docProps/");
}

} // namespace kv

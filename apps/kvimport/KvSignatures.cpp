#include "KvSignatures.h"

#include <algorithm>
#include <initializer_list>

#include "KvText.h"
#include "KvTextFile.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

/// A record that begins a worksheet: id 0, 2 bytes or more, the version. Versions that are not read are
/// taken too: the reader refuses them in words.
bool IsWorksheetOf(std::string_view Beginning, std::string_view Size, std::initializer_list<std::string_view> Versions)
{
    return Beginning.substr(0, 2) == "\0\0"sv && Beginning.substr(2, 2) == Size &&
           std::ranges::count(Versions, Beginning.substr(4, 2)) > 0;
}

} // namespace

bool BeginsLikeHtml(std::string_view Beginning)
{
    const auto Start = Trim(WithoutByteOrderMark(Beginning));
    return SameText(Start.substr(0, 14), "<!DOCTYPE html") || SameText(Start.substr(0, 5), "<html");
}

bool BeginsLikeXml(std::string_view Beginning)
{
    auto Start = Trim(WithoutByteOrderMark(Beginning));
    if (Start.starts_with("<?xml"))
        Start = Trim(Start.substr(std::min(Start.find("?>"), Start.size() - 2) + 2));
    return Start.starts_with("<DATAPACKET");
}

bool BeginsLikeXls(std::string_view Beginning)
{
    constexpr std::string_view Sheets[] = {"\x09\x00\x04\x00"sv, "\x09\x02\x06\x00"sv, "\x09\x04\x06\x00"sv, // Excel 2 to 4
                                           "\x09\x08\x08\x00"sv, "\x09\x08\x10\x00"sv}; // 5 and 8 without a document
    return Beginning.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv) ||
           std::ranges::any_of(Sheets, [Beginning](std::string_view Begin) { return Beginning.starts_with(Begin); });
}

bool BeginsLikeWks(std::string_view Beginning)
{
    return IsWorksheetOf(Beginning, "\x02\x00"sv, {"\x04\x04", "\x05\x04", "\x06\x04"}) ||
           IsWorksheetOf(Beginning, "\x1A\x00"sv, {"\x00\x10"sv, "\x02\x10"sv, "\x03\x10"sv, "\x05\x10"sv}); // 3 and later
}

bool BeginsLikeQuattro(std::string_view Beginning)
{
    return IsWorksheetOf(Beginning, "\x02\x00"sv, {"\x20\x51", "\x21\x51", "\x01\x10", "\x02\x10"}); // the last are later ones
}

bool BeginsLikeAccess(std::string_view Beginning)
{
    return Beginning.starts_with("\0\1\0\0Standard Jet DB\0"sv) || Beginning.starts_with("\0\1\0\0Standard ACE DB\0"sv);
}

bool BeginsLikeSqlite(std::string_view Beginning)
{
    return Beginning.starts_with("SQLite format 3\0"sv);
}

bool BeginsLikeText(std::string_view Beginning)
{
    return Beginning.find('\0') == Beginning.npos || WithoutByteOrderMark(Beginning).size() < Beginning.size();
}

} // namespace kv

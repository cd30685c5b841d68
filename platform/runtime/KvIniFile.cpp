#include "KvIniFile.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <utility>

#include "KvException.h"
#include "KvFile.h"
#include "KvFileReplace.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view NoText{"\r\n\0", 3};     // characters that cannot stand within a line

std::string Load(const std::string& FileName, TIniOpening Opening)
{
    struct stat Status;
    if (Opening == ioOpenOrCreate && stat(FileName.c_str(), &Status) != 0 && errno == ENOENT)
        return {};
    const auto Bytes = ReadFileBytes(FileName, TIniFile::MaxSize + 1);
    if (Bytes.Size() > TIniFile::MaxSize)
        throw EFileError(FormatText("Cannot read file \"%s\": it is larger than 16 MB", {FileName}));
    if (Bytes.View().find('\0') != std::string_view::npos)
        throw EFileError(FormatText("Cannot read file \"%s\": it is no 8-bit text", {FileName}));
    return std::string(Bytes.View());
}

/// The size of the line end at `Pos`: that of CR LF, LF or CR.
std::size_t LineEndSize(std::string_view Text, std::size_t Pos)
{
    return Text.substr(Pos).starts_with("\r\n") ? 2 : 1;
}

std::size_t ContentSize(std::string_view Line)
{
    return std::min(Line.find_first_of("\r\n"), Line.size());
}

/// The key of a line, or nothing.
std::string_view KeyOf(std::string_view Line)
{
    const auto Content = Trim(Line);
    const auto Equal = Content.find('=');
    return Equal == Content.npos || Content.front() == ';' ? std::string_view()
                                                           : Trim(Content.substr(0, Equal));
}

bool IsQuoted(std::string_view Value)
{
    return Value.size() >= 2 && Value.front() == Value.back() &&
           (Value.front() == '"' || Value.front() == '\'');
}

std::string_view ValueOf(std::string_view Line)
{
    const auto Value = Trim(Line.substr(Line.find('=') + 1));
    return IsQuoted(Value) ? Value.substr(1, Value.size() - 2) : Value;
}

/// As ValueOf reads it back.
std::string Quoted(std::string_view Value)
{
    const bool NeedsQuotes = IsQuoted(Value) || Trim(Value).size() != Value.size();
    return NeedsQuotes ? '"' + std::string(Value) + '"' : std::string(Value);
}

/// `Line` with another value; what stands before the value and after the line stays.
std::string WithValue(std::string_view Line, std::string_view Value)
{
    const auto Size = ContentSize(Line);
    auto Begin = Line.find('=') + 1;
    while (Begin < Size && IsBlank(Line.substr(Begin, 1)))
        ++Begin;
    return std::string(Line.substr(0, Begin)) + Quoted(Value) + std::string(Line.substr(Size));
}

} // namespace

TIniFile::TIniFile(std::string Name, TIniOpening Opening) : FFileName(std::move(Name))
{
    Parse(Load(FFileName, Opening));
}

// Taking the file apart.

void TIniFile::Parse(std::string_view Text)
{
    if (Text.starts_with(Utf8Mark)) {
        Mark = Utf8Mark;
        Text.remove_prefix(Mark.size());
    }
    const auto FirstEnd = Text.find_first_of("\r\n");
    LineEnd = FirstEnd == Text.npos ? "\r\n" : Text.substr(FirstEnd, LineEndSize(Text, FirstEnd));
    Sections.emplace_back();
    while (!Text.empty()) {
        const auto Content = ContentSize(Text);
        const auto Size = Content < Text.size() ? Content + LineEndSize(Text, Content) : Content;
        AddLine(Text.substr(0, Size));
        Text.remove_prefix(Size);
    }
}

void TIniFile::AddLine(std::string_view Line)
{
    const auto Content = Trim(Line);
    if (Content.empty()) {
        Sections.back().Blanks += Line;
        return;
    }
    if (Content.front() == '[')                     // one that was cut before its "]" is a heading too
        AddSection(Trim(Content.substr(1, std::min(Content.find(']'), Content.size()) - 1)));
    auto& Section = Sections.back();
    if (!Section.Blanks.empty())
        Section.Lines.push_back(std::exchange(Section.Blanks, {}));
    if (const auto Key = Content.front() == '[' ? std::string_view() : KeyOf(Line); !Key.empty())
        Section.Keys.try_emplace(UpperCase(Key), Section.Lines.size());
    Section.Lines.emplace_back(Line);
}

TIniFile::TSection& TIniFile::AddSection(std::string_view Name)
{
    SectionsByName.try_emplace(UpperCase(Name), Sections.size());
    auto& Section = Sections.emplace_back();
    Section.Name = Name;
    return Section;
}

const TIniFile::TSection* TIniFile::FindSection(std::string_view Name) const
{
    const auto Found = SectionsByName.find(UpperCase(Name));
    return Found == SectionsByName.end() ? nullptr : &Sections[Found->second];
}

const std::string* TIniFile::FindLine(std::string_view SectionName, std::string_view Key) const
{
    const auto* const Section = FindSection(SectionName);
    if (!Section)
        return nullptr;
    const auto Found = Section->Keys.find(UpperCase(Key));
    return Found == Section->Keys.end() ? nullptr : &Section->Lines[Found->second];
}

// Reading.

std::vector<std::string> TIniFile::KeysOf(std::string_view SectionName) const
{
    std::vector<std::string> Result;
    const auto* const Section = FindSection(SectionName);
    if (!Section)
        return Result;
    for (std::size_t I = 1; I < Section->Lines.size(); ++I) {
        const auto Key = KeyOf(Section->Lines[I]);
        if (const auto Found = Section->Keys.find(UpperCase(Key));
            Found != Section->Keys.end() && Found->second == I)
            Result.emplace_back(Key);
    }
    return Result;
}

std::string TIniFile::ReadString(std::string_view Section, std::string_view Key,
                                 std::string_view Default) const
{
    const auto* const Line = FindLine(Section, Key);
    return std::string(Line ? ValueOf(*Line) : Default);
}

int TIniFile::ReadInteger(std::string_view Section, std::string_view Key, int Default) const
{
    const auto Text = ReadString(Section, Key, {});
    if (Text.empty())
        return Default;
    const auto Number = TryTextToInt(Text);
    if (!Number)
        RefuseValue(Section, Key, FormatText("'%s' is not a valid integer value", {Text}));
    if (!std::in_range<int>(*Number))
        RefuseValue(Section, Key, FormatText("%s is out of range", {Text}));
    return static_cast<int>(*Number);
}

bool TIniFile::ReadBool(std::string_view Section, std::string_view Key, bool Default) const
{
    return ReadInteger(Section, Key, Default) != 0;
}

void TIniFile::RefuseValue(std::string_view Section, std::string_view Key, std::string_view Reason) const
{
    throw EConvertError(FormatText("Cannot read file \"%s\": [%s] %s: %s",
                                   {FFileName, Section, Key, Reason}));
}

// Writing.

void TIniFile::CheckText(std::string_view Section, std::string_view Key, std::string_view Value) const
{
    const auto Refuse = [&](std::string_view Reason) {
        throw EFileError(FormatText("Cannot write file \"%s\": [%s] %s: %s",
                                    {FFileName, Section, Key, Reason}));
    };
    if (Value.find_first_of(NoText) != Value.npos)
        Refuse("a value cannot hold a line break or a zero byte");
    const bool IsKey = KeyOf(std::string(Key) + '=') == Key && !Key.empty() && Key.front() != '[';
    const bool IsSection = Trim(Section) == Section && !Section.empty() && Section.find(']') == Section.npos;
    if (!IsKey || !IsSection || Key.find_first_of(NoText) != Key.npos ||
        Section.find_first_of(NoText) != Section.npos)
        Refuse("section and key cannot be written so");
}

void TIniFile::WriteString(std::string_view SectionName, std::string_view Key, std::string_view Value)
{
    CheckText(SectionName, Key, Value);
    auto& Section = SectionToWrite(SectionName);
    const auto [Found, IsNew] = Section.Keys.try_emplace(UpperCase(Key), Section.Lines.size());
    if (!IsNew && ValueOf(Section.Lines[Found->second]) == Value)
        return;
    Changed = true;
    if (!IsNew) {
        auto& Line = Section.Lines[Found->second];
        Line = WithValue(Line, Value);
        return;
    }
    if (&Section == &Sections.back())
        EndLastLine();
    Section.Lines.push_back(std::string(Key) + '=' + Quoted(Value) + LineEnd);
}

void TIniFile::WriteInteger(std::string_view Section, std::string_view Key, int Value)
{
    WriteString(Section, Key, std::to_string(Value));
}

void TIniFile::WriteBool(std::string_view Section, std::string_view Key, bool Value)
{
    WriteString(Section, Key, Value ? "1" : "0");
}

/// Others of the same name go too: the next of them would count from now on.
void TIniFile::EraseSection(std::string_view Name)
{
    if (SectionsByName.erase(UpperCase(Name)) == 0)
        return;
    for (auto& Section : Sections)
        if (SameText(Section.Name, Name))
            Section = {};
    Changed = true;
}

TIniFile::TSection& TIniFile::SectionToWrite(std::string_view Name)
{
    if (const auto Found = SectionsByName.find(UpperCase(Name)); Found != SectionsByName.end())
        return Sections[Found->second];
    EndLastLine();
    auto& Section = AddSection(Name);
    Section.Lines.push_back('[' + std::string(Name) + ']' + LineEnd);
    return Section;
}

/// The last line of a file may lack its end.
void TIniFile::EndLastLine()
{
    auto& Last = Sections.back();
    auto* const Line = !Last.Blanks.empty() ? &Last.Blanks : !Last.Lines.empty() ? &Last.Lines.back()
                                                                                 : nullptr;
    if (Line && NoText.find(Line->back()) == NoText.npos)
        *Line += LineEnd;
}

std::string TIniFile::Text() const
{
    std::string Result = Mark;
    for (const auto& Section : Sections) {
        for (const auto& Line : Section.Lines)
            Result += Line;
        Result += Section.Blanks;
    }
    return Result;
}

void TIniFile::UpdateFile()
{
    if (!Changed)
        return;
    const auto Saved = Text();
    if (Saved.size() > MaxSize)
        throw EFileError(FormatText("Cannot write file \"%s\": it would be larger than 16 MB", {FFileName}));
    ReplaceFileBytes(FFileName, Saved);
    Changed = false;
}

} // namespace kv

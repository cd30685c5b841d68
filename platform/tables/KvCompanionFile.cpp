#include "KvCompanionFile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t CompanionWindow = 16 << 10;   // small, as long values may stand in any order

bool IsLowerCase(char Char) { return Char >= 'a' && Char <= 'z'; }

std::string LowerCase(std::string_view Text)
{
    std::string Result(Text);
    for (char& Char : Result)
        if (Char >= 'A' && Char <= 'Z')
            Char = static_cast<char>(Char - 'A' + 'a');
    return Result;
}

/// `Extension` in the case of that of `Path`.
std::string InCaseOf(const fs::path& Path, std::string_view Extension)
{
    const auto Own = Path.extension().string();
    return std::ranges::any_of(Own, IsLowerCase) ? LowerCase(Extension) : UpperCase(Extension);
}

[[noreturn]] void RaiseEnd(const TKvFileWindow& File)
{
    throw EFormatError("Unexpected end of data at offset " + std::to_string(File.FileSize()));
}

} // namespace

std::string CompanionFileName(const std::string& FileName, std::string_view Extension)
{
    auto Expected = fs::path(FileName);
    Expected.replace_extension(InCaseOf(Expected, Extension));
    std::error_code Ignored;
    if (fs::exists(Expected, Ignored))
        return Expected.string();

    std::string Found;
    const auto Name = Expected.filename().string();
    const auto Folder = Expected.has_parent_path() ? Expected.parent_path() : fs::path(".");
    for (fs::directory_iterator Entry(Folder, Ignored), End; !Ignored && Entry != End;
         Entry.increment(Ignored)) {
        auto Other = Entry->path().filename().string();
        if (SameText(Other, Name) && (Found.empty() || Other < Found))
            Found = std::move(Other);
    }
    if (!Found.empty())
        Expected.replace_filename(Found);
    return Expected.string();
}

TKvFileWindow& TKvCompanionFile::File()
{
    if (Fault)
        std::rethrow_exception(Fault);
    if (!Window) {
        try {
            Window.emplace(CompanionFileName(TableName, OwnExtension), CompanionWindow);
        }
        catch (const EFileError&) {
            Fault = std::current_exception();
            throw;
        }
    }
    return *Window;
}

std::string_view CopyBytes(TKvFileWindow& File, std::uint64_t Offset, std::size_t Size, std::string& Buffer)
{
    if (Offset > File.FileSize() || Size > File.FileSize() - Offset)
        RaiseEnd(File);                             // no memory is asked for that a damaged size invents
    Buffer.clear();
    while (Buffer.size() < Size) {
        const auto Piece = File.At(Offset, std::min(Size - Buffer.size(), CompanionWindow));
        if (Piece.empty())                          // it has become shorter
            RaiseEnd(File);
        Buffer += Piece;
        Offset += Piece.size();
    }
    return Buffer;
}

} // namespace kv

#include "KvTextProbe.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvTextFields.h"
#include "KvTextLines.h"
#include "Kvi2txt.h"

namespace kv {

namespace {

constexpr std::size_t ProbeBytes = std::size_t{1} << 20;
constexpr std::size_t WholeFile = std::numeric_limits<std::size_t>::max();

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF", Utf16LittleMark = "\xFF\xFE", Utf16BigMark = "\xFE\xFF";

bool IsUtf16(std::string_view Bytes)
{
    return Bytes.starts_with(Utf16LittleMark) || Bytes.starts_with(Utf16BigMark);
}

/// The beginning of a file as text.
class TTextBeginning
{
public:
    TTextBeginning(const TKvImportFromText& Component, std::size_t Size)
        : Marked(Component.Extensions.Contains(xtByteOrderMark)), File(ReadFileBytes(Component.SourceFileName, Size))
    {
        FComplete = File.Size() < Size;
        if (Marked && IsUtf16(File.View()) && !FComplete) { // half a character could not be converted
            File = ReadFileBytes(Component.SourceFileName);
            FComplete = true;
        }
        FText = Marked ? WithoutMark(File.View()) : File.View();
    }

    std::string_view Text() const { return FText; }
    bool Complete() const { return FComplete; }

private:
    std::string_view WithoutMark(std::string_view Bytes)
    {
        if (IsUtf16(Bytes)) {
            const bool Little = Bytes.starts_with(Utf16LittleMark);
            return Decoded = CodePageToUtf8(Bytes.substr(Utf16LittleMark.size()), Little ? "UTF-16LE" : "UTF-16BE");
        }
        return Bytes.starts_with(Utf8Mark) ? Bytes.substr(Utf8Mark.size()) : Bytes;
    }

    const bool Marked;
    TKvFileBytes File;
    std::string Decoded;
    std::string_view FText;
    bool FComplete = false;
};

std::vector<std::string> ValuesOf(std::string_view Line, TKvTextFields* Fields)
{
    if (!Fields)
        return {std::string(Line)};
    Fields->Split(Line);
    std::vector<std::string> Values;
    for (std::size_t I = 0; I < Fields->Count(); ++I)
        Values.emplace_back(Fields->Value(I));
    return Values;
}

/// Nothing when `Size` bytes do not hold these lines but the file may.
std::optional<TProbedText> Probe(const TKvImportFromText& Component, int First, int Last, std::size_t Size)
{
    const TTextBeginning Beginning(Component, Size);
    const bool Doubled = Component.Extensions.Contains(xtDoubledQualifiers);
    const char Qualifier = Component.GetTextQualifierCustom(), Delimiter = Component.GetFieldDelimiterCustom();
    const bool HasQualifier = Qualifier != '\0' && !(Doubled && Component.Fixed);
    TKvTextLines Cutter(Beginning.Text(), {.Separator = Component.GetRecordSeparatorCustom(),
                                           .Qualifier = HasQualifier ? std::string_view(&Qualifier, 1) : std::string_view(),
                                           .DoubledQualifiers = Doubled,
                                           .Delimiter = Delimiter});
    std::optional<TKvTextFields> Fields;
    if (!Component.Fixed)
        Fields.emplace(Delimiter, Qualifier, Doubled);

    TProbedText Result;
    while (Cutter.Next()) {
        const auto Number = static_cast<int>(Cutter.Number());
        if (!Beginning.Complete() && Cutter.Offset() >= Beginning.Text().size())
            return std::nullopt;                    // the line goes on
        if (Cutter.Unclosed())
            throw Exception("line " + std::to_string(Number) + " begins a value that no text qualifier closes");
        Result.HasMore = Number > Last;
        if (Result.HasMore)
            return Result;
        if (Number >= First)
            Result.Lines.push_back({Number, ValuesOf(Cutter.Line(), Fields ? &*Fields : nullptr)});
    }
    if (!Beginning.Complete())
        return std::nullopt;
    return Result;
}

} // namespace

TProbedText ProbeText(const TKvImportFromText& Component, int First, int Last)
{
    if (auto Result = Probe(Component, First, Last, ProbeBytes))
        return *std::move(Result);
    return Probe(Component, First, Last, WholeFile).value();
}

} // namespace kv

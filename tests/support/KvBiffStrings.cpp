#include "KvBiffStrings.h"

#include <utility>

#include "KvBiffBuilder.h"

namespace kv {

namespace {

constexpr std::size_t MaxBody = 8224;

/// Writes bytes into records and breaks them.
class TBiffStringWriter
{
public:
    explicit TBiffStringWriter(TBiffBreaks TheBreaks) : Breaks(std::move(TheBreaks)) {}

    /// Bytes that stand in one record.
    void PutWhole(std::string_view Bytes)
    {
        const auto Break = Breaks.At.lower_bound(Offset);
        if (Break != Breaks.At.end() && *Break < Offset + Bytes.size()) {
            Body += Bytes.substr(0, *Break - Offset);
            EndRecord();
        } else if (Body.size() + Bytes.size() > MaxBody) {
            EndRecord();
        }
        Body += Bytes;
        Offset += Bytes.size();
    }

    void PutAnywhere(std::string_view Bytes)
    {
        for (const char Byte : Bytes) {
            if (Breaks.At.contains(Offset) || Body.size() == MaxBody)
                EndRecord();
            Put(Byte);
        }
    }

    void PutCharacters(std::u16string_view Text, bool IsWide)
    {
        for (const char16_t Unit : Text) {
            if (Breaks.At.contains(Offset) || Body.size() + 1 + IsWide > MaxBody)
                Continue(IsWide);
            const bool HasHighByte = IsWide;
            Put(static_cast<char>(Unit & 0xFF));
            if (!HasHighByte)
                continue;
            if (Breaks.At.contains(Offset))         // within a character
                Continue(IsWide);
            Put(static_cast<char>(Unit >> 8));
        }
    }

    std::string Finish()
    {
        EndRecord();
        return Records.Str();
    }
    std::size_t Size() const { return Offset; }

private:
    void Put(char Byte)
    {
        Body += Byte;
        ++Offset;
    }

    void EndRecord()
    {
        Records.Record(IsFirst ? 0x00FC : 0x003C, Body);
        IsFirst = false;
        Body.clear();
    }

    void Continue(bool& IsWide)
    {
        EndRecord();
        IsWide = IsWide != Breaks.SwitchWidth;
        Body += static_cast<char>(Breaks.Option.value_or(IsWide));
    }

    const TBiffBreaks Breaks;
    TBiffBuilder Records;
    std::string Body;
    bool IsFirst = true;
    std::size_t Offset = 0;
};

void Write(const std::vector<TBiffString>& Strings, TBiffStringWriter& Out)
{
    const auto Count = static_cast<std::uint32_t>(Strings.size());
    Out.PutWhole(TBytes().U32(Count).U32(Count));
    for (const auto& String : Strings) {
        const unsigned Options = String.IsWide | (String.Phonetic >= 0 ? 4 : 0) | (String.Runs >= 0 ? 8 : 0);
        Out.PutWhole(TBytes().U16(static_cast<unsigned>(String.Text.size())).U8(Options));
        if (String.Runs >= 0)
            Out.PutWhole(TBytes().U16(static_cast<unsigned>(String.Runs)));
        if (String.Phonetic >= 0)
            Out.PutWhole(TBytes().U32(static_cast<std::uint32_t>(String.Phonetic)));
        Out.PutCharacters(String.Text, String.IsWide);
        for (int Run = 0; Run < String.Runs; ++Run)
            Out.PutAnywhere(TBytes().U16(static_cast<unsigned>(Run)).U16(0xABCD));
        if (String.Phonetic > 0)
            Out.PutAnywhere(std::string(static_cast<std::size_t>(String.Phonetic), '\x7F'));
    }
}

} // namespace

std::string BiffSharedStrings(const std::vector<TBiffString>& Strings, const TBiffBreaks& Breaks)
{
    TBiffStringWriter Out(Breaks);
    Write(Strings, Out);
    return Out.Finish();
}

std::size_t SizeOfSharedStrings(const std::vector<TBiffString>& Strings)
{
    TBiffStringWriter Out({});
    Write(Strings, Out);
    return Out.Size();
}

} // namespace kv

// Any bytes as an INI file into which something is written: what was written reads back, also from the
// text that would be saved, and without writing that text is the file.
//
//   input := section LF key LF value LF file
#include "KvIniFile.h"

#include <algorithm>
#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"

namespace {

using namespace kv;

std::string_view TakeLine(std::string_view& Rest)
{
    const auto End = std::min(Rest.find('\n'), Rest.size());
    const auto Line = Rest.substr(0, End);
    Rest.remove_prefix(std::min(End + 1, Rest.size()));
    return Line;
}

/// Everything that can be asked of the file.
void ReadAll(const TIniFile& File, std::string_view Section)
{
    for (const auto& Key : File.KeysOf(Section)) {
        Require(File.HasKey(Section, Key));
        const auto Text = File.ReadString(Section, Key, "default");
        try {
            File.ReadBool(Section, Key, false);
        }
        catch (const EConvertError&) {
            Require(!Text.empty());
        }
    }
}

void CheckWriting(TIniFile& File, std::string_view Section, std::string_view Key, std::string_view Value)
{
    const auto Before = File.Text();
    try {
        File.WriteString(Section, Key, Value);
    }
    catch (const EFileError&) {
        Require(File.Text() == Before);
        return;
    }
    const auto After = File.Text();
    Require(File.ReadString(Section, Key, {}) == Value && File.HasKey(Section, Key));
    const TMemoryFile Saved(After);
    Require(TIniFile(Saved.Name()).ReadString(Section, Key, {}) == Value);
    File.WriteString(Section, Key, Value);
    Require(File.Text() == After);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    std::string_view Rest(reinterpret_cast<const char*>(Data), Size);
    const auto Section = TakeLine(Rest), Key = TakeLine(Rest), Value = TakeLine(Rest);
    const TMemoryFile Bytes(Rest);
    try {
        TIniFile File(Bytes.Name());
        Require(File.Text() == Rest);
        ReadAll(File, Section);
        CheckWriting(File, Section, Key, Value);
    }
    catch (const EFileError&) {                     // no 8-bit text
        Require(Rest.find('\0') != Rest.npos);
    }
    return 0;
}

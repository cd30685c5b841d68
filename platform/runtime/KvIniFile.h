// KvIniFile - settings in sections of key=value lines, read and edited in place.
//
//   file := [EF BB BF] line*                         a byte order mark is kept
//   line := "[" section "]" | key "=" value | other  comments and whatever else are kept as they stand
//
// A line ends in CR LF, LF or CR. Blanks around a section, a key and a value are no part of them. A
// value in quotes, double or single, loses one pair: so a value keeps blanks at its ends.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv {

enum TIniOpening {
    ioExisting,                                     ///< A file that is not there is an error.
    ioOpenOrCreate                                  ///< It is taken for empty, and made when it is saved.
};

/// The whole file in memory; UpdateFile saves it. Names are compared without regard to the case of
/// ASCII letters; of several sections, or keys of a section, with the same name the first one counts.
/// Text is 8-bit in whatever code page it has.
class TIniFile
{
public:
    static constexpr std::size_t MaxSize = std::size_t{16} << 20; ///< Bytes of a file.

    /// Raises EFileError when the file cannot be read, is larger than MaxSize or is no 8-bit text.
    explicit TIniFile(std::string FileName, TIniOpening Opening = ioExisting);

    const std::string& FileName() const { return FFileName; }
    bool HasSection(std::string_view Section) const { return FindSection(Section) != nullptr; }
    bool HasKey(std::string_view Section, std::string_view Key) const
    {
        return FindLine(Section, Key) != nullptr;
    }
    /// The keys of a section as they are spelled, in the order in which they stand there.
    std::vector<std::string> KeysOf(std::string_view Section) const;

    // A missing key yields `Default`; for numbers and truths so does a key without a value. What is
    // neither raises EConvertError that names file, section and key.
    std::string ReadString(std::string_view Section, std::string_view Key, std::string_view Default) const;
    int ReadInteger(std::string_view Section, std::string_view Key, int Default) const;
    /// Any number but 0 is true.
    bool ReadBool(std::string_view Section, std::string_view Key, bool Default) const;

    // A new key goes to the end of its section, a new section to the end of the file, with line ends as
    // the file has them (CR LF in a new one). All other lines stay byte for byte. Raises EFileError for
    // text that could not be read back: a line break or a zero byte, or a name that would be taken for
    // something else.
    void WriteString(std::string_view Section, std::string_view Key, std::string_view Value);
    void WriteInteger(std::string_view Section, std::string_view Key, int Value);
    void WriteBool(std::string_view Section, std::string_view Key, bool Value); ///< "1" or "0"

    /// Removes the section with all that stands in it; does nothing without one.
    void EraseSection(std::string_view Section);

    /// The file as it stands here.
    std::string Text() const;
    /// Saves what was changed, all of it or nothing: see ReplaceFileBytes. Raises EFileError.
    void UpdateFile();

    /// Raises EConvertError "Cannot read file "%s": [%s] %s: %s", for a value that has no meaning.
    [[noreturn]] void RefuseValue(std::string_view Section, std::string_view Key,
                                  std::string_view Reason) const;

private:
    struct TSection
    {
        std::string Name;
        std::vector<std::string> Lines;             // each with its end; the heading, if any, is the first
        std::string Blanks;                         // the blank lines after them, before the next section
        std::unordered_map<std::string, std::size_t> Keys; // upper-cased, to an index of Lines
    };

    void Parse(std::string_view Text);
    void AddLine(std::string_view Line);
    TSection& AddSection(std::string_view Name);
    const TSection* FindSection(std::string_view Name) const;
    const std::string* FindLine(std::string_view Section, std::string_view Key) const;
    void CheckText(std::string_view Section, std::string_view Key, std::string_view Value) const;
    TSection& SectionToWrite(std::string_view Name);
    void EndLastLine();

    std::string FFileName;
    std::vector<TSection> Sections;                 // the first holds what stands before any heading
    std::unordered_map<std::string, std::size_t> SectionsByName; // upper-cased
    std::string Mark;                               // the byte order mark
    std::string LineEnd;
    bool Changed = false;
};

} // namespace kv

// KvXmlTokens - the older way to cut a data packet into tags: at each ">".
//
//   packet := ... "<FIELDS>" token* "</FIELDS>" ... "<ROWDATA>" token* "</ROWDATA>" ...
//   token  := all after the token before up to and with the next ">", line breaks dropped, trimmed
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The records of a packet, first to last, once: every token of a section of rows.
class TKvXmlTokens
{
public:
    /// Keeps a view of `Text`, which must outlive the object and its tokens. `RowTag`, when not empty, is
    /// another name for ROWDATA, in whatever case.
    TKvXmlTokens(std::string_view Text, std::string_view RowTag);

    /// Moves to the next record. False past the last one, and on every later call.
    bool Next();

    /// The current record; it may hold line breaks, which are no part of it.
    std::string_view Token() const { return FToken; }
    /// What stands between the first two quotes of each token of the FIELDS sections so far.
    const std::vector<std::string>& FieldNames() const { return FFieldNames; }

private:
    bool IsRow();
    void AddFieldName();

    const std::string RowOpen, RowClose;            // upper-cased; empty: none
    std::string_view Rest;                          // of the text
    std::string_view FToken;
    bool InFields = false;
    bool InRows = false;
    std::vector<std::string> FFieldNames;
};

/// `Token` without its line breaks: itself when it has none, else a view of `Buffer`.
std::string_view WithoutLineBreaks(std::string_view Token, std::string& Buffer);

} // namespace kv

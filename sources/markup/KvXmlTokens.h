// KvXmlTokens - the older way to cut a data packet into tags: at each ">".
//
//   packet := ... "<FIELDS>" token* "</FIELDS>" ... "<ROWDATA>" token* "</ROWDATA>" ...
//   token  := all after the token before up to and with the next ">", line breaks dropped, trimmed
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvXmlFields.h"

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
    /// The tokens of the FIELDS sections so far, called by what stands between their first two quotes.
    const std::vector<TKvXmlField>& Fields() const { return FFields; }

private:
    bool IsRow();
    void AddField();

    const std::string RowOpen, RowClose;            // upper-cased; empty: none
    std::string_view Rest;                          // of the text
    std::string_view FToken;
    bool InFields = false;
    bool InRows = false;
    std::vector<TKvXmlField> FFields;
};

/// `Token` without its line breaks: itself when it has none, else a view of `Buffer`.
std::string_view WithoutLineBreaks(std::string_view Token, std::string& Buffer);

} // namespace kv

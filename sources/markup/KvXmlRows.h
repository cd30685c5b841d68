// KvXmlRows - the records of a data packet, cut by the older rules or as XML.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvXMLExtensions.h"
#include "KvXmlAttributes.h"
#include "KvXmlElements.h"
#include "KvXmlFields.h"
#include "KvXmlNames.h"
#include "KvXmlTokens.h"

namespace kv {

/// The records of a packet, first to last, once, and the values of their attributes.
class TKvXmlRows
{
public:
    /// Keeps a view of `Text`, which must outlive the object. `RowTag`, `FileName` and `TextOffset` are as
    /// TKvXmlElements has them.
    TKvXmlRows(std::string_view Text, TKvIXMLExtensions Extensions, std::string_view RowTag,
               std::string_view FileName, std::int64_t TextOffset = -1);

    /// Moves to the next record. False past the last one, and on every later call. Raises Exception for
    /// what is no XML, with xxTagSyntax.
    bool Next(TKvXmlRowUse Use = ruValues);

    /// A number for a name of attributes, the same as long as the object lives.
    std::size_t AddColumn(std::string_view Name);
    /// The value of a column in the current record, which was asked for with ruValues: a view until the next
    /// Next(). Nothing when the record has no such attribute or, by the older rules, none that a quote ends.
    /// Raises EFormatError for an entity without bounds.
    std::optional<std::string_view> Value(std::size_t Column);

    /// The names of the attributes of the current record, asked for with ruValues, as views of the text; by
    /// the older rules what stands between the last blank and the sign.
    std::vector<std::string_view> AttributeNames();
    /// The same, added to `Names`; not by the older rules.
    void AddNames(TKvXmlNames& Names) const { Names.Add(Elements.Attributes()); }

    const std::vector<TKvXmlField>& Fields() const; ///< That FIELDS sections have declared so far.
    /// Where the current record begins in the text: at its tag, by the older rules at the text before it.
    const char* Begin() const;
    // As TKvXmlElements has them; none by the older rules.
    std::int64_t Dropped() const { return Elements.Dropped(); }
    std::int64_t LeftOut() const { return Elements.LeftOut(); }

private:
    const TKvXmlAttributes& Attributes();
    void CutAttributes();
    std::string_view ContentText(std::string_view Content, std::string& Buffer) const;
    void Decode(std::string_view Value, bool IsAttribute, std::string& Text) const;
    std::size_t DecodeReferenceIn(std::string_view Value, std::size_t& StepsLeft, std::string& Text) const;

    const TKvIXMLExtensions Extensions;
    const bool Syntax;
    const bool References;
    TKvXmlTokens Tokens;
    TKvXmlElements Elements;
    const char* TextEnd;                            // of the text that values are views of
    bool IsCut = false;                             // the attributes are those of the current token
    TKvXmlAttributes TokenAttributes;
    std::string TokenText;                          // without its line breaks
    std::vector<TKvXmlColumn> Columns;
    std::deque<std::string> Buffers;                // by column, of values that are not views of the file
};

} // namespace kv

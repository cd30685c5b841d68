// KvXmlElements - the records of a data packet that is read as XML 1.0.
//
//   packet := ... <FIELDS> (<FIELD attrname="..."/>)* </FIELDS> ...
//             <ROWDATA> (<ROW name="value" .../>)* </ROWDATA>
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KvXMLExtensions.h"
#include "KvXmlAttributes.h"
#include "KvXmlEntities.h"
#include "KvXmlFields.h"

namespace kv {

/// What is asked of a record.
enum TKvXmlRowUse {
    ruCount,                                        ///< That it is there.
    ruValues                                        ///< Values of its attributes.
};

/// The records of a packet, first to last, once: the elements directly inside the element ROWDATA.
///
/// Raises Exception where the text is no XML, or ends too early: a record that was cut off must not pass
/// for a whole one. What has no bearing on records is not looked at.
class TKvXmlElements
{
public:
    static constexpr std::size_t MaxDepth = 1000;   ///< Elements inside each other.
    static constexpr std::size_t MaxFields = 2048;  ///< More than any table has.

    /// Keeps a view of `Text`, which must outlive the object and the attributes; `FileName` is for messages.
    /// `TextOffset` is where it begins there, -1 when it was converted. `RowTag`, when not empty, is the name
    /// of the element to look into instead, in whatever case.
    TKvXmlElements(std::string_view Text, TKvIXMLExtensions Extensions, std::string_view RowTag,
                   std::string_view FileName, std::int64_t TextOffset);

    /// Moves to the next record. False past the last one, and on every later call.
    bool Next(TKvXmlRowUse Use);

    /// Of the current record, with ruValues; with xxElementValues elements inside it, too.
    const TKvXmlAttributes& Attributes() const { return FAttributes; }
    /// True when the value stands in an element: its text may hold comments and character data.
    static bool IsContent(std::string_view Value) { return Value.data()[-1] == '>'; }
    const char* Begin() const { return FBegin; }    ///< Of the tag of the current record, in the text.
    /// The elements directly inside a FIELDS so far, called by the attribute "attrname", else the first.
    const std::vector<TKvXmlField>& Fields() const { return FFields; }
    const TKvXmlEntities& Entities() const { return FEntities; } ///< That the document type declares.
    /// Records so far that others have replaced, or that are deleted; see xxRowState.
    std::int64_t Dropped() const { return FDropped; }
    /// Elements inside records that are no values, as they hold elements or come twice; with ruValues.
    std::int64_t LeftOut() const { return FLeftOut; }

private:
    const char* FindBehind(const char* From, std::string_view Mark) const;
    bool StartsWith(std::string_view Mark) const;
    const char* SkipBlanks(const char* From) const
    {
        while (From != End && IsBlank(*From))
            ++From;
        return From;
    }
    static bool IsBlank(char Char) { return Char == ' ' || Char == '\n' || Char == '\r' || Char == '\t'; }
    const char* FindTag();
    void SkipDeclaration();
    void ReadDoctype();
    const char* ReadSubset(const char* From);
    const char* ReadDeclared(const char* From);
    bool OpenElement();
    bool ReadTag(bool KeepsThem);
    void ReadAttributes(bool KeepsThem);
    void CloseElement();
    void ReadContent();
    void AddContent(std::string_view Name, std::string_view Text);
    std::string_view ReadName();
    bool IsRowSection(std::string_view Name) const;
    bool IsRecord() const;
    void AddField();
    [[noreturn]] void Refuse(const std::string& Reason) const;
    [[noreturn]] void RefuseAttribute(std::string_view Name, const char* Reason);

    const bool DropsReplaced;
    const bool ReadsContent;
    const std::string RowTag;
    const std::string FileName;
    const std::int64_t TextOffset;
    const char* const TextFirst;
    const char* const End;
    const char* Pos;
    const char* FBegin;
    std::vector<std::string_view> Open;             // names of the elements that are open
    std::size_t FieldsDepth = 0;                    // Open.size() inside a FIELDS; 0: in none
    std::size_t RowsDepth = 0;                      // the same of rows
    bool KeepsAttributes = false;
    bool HasRoot = false;                           // an element was met
    bool IsReplaced = false;                        // the current tag says that it is no record
    std::string_view TagName;                       // of the current tag
    TKvXmlAttributes FAttributes;                   // of the current tag
    std::vector<TKvXmlField> FFields;
    TKvXmlEntities FEntities;
    std::int64_t FDropped = 0;
    std::int64_t FLeftOut = 0;
};

} // namespace kv

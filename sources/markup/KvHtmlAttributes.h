// KvHtmlAttributes - the attributes of a tag, cut as browsers do.
//
//   tag := "<" name (attribute | blank | "/")* ">"
//   attribute := name [blank* "=" blank* (quote any quote | any up to a blank or ">")]
#pragma once

#include <string_view>

namespace kv {

/// One attribute after the other.
class TKvHtmlAttributes
{
public:
    /// Begins behind the "<" of a tag, or anywhere in its name. A quote that nothing before `End` closes
    /// begins no value: such a one is the last of its kind.
    TKvHtmlAttributes(const char* Begin, const char* End);

    /// Moves to the next attribute. False past the last one.
    bool Next();

    std::string_view Name() const { return FName; }
    std::string_view Value() const { return FValue; } ///< Without its quotes; empty when there is none.
    /// After Next() was false: at the ">" of the tag, or the end of the text.
    const char* Pos() const { return FPos; }

private:
    void ReadValue();

    const char* FPos;
    const char* const End;
    std::string_view FName, FValue;
};

} // namespace kv

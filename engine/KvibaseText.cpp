// The layout of a text source: each named choice and the character behind it are kept in step.
#include "Kvibase.h"

#include <utility>

namespace kv {

void TKvImportBaseComponent::SetFieldDelimiter(TKvIFieldDelimiter Value)
{
    FFieldDelimiter = Value;
    switch (Value) {
    case fdNone:      FFieldDelimiterCustom = '\0'; break;
    case fdTab:       FFieldDelimiterCustom = '\t'; break;
    case fdSemicolon: FFieldDelimiterCustom = ';'; break;
    case fdComma:     FFieldDelimiterCustom = ','; break;
    case fdSpace:     FFieldDelimiterCustom = ' '; break;
    case fdCustom:    break;
    }
}

void TKvImportBaseComponent::SetFieldDelimiterCustom(char Value)
{
    FFieldDelimiterCustom = Value;
    switch (Value) {
    case '\0': FFieldDelimiter = fdNone; break;
    case '\t': FFieldDelimiter = fdTab; break;
    case ' ':  FFieldDelimiter = fdSpace; break;
    case ',':  FFieldDelimiter = fdComma; break;
    case ';':  FFieldDelimiter = fdSemicolon; break;
    default:   FFieldDelimiter = fdCustom; break;
    }
}

void TKvImportBaseComponent::SetTextQualifier(TKvITextQualifier Value)
{
    FTextQualifier = Value;
    switch (Value) {
    case tqNone:   FTextQualifierCustom = '\0'; break;
    case tqQuot:   FTextQualifierCustom = '"'; break;
    case tqApos:   FTextQualifierCustom = '\''; break;
    case tqCustom: break;
    }
}

void TKvImportBaseComponent::SetTextQualifierCustom(char Value)
{
    FTextQualifierCustom = Value;
    switch (Value) {
    case '\0': FTextQualifier = tqNone; break;
    case '"':  FTextQualifier = tqQuot; break;
    case '\'': FTextQualifier = tqApos; break;
    default:   FTextQualifier = tqCustom; break;
    }
}

void TKvImportBaseComponent::SetRecordSeparator(TKvIRecordSeparator Value)
{
    FRecordSeparator = Value;
    switch (Value) {
    case rsCRLF:   FRecordSeparatorCustom = "\r\n"; break;
    case rsCR:     FRecordSeparatorCustom = "\r"; break;
    case rsLF:     FRecordSeparatorCustom = "\n"; break;
    case rsCustom: break;
    }
}

void TKvImportBaseComponent::SetRecordSeparatorCustom(std::string Value)
{
    if (Value == "\r\n")
        FRecordSeparator = rsCRLF;
    else if (Value == "\r")
        FRecordSeparator = rsCR;
    else if (Value == "\n")
        FRecordSeparator = rsLF;
    else
        FRecordSeparator = rsCustom;
    FRecordSeparatorCustom = std::move(Value);
}

} // namespace kv

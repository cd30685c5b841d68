// KvXMLExtensions - rules of XML that take the place of older ones.
#pragma once

#include "KvSet.h"

namespace kv {

enum TKvIXMLExtension {
    /// Tags are cut as XML has it: values stand in either quotes, with blanks around "=" and ">" inside;
    /// a line break or tab in one reads as a blank; the records are the elements directly inside the
    /// element ROWDATA or, when TableName is set, inside each of that name, however they are closed;
    /// comments and what else is no tag are skipped; fields are named by "attrname". What is no XML is
    /// an error. Without it tags end at the first ">", line breaks are dropped, and every tag of a
    /// section is a record.
    xxTagSyntax,
    /// The name of an attribute is that of its column. Without it it only has to end so.
    xxWholeNames,
    /// "&amp;" and its like stand for their characters, and the names of entities that the file declares in
    /// itself for their texts. Without it they are text.
    xxReferences,
    /// The file says how it is encoded: by a byte order mark or its XML declaration. Without it bytes are
    /// taken as they are, up to the first zero byte.
    xxEncoding,
    /// A record without the attribute has no value. Without it the attribute's name is imported.
    xxMissingIsNull,
    /// Records that are kept only as a log of changes, by their attribute RowState deleted or replaced by
    /// others, are none, and RowState is no column. Without it they are records. Needs xxTagSyntax.
    xxRowState,
    /// Elements inside a record that hold text alone are values, as attributes of their names. Without it
    /// they are no part of it. Needs xxTagSyntax.
    xxElementValues,
    /// The "fieldtype" of a column says how its values are written: "20220614", "19:22:37425", "1234.5",
    /// "TRUE", bytes in base64. Without it they are written as in all other sources.
    xxFieldTypes
};
using TKvIXMLExtensions = TSet<TKvIXMLExtension>;

} // namespace kv

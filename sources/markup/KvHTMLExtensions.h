// KvHTMLExtensions - rules of today's HTML that take the place of older ones.
#pragma once

#include "KvSet.h"

namespace kv {

enum TKvIHTMLExtension {
    /// Tags are cut as HTML has it: a name ends at any white space, a quoted ">" is part of its value,
    /// a "<" that begins no tag is text, as is what follows a comment or a ">" in a cell. End tags of
    /// cells and rows may be left out; a table inside a cell is part of the cell's text; scripts and
    /// styles are skipped. Without it names end at a blank, tags at the first ">", cells at the next
    /// "</TD", and the first "</TABLE" ends a table.
    xhTagSyntax,
    /// Header cells, marked with TH, are cells. Without it they are none.
    xhHeaderCells,
    /// "&amp;" and its like stand for their characters. Without it they are text.
    xhReferences,
    /// White space reads as a page shows it: runs of it are one blank, none stands at the ends, a
    /// no-break space is a blank, <BR> and the borders of paragraphs are line breaks. Without it white
    /// space stays, except that none is kept that follows a tag.
    xhFoldedSpace,
    /// A cell with COLSPAN or ROWSPAN holds its text in every column and row that it covers. Without it
    /// it is one cell of one row, and those behind it count from there.
    xhSpans,
    /// The file says how it is encoded: by a byte order mark, a META tag or an XML declaration. Without
    /// it bytes are taken as they are, up to the first zero byte.
    xhEncoding,
    /// "Field1", "Field2", ... name the cells of a row; with RowFirst above 1 the cells of row 1 name those
    /// below them, too. Any other name is an error. Without it the first mapped column is the first cell
    /// and so on, whatever its name.
    xhHeaderNames,
    /// An empty cell is no value. Without it the column's name is imported for it.
    xhEmptyIsNull
};
using TKvIHTMLExtensions = TSet<TKvIHTMLExtension>;

} // namespace kv

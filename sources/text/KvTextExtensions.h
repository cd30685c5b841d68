// KvTextExtensions - rules of today's text files that take the place of older ones.
#pragma once

#include "KvSet.h"

namespace kv {

enum TKvITextExtension {
    /// RFC 4180: only a value that begins with the qualifier is qualified; inside it a doubled qualifier
    /// stands for one, and delimiters and line ends are text. A qualified value that is never closed is
    /// an error. Without it every qualifier switches, doubled ones stay doubled, and a value loses the
    /// delimiter that it ends in.
    xtDoubledQualifiers,
    /// Delimited lines have any length. Without it a line over 9999 characters ends the run.
    xtLongLines,
    /// A byte order mark is no part of the first value; one of UTF-16 also says how the text is to be
    /// read. Without it the mark is text.
    xtByteOrderMark,
    /// Blanks that fill a fixed column up are no part of its value. Without it they are.
    xtFixedPadding
};
using TKvITextExtensions = TSet<TKvITextExtension>;

} // namespace kv

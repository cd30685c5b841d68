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
    /// read, and positions of fixed lines then count its characters. What it says wins over the character
    /// set. Without it the mark is text.
    xtByteOrderMark,
    /// Blanks that fill a fixed column up are no part of its value. Without it they are.
    xtFixedPadding,
    /// A record separator of several characters is one: only all of it ends a record. Not so CR LF, of
    /// which each ends a line alone too. Without it any of its characters does.
    xtWholeSeparator,
    /// A first line "sep=;" says by which character values are delimited, whatever the setting, and is no
    /// line of the file. Without it that is a line like any other.
    xtDelimiterLine,
    /// Ctrl+Z at the end of the file, with which MS-DOS ended files, is no text. Without it the last line has
    /// it.
    xtEndOfFileMark
};
using TKvITextExtensions = TSet<TKvITextExtension>;

} // namespace kv

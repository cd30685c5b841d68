// KviOwnSettings - the settings that only some sources have, and today's rules, in a section of their own
// of a specification. The engine knows none of those sources: it asks for their published properties.
//
//   [Extensions]
//   DoubledQualifiers=1                              an element of the set property "Extensions"
//   TimedProgress=1                                  an element of "RunExtensions"
//   SheetIndex=1                                     a place, when it is not 0 or empty
#pragma once

namespace kv {

class TIniFile;
class TPersistent;

/// Writes those of `Component`. A setting that is as it always was (an element that its set lacks, 0, an
/// empty text) is written only over one that the file has.
void WriteOwnSettings(TIniFile& File, const TPersistent& Component);

/// Reads them back. Without the section all stay as they are; with it the sets hold what is named there.
/// A component without a property "Extensions" takes what it knows; any other raises EConvertError for a
/// setting that it does not have, since its records would not be what was saved.
void ReadOwnSettings(const TIniFile& File, TPersistent& Component);

/// Makes the file one without such settings: those of another kind of source cannot be read.
void EraseOwnSettings(TIniFile& File);

} // namespace kv

// KviTypes - the choices of an import. Ordinals are part of saved specifications.
#pragma once

#include <limits>

#include "KvSet.h"

namespace kv {

/// The kind of source that a component handles. -1 is a value too: that of a choice which is still open.
enum TTableTypeImport : int { teParadox, teDBase, teText, teHTML, teXLS, teWKS, teQuattro, teXML, teAccess };
using TImportFormatTypes = TSet<TTableTypeImport>;

/// The code page of the source's text.
enum TKvICharacterSet { csiANSI_WINDOWS, csiASCII_MSDOS };

/// What a record does to the destination.
enum TImportMode {
    imAppend,                                       ///< Adds every record.
    /// Changes the record with the same key, if there is one.
    imUpdate,
    imAppendUpdate,                                 ///< Changes the record with the same key, else adds one.
    /// Deletes the record with the same key, if there is one.
    imDelete,
    imCopy                                          ///< Empties the destination, then adds every record.
};

/// What was done with the current record.
enum TKvIAction { iaUnknown, iaAdd, iaUpdate, iaDelete };

/// How the last run ended; irUnknown while it runs.
enum TKvIResult { irUnknown, irExecuted, irCanceled, irFailed };

/// What separates the values of a line.
enum TKvIFieldDelimiter { fdNone, fdCustom, fdTab, fdSemicolon, fdComma, fdSpace };

/// What encloses a value that may hold delimiters and line ends.
enum TKvITextQualifier { tqNone, tqCustom, tqQuot, tqApos };

/// What ends a record of a text file.
enum TKvIRecordSeparator { rsCustom, rsCRLF, rsCR, rsLF };

enum TKvIOption {
    soShowMessage,                                  ///< Without a progress dialog, show the outcome in a box.
    soExtendedStatistic                             ///< The progress dialog shows the counters.
};
using TKvIOptions = TSet<TKvIOption>;

/// Rules of a run that take the place of older ones.
enum TKvIRunExtension {
    /// A run that fails enables the controls of the destination and lets go of the source, as one does that
    /// is executed. Without it the controls stay disabled, and what the source has loaded stays.
    rxRestoresControls,
    /// The progress dialog is refreshed before the first record, then about every 50 ms, and after the last
    /// one. Without it every UpdateStep records.
    rxTimedProgress,
    /// What is wrong with a number is told by the error of its record. Without it a message box tells it
    /// before.
    rxNoNumberBoxes,
    /// Numbers reach decimal and integer fields and text digit for digit or are refused. A double goes there
    /// as spreadsheets show it, with fifteen digits; whole ones have all of theirs, below 1E21 no exponent.
    /// Integer fields take "2.00", truth and the words of truth. Without it numbers for decimal fields become
    /// doubles, and integer fields take what TField takes.
    rxExactNumbers,
    /// Numbers are read as TryPlainNumber reads them, integers too, and dates also as "2024-01-05T10:20:30Z".
    /// Without it thousand separators are removed wherever they stand, and not from integers.
    rxWrittenForms,
    /// DataFormats are the formats of the process for the length of a run, DateOrder among them. Without it
    /// dates are read in the order that the process has.
    rxFormatsInForce,
    /// A time that belongs to no day is text as such, "36:00:00", and no date. Without it it has a day near
    /// the end of 1899.
    rxTimesAlone,
    /// The OEM code page is that of text. Without it null becomes an empty text and bytes are converted too.
    rxOemTextOnly,
    /// An error counts for what it concerns: one of a value fails its record also as a key and where it
    /// is read or deleted, one of the whole destination ends the run. Without it what happens while a record
    /// is assigned and posted fails that record, all else ends the run.
    rxErrorsByRecord,
    /// The source stands on its first record, and its records are counted, before imCopy empties the
    /// destination. Without it afterwards.
    rxSourceFirst,
    /// What holds no value is no record: a blank line, a line of delimiters alone, a row without values.
    /// Their number is told by a remark. Without it they are records without values.
    rxNoEmptyRecords
};
using TKvIRunExtensions = TSet<TKvIRunExtension>;

/// The order of day, month and year in a date.
enum TKvIDateOrder { doMDY, doDMY, doYMD, doYDM, doDYM, doMYD };

inline constexpr int RowLastMax = std::numeric_limits<int>::max(); ///< RowLast of "to the end".

} // namespace kv

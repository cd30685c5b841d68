// KvTableFile - what a reader of table files answers, whatever the format.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "KvField.h"
#include "KvTableRemark.h"
#include "KvTableText.h"

namespace kv {

class Exception;

/// A table file that is open: its fields, and one record after the other.
class TKvTableFile
{
public:
    TKvTableFile(const TKvTableFile&) = delete;
    TKvTableFile& operator=(const TKvTableFile&) = delete;
    virtual ~TKvTableFile() = default;

    /// The fields in the order of the file, those that programs hide left out.
    const std::vector<TFieldDef>& FieldDefs() const { return Defs; }
    /// The records that First and Next make current; deleted ones do not count.
    virtual std::size_t RecordCount() const = 0;

    // The cursor. Each raises EFormatError where the file ends, or is damaged, before all records were read.
    virtual void First() = 0;
    virtual void Next() = 0;                        ///< Does nothing past the last record.
    virtual bool Eof() const = 0;                   ///< True when no record is current.
    /// The number of the current record, from 1; deleted ones have numbers too.
    virtual std::size_t Number() const = 0;

    /// The value of field `Field`, from 0, in the current record, in the kind that the field's type names:
    /// null when blank or at Eof. Texts and bytes are loans where possible, which hold until the next record;
    /// texts are process text. Raises EFormatError "File "%s", record %d, field '%s': %s" for what has no
    /// meaning in the type ("*****" as a number, a 30th of February) and for what cannot be read.
    TVariant Value(std::size_t Field);

    /// Records behind the one of that number are none, and what is wrong with them does not matter.
    void StopAfter(std::size_t Number) { LastRecord = Number; }

    /// What is odd about the file, as far as it has been read.
    virtual std::vector<TKvTableRemark> Remarks() const;

protected:
    explicit TKvTableFile(const std::string& TableFile) : FileName(TableFile) {}

    /// Adds a field, named without blanks at the ends, "Field3" where nothing is left. Where one before has
    /// its name it gets the first of "_1", "_2", ... that is free. Raises EFormatError
    /// "File "%s", name of field %d: %s" for a name that is no text of the file's code page.
    void AddField(std::string_view StoredName, TFieldType Type, std::size_t Size);

    /// As Value, but raises any Exception with the reason alone.
    virtual TVariant Decode(std::size_t Field) = 0;

    static constexpr std::size_t AllRecords = std::numeric_limits<std::size_t>::max();

    const std::string FileName;
    std::size_t LastRecord = AllRecords;            // by its number
    TKvTableText Text;                              ///< Of the file's code page, to be set before AddField.

private:
    std::string NameOf(std::string_view StoredName);
    [[noreturn]] void RaiseUnreadable(std::size_t Field, const Exception& Error) const;

    std::vector<TFieldDef> Defs;
    std::size_t FirstGuessed = 0;                   // record with a text of no known page; 0: none yet
};

} // namespace kv

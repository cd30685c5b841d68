// KvDataSet - a table of records with a cursor: the destination of every import and the source of
// dataset copies.
//
// The base class owns the states, the record being written, the fields and their checks. A concrete
// dataset opens, moves, reads a value, inserts, updates, deletes and locates.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KvComponent.h"
#include "KvErrorFacts.h"
#include "KvField.h"
#include "KvSet.h"

namespace kv {

struct TKvBulkRun;

enum TDataSetState {
    dsInactive,                                     ///< Closed.
    dsBrowse,                                       ///< Open, nothing being written.
    dsEdit,                                         ///< The current record is being changed.
    dsInsert                                        ///< A new record is being written.
};

enum TLocateOption { loCaseInsensitive, loPartialKey };
using TLocateOptions = TSet<TLocateOption>;

/// The record being written: one value a field, and which of them were assigned.
struct TRecordBuffer
{
    std::vector<TVariant> Values;                   ///< By field index; of meaning where assigned.
    std::vector<std::uint8_t> Assigned;             ///< By field index: 1 when the field was assigned.
};

/// Keeps a handler of changes called; the handler goes with the last copy.
using TDataChangeHandle = std::shared_ptr<const std::function<void()>>;

class TDataSet : public TComponent
{
public:
    using TComponent::TComponent;

    std::string_view ClassName() const override { return "TDataSet"; }

    // Opening. Each raises EDatabaseError or EFileError with the reason.
    void Open();                                    ///< Does nothing when open. Ends on the first record.
    void Close();                                   ///< Drops a record being written.
    bool Active() const { return FState != dsInactive; }
    TDataSetState State() const { return FState; }

    // Fields of the open dataset, in the order of its columns.
    int FieldCount() const { return static_cast<int>(FFields.size()); }
    TField& Fields(int Index) const { return *FFields[static_cast<std::size_t>(Index)]; }
    /// The field of that name without regard to case, or none. Where letters outside ASCII tell fields apart
    /// by their case, the one that is written so.
    TField* FindField(std::string_view FieldName) const;
    /// The table behind the open dataset, however it was opened: two datasets with the same text, which is
    /// not empty, have the same records.
    virtual std::string TableIdentity() const { return {}; }
    /// Raises EDatabaseError "%s: field '%s' not found".
    TField& FieldByName(std::string_view FieldName) const;
    /// The values of several fields of the current record, their names separated by ";": an array from 0,
    /// also for one. Raises EDatabaseError for an unknown field.
    TVariant FieldValues(std::string_view FieldNames);

    // What the dataset is going to have, also while it is closed. One that has to be open to know is opened
    // for the answer, which raises as Open does, and closed again.
    virtual std::vector<TFieldDef> DescribeFields();
    /// The fields that tell its records apart, joined by ";": what the published property "IndexFieldName"
    /// holds; empty when there are none.
    virtual std::string KeyFields();

    // The cursor. Moving posts a record that is being written and was assigned to, as Post does.
    void First();
    /// Past the last record Eof turns true and it stays there.
    void Next();
    bool Eof();                                     ///< True when no record is current.
    int RecordCount();                              ///< All records, up to 2,147,483,647.

    /// Makes the first record current whose fields, named in `KeyFields` and separated by ";", equal the
    /// value or, for several fields, the elements of the array. Null finds null. A value that has no
    /// meaning in its field's type equals no record. False leaves the cursor where it was.
    /// Raises EDatabaseError for an unknown field or a wrong number of values.
    bool Locate(std::string_view KeyFields, const TVariant& KeyValues, TLocateOptions Options = {});

    // Writing. Each raises EDatabaseError in a state that does not allow it.
    void Append();                                  ///< Begins a new record: dsInsert.
    void Edit();                                    ///< Begins to change the current record: dsEdit.
    /// Stores the record being written and makes it current: dsBrowse. When a required field has no
    /// value or the dataset refuses, it raises and the state stays as it was.
    void Post();
    /// Drops the record being written; does nothing without one.
    void Cancel();
    /// Deletes the current record; the one after it becomes current.
    void Delete();

    // Many records in a row. Whoever writes them says so first, and at the end whatever has happened; changes
    // may then be kept back for as long as nobody can see it, and errors come late.
    virtual void BeginBulk(const TKvBulkRun& /*Run*/) {}
    virtual void EndBulk() {}                       ///< Does not raise.
    /// The record that is being written, in the numbers of whoever writes; to be set before it is begun or
    /// deleted. Errors name it as Facts.Record, also those that come late. -1: none.
    std::int64_t RecordTag = -1;

    // While controls are disabled, what listens to changes is not called. Pairs nest.
    void DisableControls() { ++DisableCount; }
    void EnableControls();
    bool ControlsDisabled() const { return DisableCount > 0; }

    /// Calls `Handler` whenever the cursor moved or the records changed, for as long as the handle lives,
    /// after those that were added before. The handle may outlive the dataset.
    [[nodiscard]] TDataChangeHandle AddDataChangeHandler(std::function<void()> Handler);

protected:
    // What a concrete dataset supplies. The base calls it only in a fitting state.
    virtual void InternalOpen() = 0;                ///< Declares the fields with AddField.
    virtual void InternalClose() = 0;               ///< Also after an InternalOpen that raised.
    virtual void InternalFirst() = 0;
    virtual void InternalNext() = 0;
    virtual bool InternalEof() = 0;
    virtual int InternalRecordCount() = 0;
    /// The stored value of the current record, text as a loan where that saves a copy; null at Eof.
    virtual TVariant InternalGetValue(const TField& Field) = 0;
    virtual void InternalInsert(const TRecordBuffer& Written) = 0;
    virtual void InternalUpdate(const TRecordBuffer& Written) = 0;
    virtual void InternalDelete() = 0;
    /// `Values` are of the fields' own kinds; with loPartialKey those of text fields are beginnings.
    virtual bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                TLocateOptions Options) = 0;
    /// How messages call this dataset.
    virtual std::string DisplayName() const;

    /// True when the value of a record is the one that a Locate looks for.
    static bool MatchesKey(const TVariant& Stored, const TVariant& Wanted, TLocateOptions Options);

    void AddField(TFieldDef Def);
    void CheckActive() const
    {
        if (!Active())
            RaiseInactive();
    }
    /// Raises EDatabaseError "<DisplayName>: <Text>".
    [[noreturn]] void Fail(std::string_view Text, TKvErrorFacts Facts = {}) const;

private:
    friend class TField;

    [[noreturn]] void RaiseInactive() const;
    void Shut();
    void CheckBrowseMode();
    void CheckRequired() const;
    template <class TAct> void WriteTagged(TAct Act);
    void BeginRecord(TDataSetState State);
    void EndRecord();
    TVariant FieldValue(const TField& Field);
    /// The place of the field's value, to be filled; it counts as assigned after MarkAssigned.
    TVariant& WritableSlot(const TField& Field)
    {
        if (FState < dsEdit || Field.ReadOnly())
            RaiseNotWritable(Field);
        const auto I = static_cast<std::size_t>(Field.Index());
        Record.Assigned[I] = 0;
        return Record.Values[I];
    }
    void MarkAssigned(const TField& Field)
    {
        Record.Assigned[static_cast<std::size_t>(Field.Index())] = 1;
        Modified = true;
    }
    [[noreturn]] void RaiseNotWritable(const TField& Field) const;
    const std::vector<TField*>& ResolveFields(std::string_view FieldNames);
    void DataChanged()
    {
        if (!ChangeHandlers.empty() && !ControlsDisabled())
            TellChangeHandlers();
    }
    void TellChangeHandlers();

    TDataSetState FState = dsInactive;
    std::vector<std::unique_ptr<TField>> FFields;
    TRecordBuffer Record;
    bool Modified = false;                          // a field of Record was assigned
    std::vector<const TField*> RequiredFields;
    int DisableCount = 0;
    std::vector<std::weak_ptr<const std::function<void()>>> ChangeHandlers;
    std::string ListedNames;                        // the last list of field names that was asked for ...
    std::vector<TField*> ListedFields;              // ... and its fields
    std::vector<TVariant> LocateValues;
};

} // namespace kv

// Kvibase - the import component from which every source derives. It owns everything that does not
// depend on where the data comes from: the destination, mappings, keys, conversion and the run.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvComponent.h"
#include "KvDataSet.h"
#include "KvException.h"
#include "KvStringList.h"
#include "KvVariant.h"
#include "KviDataFormats.h"
#include "KviRunObserver.h"
#include "KviSource.h"
#include "KviStatistic.h"
#include "KviTypes.h"

namespace kv {

class TIniFile;
class TKvImportBaseComponent;

using TKvIAbout = std::string;                      ///< Design-time information; holds no data of an import.

using TNotifyEvent = std::function<void(TKvImportBaseComponent& Sender)>;
/// Before a record is written. `Fields` is always empty. `Values` is the array of mapped fields, each
/// an array of destination name, source column, value and field index; changed values are written.
/// Accept = false skips the record.
using TBeforeRecordEvent = std::function<void(TKvImportBaseComponent& Sender, const std::string& Fields,
                                              TVariant& Values, bool& Accept)>;
/// After a record was handled; Abort = true ends the run as cancelled.
using TAfterRecordEvent = std::function<void(TKvImportBaseComponent& Sender, bool& Abort)>;
/// Lets the user change one value before it is written. `Field` is none for a mapping without a field.
using TGetCellParamsEvent =
    std::function<void(TKvImportBaseComponent& Sender, TField* Field, TVariant& Value)>;
/// A record could not be written; Abort = true ends the run as failed.
using TErrorEvent = std::function<void(TKvImportBaseComponent& Sender, const Exception& Error, bool& Abort)>;

/// Called by every preview loader once per row: `Sender` and `Flag` as given to the loader, the number
/// of columns, the row from 1, and an array of values that the loader describes.
using TPreviewCallback =
    std::function<void(TPersistent* Sender, int ColCount, int Row, bool Flag, const TVariant& Values)>;

/// The abstract import. A source overrides the protocol below; this class drives it record by record.
class TKvImportBaseComponent : public TComponent
{
public:
    explicit TKvImportBaseComponent(TComponent* Owner = nullptr);
    ~TKvImportBaseComponent() override;

    std::string_view ClassName() const override { return "TKvImportBaseComponent"; }
    TPublishedProperties PublishedProperties() const override;

    /// Runs the import. Raises Exception "Property %s wasn't specified." before anything has happened
    /// when a required property is missing, and "%s: %s cannot be called before %s has ended" when it is
    /// called from inside a run or a look of this component; whatever goes wrong later is counted and
    /// reported through the events, Statistic and ErrorMessage. OnAfterExecute, in which it may be called
    /// again, then always comes.
    void Execute();

    /// Writes the settings to the file `FileName` under the name `SpecName`; other sections and keys of
    /// the file stay. With `ShowDialog` the user settles both names first. Does nothing when one of them
    /// is empty. Raises EFileError when a setting or the file cannot be written; the file is then as it was.
    void SaveSpecification(std::string SpecName, std::string FileName, bool ShowDialog);
    /// Reads settings back; an empty `FileName` lets the user pick one. A key that the file lacks leaves
    /// its setting alone, except that Mappings become those of the file, be they none. Raises EFileError
    /// for the file, EConvertError at a value that has no meaning; what was read before it stays.
    void LoadSpecification(std::string FileName);
    /// The same into and from a file that the caller has opened, and saves; no event is fired.
    void WriteSpecification(TIniFile& File, const std::string& SpecName) const;
    void ReadSpecification(const TIniFile& File);
    /// The form in which specifications hold characters: with `ToHex` two digits a byte, else the reverse.
    /// Raises EConvertError for what is not hexadecimal.
    static std::string Translate(std::string_view S, bool ToHex);

    /// Makes the settings that this component and `Source` both publish equal to those of `Source`, by name:
    /// an element of a set too, whatever its prefix. The destination is taken over; handlers and Statistic
    /// are not.
    void TakeSettings(const TKvImportBaseComponent& Source);

    TKvIAbout About;
    bool AnimatedStatus = true;                     ///< Show the progress dialog during Execute.
    TKvICharacterSet CharacterSet = csiANSI_WINDOWS;
    TKvIDataFormats& DataFormats;                   ///< Lives as long as the process.
    /// Key fields, separated by ";" without blanks; each is mapped.
    std::string DatasetKeys;
    TImportMode Mode = imAppend;
    TKvIOptions Options{soShowMessage, soExtendedStatistic};
    std::string TitleStatus = "Importing...";       ///< Caption of the progress dialog.
    TKvIStatistic Statistic;
    TKvIRunExtensions RunExtensions;                ///< Of every source; what concerns one has its own set.

    TErrorEvent OnErrorEvent;
    TGetCellParamsEvent OnGetCellParams;
    TNotifyEvent OnBeforeExecute;
    TNotifyEvent OnAfterExecute;
    TBeforeRecordEvent OnBeforeRecordEvent;
    TAfterRecordEvent OnAfterRecordEvent;
    /// After the search by key, before the record is written.
    TNotifyEvent OnBeforeUpdate;
    TNotifyEvent OnBeforeLoadSpecification;
    TNotifyEvent OnAfterLoadSpecification;
    TNotifyEvent OnBeforeSaveSpecification;
    TNotifyEvent OnAfterSaveSpecification;

    /// The destination. Not owned; forgotten when it is destroyed.
    TDataSet* GetDataSet() const { return FDataSet; }
    void SetDataSet(TDataSet* Value);

    /// Lines "destination field=source column". Blanks at the ends of both are ignored, and so is the
    /// case of the destination; a line without a source is skipped.
    TStrings& Mappings() { return FMappings; }
    const TStrings& Mappings() const { return FMappings; }
    void SetMappings(const TStrings& Value) { FMappings.Assign(Value); } ///< Copies the lines.
    /// The destination and the source of a mapping line, without blanks around them: what stands before and
    /// behind the first "=", or, where `DataSet` has no field of that name, the first "=" before which
    /// stands one that it has.
    static std::pair<std::string_view, std::string_view> SplitMapping(std::string_view Line,
                                                                      const TDataSet* DataSet);
    /// The lines that a run goes by: those of Mappings, or those that it makes for itself while there are
    /// none. Raises what such a run would end by.
    std::vector<std::string> RunMappings();

    /// Why the last run ended as irFailed: the message of the exception that ended it.
    const std::string& ErrorMessage() const { return FError.Message; }
    /// The same with its facts; without a message when the run did not end so.
    const Exception& Error() const { return FError; }
    /// Who is told of every record of the runs that follow; none by default. Not owned.
    void SetObserver(TKvIRunObserver* Value) { Observer = Value; }

    /// Where the current record stands in its source.
    virtual TKvISourcePosition SourcePosition() const;
    /// The same for messages: "record 17", "line 18".
    std::string RecordPlace() const { return SourcePosition().Text(); }
    /// The current record as it stands in the source: the bytes of a line of text, else an array of values by
    /// column. Null when there is none.
    virtual TVariant SourceRecord() { return Null; }

    // Looking at the source without importing, by the code of a run. No event is fired, nothing is counted.

    /// Columns and first rows as a run would read them. Raises what such a run would end by, but for values
    /// that cannot be read; an Exception with the rule erCancelled when the user or the observer cancels; and
    /// as Execute does inside a run or another look. What was loaded for it is kept for the next look, and
    /// for the run where that loads the same.
    TKvISourceView Look(const TKvISourceLook& What);
    /// What a mapping to `Wanted` means, written in any case, where `Columns` were shown.
    virtual TKvISourceName ResolveName(const std::string& Wanted,
                                       const std::vector<TKvISourceColumn>& Columns) const;
    /// Lets go of what a look has kept.
    virtual void EndLook() {}
    /// The parts of the file, of which a run imports one; none where the file is the table. Raises what
    /// opening the source raises.
    virtual std::vector<TKvISourcePart> SourceParts() { return {}; }
    /// Lets the part `Index`, from 0, of SourceParts() be the one that is imported.
    virtual void SelectPart(int Index, const TKvISourcePart& Part);
    /// What is odd about what was loaded last, or about the last run.
    virtual std::vector<TKvISourceRemark> SourceRemarks() const { return {}; }
    /// What a source calls its records: "line".
    virtual std::string_view PositionUnit() const { return "record"; }

    /// The published property "IndexFieldName" of `DataSet`, empty when its class has none.
    static std::string GetKeyList(const TDataSet* DataSet);
    /// The dataset's property "TableName", else the text of its property "SQL", else nothing.
    std::string GetTableName() const;

protected:
    // The source protocol and the run. A run calls NotDefined, DetectAutoMapping when Mappings are empty,
    // and Prepare, which calls BeforeImport, BuildFieldMapping, BuildArrayIntersection, GoFirst and
    // GetTotalCount; for each record NeedMore, LoadRecord and GoNext; at last AfterImport.
    virtual void Prepare();                         ///< The whole loop.
    virtual void BeforeImport() {}                  ///< Opens and loads the source.
    /// Frees what BeforeImport loaded; skipped by an exception.
    virtual void AfterImport() {}
    virtual void BuildArrayIntersection();
    virtual void BuildFieldMapping();
    /// Fetches and converts the mapped values; false skips the record.
    virtual bool LoadRecord();
    virtual void GoFirst() {}
    virtual void GoNext() {}
    virtual bool NeedMore() { return false; }       ///< True while there is a current record.
    /// Records available; the run clips it by RowFirst and RowLast.
    virtual int GetTotalCount() { return 0; }
    virtual TVariant GetValues(std::string_view) { return Null; }
    /// The value that `Source`, the right side of a mapping line, names in the current record. Text may
    /// be a loan that holds until GoNext.
    virtual TVariant GetFieldValue(const TVariant& Source) { return Source; }
    /// The same, converted to the type of the destination field `FieldIndex` (-1: none).
    virtual TVariant GetParsedValue(const TVariant& Source, int FieldIndex);
    virtual bool FieldIsTruncated() const { return false; } ///< Source names are short: see ShortName.
    /// True when a required property is missing, which `PropName` then names.
    virtual bool NotDefined(std::string& PropName);
    virtual void DetectAutoMapping();               ///< Fills Mappings.

    // A look, in the order in which it calls them; GoFirst, NeedMore, LoadRecord, GetFieldValue and GoNext of
    // the run come between, AfterLook last, also after an exception.
    virtual void BeforeLook(const TKvISourceLook& What); ///< Opens the source, as far as `What` needs it.
    /// The columns that the source offers, named by row `HeaderRow` where it takes its names from one.
    virtual std::vector<TKvISourceColumn> SourceColumns(int HeaderRow);
    /// Values that the current record holds; -1: one for each column.
    virtual int RecordWidth() const { return -1; }
    virtual void AfterLook() { AfterImport(); }
    bool IsLooking() const { return Activity == acLooking; } ///< No run, but a look at the source.
    /// True when texts are of the OEM code page: by CharacterSet, unless the source says otherwise.
    virtual bool IsOemText() const { return CharacterSet == csiASCII_MSDOS; }

    // What sources and the run use.
    /// What a header says as the title of a column: without blanks at its ends, of the OEM page where the
    /// source is.
    std::string TitleText(std::string_view Header) const;
    /// The first characters of a column's name, as many as sources with short names keep of one.
    static std::string_view ShortName(std::string_view Column);
    /// A column's name in a mapping line as a run takes it.
    std::string_view SourceName(std::string_view Given) const
    {
        return FieldIsTruncated() ? ShortName(Given) : Given;
    }
    /// False once the user or the observer has cancelled. Lets a click on Cancel be seen, for what takes long
    /// before the first record; that costs too much to be asked for every row.
    bool KeepsRunning() const;
    /// Adds a line to Mappings for each field of the destination for which `SourceOf` gives the name of a
    /// source column; an empty name is none.
    void MapFields(const std::function<std::string(const TField& Field)>& SourceOf);
    void FillKey4Locate();
    void FillKey4Values();
    /// Position of the first mapped field whose source column is `Source`, or -1.
    int GetFieldItem(std::string_view Source) const;
    /// Counts an error of the current record and offers it to the observer and to OnErrorEvent. Called while
    /// `Error` is handled, which it raises again when one of them ends the run, and in any case during a
    /// look.
    void RecordFailed(const Exception& Error);
    /// With `Convert`, `Text` from the OEM code page to the ANSI code page.
    static std::string UECode(bool Convert, std::string_view Text);

    // Settings that the sources which use them publish.
    TTableTypeImport TableType = teText;
    std::string SourceFileName;
    TKvIFieldDelimiter GetFieldDelimiter() const { return FFieldDelimiter; }
    void SetFieldDelimiter(TKvIFieldDelimiter Value);
    char GetFieldDelimiterCustom() const { return FFieldDelimiterCustom; }
    void SetFieldDelimiterCustom(char Value);
    TKvITextQualifier GetTextQualifier() const { return FTextQualifier; }
    void SetTextQualifier(TKvITextQualifier Value);
    char GetTextQualifierCustom() const { return FTextQualifierCustom; }
    void SetTextQualifierCustom(char Value);
    TKvIRecordSeparator GetRecordSeparator() const { return FRecordSeparator; }
    void SetRecordSeparator(TKvIRecordSeparator Value);
    const std::string& GetRecordSeparatorCustom() const { return FRecordSeparatorCustom; }
    void SetRecordSeparatorCustom(std::string Value);
    bool Fixed = false;
    int RowFirst = 1;
    int RowLast = RowLastMax;

    void Notification(TComponent& Component, TOperation Operation) override;

public:
    /// Default extension of the source's files; each source class has its own.
    static std::string Extension() { return ".KVI"; }
    /// Entries of a file dialog, "description|pattern" pairs separated by "|".
    static std::string FillFileFilters() { return "All files (*.*)|*.*"; }

protected:
    /// `Extension` of the class that is being constructed goes into SourceFileName.
    TKvImportBaseComponent(TComponent* Owner, TTableTypeImport Type, std::string_view Extension);

private:
    /// One mapped field during a run.
    struct TMappedField
    {
        std::string Name;                           // destination field, upper-cased
        TVariant Source;                            // the source's name of the column
        TVariant Value;                             // of the current record, converted
        int Index = -1;                             // into DestFields; there: field of the dataset
    };
    using TMappedFields = std::vector<TMappedField>;

    enum TActivity { acIdle, acRunning, acLooking };
    class TActive;                                  // for the length of a run or a look

    static constexpr char MsgImporting[] = "Importing..."; // status of the progress dialog

    bool IsKeyMode() const { return Mode == imUpdate || Mode == imAppendUpdate || Mode == imDelete; }
    void CheckRequired();
    std::string Run();                              // the guarded part of Execute; the final message
    void ShowOutcome(const std::string& Outcome);
    void Release();
    void WriteCommon(TIniFile& File, const std::string& SpecName) const;
    void ReadCommon(const TIniFile& File);
    void WriteLayout(TIniFile& File) const;
    void ReadLayout(const TIniFile& File);
    TMappedFields MappedFields() const;             // the usable lines of Mappings
    static void ConvertText(TVariant& Value);
    void TellRecord(Exception& Error, const TMappedField* Mapped = nullptr) const;
    bool TakesOemText(const TField* Field, const TVariant& Value) const;
    void OfferCell(TMappedField& Mapped);
    bool OfferRecord();
    void EmptyDataSet();
    bool IsCanceled() const;
    void ImportRecords();
    void ImportRecord();
    void CheckKeys();
    void ShowProgress() const;
    void StoreRecord();
    void RecordDone(TKvIFate Fate);
    bool TellFailed(const Exception& Error);
    void EndByError(const Exception& Error);
    TKvISourceView LookAtSource(const TKvISourceLook& What);
    void PretendMapping(const TKvISourceColumn& Column);
    TKvISourceRow LookAtRecord(std::vector<TKvISourceColumn>& Columns, bool MayWiden);
    TKvISourceValue LookAtValue(const std::function<TVariant()>& ValueOf, TFieldType DataType);
    const TVariant& BuildSearchValue();
    TKvIAction ActionForRecord() const;
    void WriteRecord(TKvIAction Action);
    void UndoCount(TKvIAction Action);

    TDataSet* FDataSet = nullptr;
    TKvIRunObserver* Observer = nullptr;
    TStrings FMappings;
    Exception FError{std::string()};
    TKvIFieldDelimiter FFieldDelimiter = fdTab;
    char FFieldDelimiterCustom = '\t';
    TKvITextQualifier FTextQualifier = tqQuot;
    char FTextQualifierCustom = '"';
    TKvIRecordSeparator FRecordSeparator = rsCRLF;
    std::string FRecordSeparatorCustom = "\r\n";

    // One run.
    TMappedFields SourceFields;                     // one per mapping line
    TMappedFields KeyFields;                        // one per key of DatasetKeys that is mapped
    TMappedFields DestFields;                       // what is fetched and converted
    TVariant SearchValue;                           // key value, or array of them, for Locate
    TVariant CheckedKey;                            // one of them in the kind of its field
    TActivity Activity = acIdle;
    bool KeyFound = false;
    bool Aborted = false;
    mutable bool Canceled = false;                  // by the observer, which is seen where a source asks too
    bool InRecord = false;                          // it was read, and its fate is open
    bool Counting = false;                          // the counters are those of this run
    bool HasDialog = false;                         // this run has opened the progress dialog
    bool HasSource = false;                         // BeforeImport was called, AfterImport not yet
    bool HasControls = false;                       // of the destination, disabled
    std::int64_t LookedAt = 0;                      // rows of a look, up to the current one
};

} // namespace kv

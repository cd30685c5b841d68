// KvScriptedImport - an import whose records a test wrote down.
#pragma once

#include <string>
#include <vector>

#include "KvCallLog.h"
#include "Kvibase.h"

namespace kv {

/// Column N of a row is called "Field<N>", from 1; any other column is a constant. Texts are loans that
/// end with GoNext. Notes every call of the protocol by its name, GetFieldValue with the column.
class TScriptedImport : public TKvImportBaseComponent
{
public:
    explicit TScriptedImport(TCallLog& Calls) : Log(Calls) {}

    std::string_view ClassName() const override { return "TScriptedImport"; }

    std::vector<std::vector<TVariant>> Rows;
    bool NamesAreShort = false;                     ///< What FieldIsTruncated answers.
    std::vector<TKvISourceColumn> Columns;          ///< What a look is told that the source offers.
    bool RowsWiden = false;                         ///< A look is told how many values each row has.
    /// A record that cannot be loaded is an error of its own.
    bool TellsBadRecords = false;
    /// Times that loading asks whether to go on; if not, all rows go.
    int Polls = 0;

    /// What was lent of the current record is overwritten, as a source does that was moved.
    void EndLoans();

    // What sources see, for tests.
    using TKvImportBaseComponent::Fixed;
    using TKvImportBaseComponent::RowFirst;
    using TKvImportBaseComponent::RowLast;
    using TKvImportBaseComponent::SourceFileName;
    using TKvImportBaseComponent::TableType;
    using TKvImportBaseComponent::GetFieldDelimiter;
    using TKvImportBaseComponent::GetFieldDelimiterCustom;
    using TKvImportBaseComponent::GetRecordSeparator;
    using TKvImportBaseComponent::GetRecordSeparatorCustom;
    using TKvImportBaseComponent::GetTextQualifier;
    using TKvImportBaseComponent::GetTextQualifierCustom;
    using TKvImportBaseComponent::SetFieldDelimiter;
    using TKvImportBaseComponent::SetFieldDelimiterCustom;
    using TKvImportBaseComponent::SetRecordSeparator;
    using TKvImportBaseComponent::SetRecordSeparatorCustom;
    using TKvImportBaseComponent::SetTextQualifier;
    using TKvImportBaseComponent::SetTextQualifierCustom;
    using TKvImportBaseComponent::GetFieldItem;
    using TKvImportBaseComponent::GetParsedValue;
    using TKvImportBaseComponent::GetValues;
    using TKvImportBaseComponent::IsLooking;
    using TKvImportBaseComponent::KeepsRunning;
    using TKvImportBaseComponent::MapFields;
    using TKvImportBaseComponent::UECode;

protected:
    void BeforeImport() override;
    void AfterImport() override;
    void BuildArrayIntersection() override;
    void BuildFieldMapping() override;
    bool LoadRecord() override;
    void GoFirst() override;
    void GoNext() override;
    bool NeedMore() override;
    int GetTotalCount() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    bool FieldIsTruncated() const override { return NamesAreShort; }
    bool NotDefined(std::string& PropName) override;
    void DetectAutoMapping() override;
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    int RecordWidth() const override;
    void AfterLook() override;

private:
    void TakeRow();

    TCallLog& Log;
    bool Dropped = false;                           // cancelled while it loaded
    std::size_t Row = 0;
    std::vector<TVariant> Current;                  // owns what the values of this record lend
};

} // namespace kv

#include "KvScriptedImport.h"

#include "KvNumberText.h"

namespace kv {

void TScriptedImport::EndLoans()
{
    for (auto& Value : Current)
        if (Value.IsString())
            Value.SetText("gone");
}

void TScriptedImport::BeforeImport()
{
    Log.Call("BeforeImport");
    Dropped = false;
    for (int I = 0; I < Polls && !Dropped; ++I)
        Dropped = !KeepsRunning();
}

void TScriptedImport::AfterImport()
{
    Log.Call("AfterImport");
}

void TScriptedImport::BuildArrayIntersection()
{
    Log.Call("BuildArrayIntersection");
    TKvImportBaseComponent::BuildArrayIntersection();
}

void TScriptedImport::BuildFieldMapping()
{
    Log.Call("BuildFieldMapping");
    TKvImportBaseComponent::BuildFieldMapping();
}

bool TScriptedImport::LoadRecord()
{
    try {
        Log.Call("LoadRecord");
        return TKvImportBaseComponent::LoadRecord();
    }
    catch (const Exception& Error) {
        if (!TellsBadRecords)
            throw;
        RecordFailed(Error);
        return false;
    }
}

void TScriptedImport::GoFirst()
{
    Log.Call("GoFirst");
    Row = 0;
    TakeRow();
}

void TScriptedImport::GoNext()
{
    Log.Call("GoNext");
    ++Row;
    TakeRow();
}

bool TScriptedImport::NeedMore()
{
    Log.Call("NeedMore");
    return !Dropped && Row < Rows.size();
}

int TScriptedImport::GetTotalCount()
{
    Log.Call("GetTotalCount");
    return static_cast<int>(Rows.size());
}

TVariant TScriptedImport::GetFieldValue(const TVariant& Source)
{
    const std::string Column = Source.ToText();
    Log.Call("GetFieldValue " + Column);
    const auto Number = Column.starts_with("Field") ? TryTextToInt(Column.substr(5)) : std::nullopt;
    if (!Number || *Number < 1 || *Number > std::ssize(Current))
        return TKvImportBaseComponent::GetFieldValue(Source);
    const TVariant& Value = Current[static_cast<std::size_t>(*Number - 1)];
    return Value.IsString() ? TVariant::Borrow(Value.Text()) : Value;
}

bool TScriptedImport::NotDefined(std::string& PropName)
{
    Log.Call("NotDefined");
    return TKvImportBaseComponent::NotDefined(PropName);
}

void TScriptedImport::DetectAutoMapping()
{
    Log.Call("DetectAutoMapping");
    TKvImportBaseComponent::DetectAutoMapping();
}

void TScriptedImport::BeforeLook(const TKvISourceLook& What)
{
    Log.Call("BeforeLook " + std::to_string(What.Rows));
    TKvImportBaseComponent::BeforeLook(What);
}

std::vector<TKvISourceColumn> TScriptedImport::SourceColumns(int HeaderRow)
{
    Log.Call("SourceColumns " + std::to_string(HeaderRow));
    return Columns;
}

int TScriptedImport::RecordWidth() const
{
    return RowsWiden ? static_cast<int>(Current.size()) : TKvImportBaseComponent::RecordWidth();
}

void TScriptedImport::AfterLook()
{
    Log.Call("AfterLook");
    TKvImportBaseComponent::AfterLook();
}

void TScriptedImport::TakeRow()
{
    Current = Row < Rows.size() ? Rows[Row] : std::vector<TVariant>();
}

} // namespace kv

#include "KvScriptedImport.h"

#include "KvNumberText.h"

namespace kv {

void TScriptedImport::BeforeImport()
{
    Log.Call("BeforeImport");
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
    Log.Call("LoadRecord");
    return TKvImportBaseComponent::LoadRecord();
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
    return Row < Rows.size();
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

void TScriptedImport::TakeRow()
{
    Current = Row < Rows.size() ? Rows[Row] : std::vector<TVariant>();
}

} // namespace kv

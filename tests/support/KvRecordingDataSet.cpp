#include "KvRecordingDataSet.h"

namespace kv {

namespace {

template <class TItems, class TText> std::string Joined(const TItems& Items, TText&& TextOf)
{
    std::string Result;
    bool First = true;
    for (const auto& Item : Items) {
        Result += First ? "" : ";";
        Result += TextOf(Item);
        First = false;
    }
    return Result;
}

std::string TextOf(const TVariant& Value) { return Value.ToText(); }

} // namespace

void TRecordingDataSet::Fill(const std::vector<std::vector<TVariant>>& Records)
{
    Silent = true;
    for (const auto& Values : Records) {
        Append();
        for (std::size_t I = 0; I < Values.size(); ++I)
            Fields(static_cast<int>(I)).SetValue(Values[I]);
        Post();
    }
    First();
    Silent = false;
}

void TRecordingDataSet::Note(const std::string& Entry)
{
    if (!Silent)
        Log.Call(Entry);
}

void TRecordingDataSet::InternalFirst()
{
    Note("first");
    TMemoryDataSet::InternalFirst();
}

void TRecordingDataSet::InternalInsert(const TRecordBuffer& Written)
{
    Note("insert " + Joined(Written.Values, TextOf));
    if (OnInsert && !Silent)
        OnInsert();
    TMemoryDataSet::InternalInsert(Written);
}

void TRecordingDataSet::InternalUpdate(const TRecordBuffer& Written)
{
    std::string Assigned;
    for (std::size_t I = 0; I < Written.Values.size(); ++I)
        if (Written.Assigned[I])
            Assigned += (Assigned.empty() ? "" : ";") + Fields(static_cast<int>(I)).FieldName() + "=" +
                        Written.Values[I].ToText();
    Note("update " + Assigned);
    TMemoryDataSet::InternalUpdate(Written);
}

void TRecordingDataSet::InternalDelete()
{
    Note("delete " + RecordText(*this));
    if (OnDelete)
        OnDelete();
    TMemoryDataSet::InternalDelete();
}

bool TRecordingDataSet::InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                       TLocateOptions Options)
{
    Note("locate " + Joined(Values, TextOf));
    return TMemoryDataSet::InternalLocate(Keys, Values, Options);
}

std::string RecordText(TDataSet& DataSet)
{
    std::vector<std::string> Values;
    for (int I = 0; I < DataSet.FieldCount(); ++I)
        Values.push_back(DataSet.Fields(I).AsString());
    return Joined(Values, [](const std::string& Value) { return Value; });
}

std::vector<std::string> RecordTexts(TDataSet& DataSet)
{
    std::vector<std::string> Result;
    for (DataSet.First(); !DataSet.Eof(); DataSet.Next())
        Result.push_back(RecordText(DataSet));
    return Result;
}

} // namespace kv

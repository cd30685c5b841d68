#include "KvSqliteCursor.h"

#include <utility>

#include "KvSqliteConnection.h"
#include "KvSqliteName.h"

namespace kv {

namespace {

std::string Collated(const TSQLiteKeyColumn& Column)
{
    return Column.Sql + (Column.Collation.empty() ? "" : " COLLATE " + Column.Collation);
}

} // namespace

std::string TSQLiteRowSource::KeyList() const
{
    std::string List;
    for (const auto& Part : Key)
        AddToList(List, Part.Sql);
    return List;
}

std::string TSQLiteRowSource::KeyOrder() const
{
    std::string List;
    for (const auto& Part : Key)
        AddToList(List, Collated(Part));
    return List;
}

std::string TSQLiteRowSource::KeyCondition(int FirstParam) const
{
    std::string Condition;
    for (const auto& Part : Key)
        AddToList(Condition, Collated(Part) + " = ?" + std::to_string(FirstParam++), " AND ");
    return Condition;
}

std::string TSQLiteRowSource::KeyAfter() const
{
    std::string Params;
    for (std::size_t I = 1; I <= Key.size(); ++I)
        AddToList(Params, "?" + std::to_string(I));
    return "(" + KeyOrder() + ") > (" + Params + ")";
}

TSQLiteCursor::TSQLiteCursor(TSQLiteConnection& Owner, const TSQLiteRowSource& Rows)
    : Connection(Owner), Source(Rows), CurrentKey(Rows.Key.size()), SeekKey(Rows.Key.size())
{
}

void TSQLiteCursor::First()
{
    EndScan();
    Place = plBeforeFirst;
}

void TSQLiteCursor::Next()
{
    if (Scan) {
        Place = plEnd;                              // where an error leaves it
        StepScan();
    }
    else
        Place = plAfterKey;
}

bool TSQLiteCursor::Eof()
{
    Resolve();
    return Place == plEnd;
}

void TSQLiteCursor::MoveTo(TSQLiteKey& NewKey)
{
    EndScan();
    CurrentKey.swap(NewKey);
    KeyKnown = true;
    Place = HasKey() ? plRecord : plEnd;
}

void TSQLiteCursor::Deleted()
{
    Release();
    Place = plAfterKey;
}

TSQLiteValue TSQLiteCursor::Value(int Column)
{
    Resolve();
    if (Place != plRecord)
        return {};
    if (Scan)
        return Scan->Column(static_cast<int>(Source.Key.size()) + Column);
    if (!IsFetched)
        FetchRecord();
    return Fetched[static_cast<std::size_t>(Column)].Get();
}

const TSQLiteKey& TSQLiteCursor::Key()
{
    Resolve();
    if (!KeyKnown && Scan) {
        for (std::size_t I = 0; I < CurrentKey.size(); ++I)
            CurrentKey[I].Set(Scan->Column(static_cast<int>(I)));
        KeyKnown = true;
    }
    return CurrentKey;
}

void TSQLiteCursor::Release()
{
    if (!HasKey())
        return;
    if (Scan)
        Key();
    EndScan();
}

void TSQLiteCursor::EndScan()
{
    if (Scan)
        Scan->Reset();
    Scan = nullptr;
    IsFetched = false;
}

/// Reads the record that First, Next or Deleted asked for.
void TSQLiteCursor::Resolve()
{
    if (Place == plBeforeFirst) {
        if (!ScanAll)
            ScanAll = Prepared(HasKey() ? " ORDER BY " + Source.KeyOrder() : "");
        Scan = &ScanAll;
    }
    else if (Place == plAfterKey) {
        if (!ScanAfter)
            ScanAfter = Prepared(" WHERE " + Source.KeyAfter() + " ORDER BY " + Source.KeyOrder());
        SeekKey = CurrentKey;
        Bind(ScanAfter, SeekKey);
        Scan = &ScanAfter;
    }
    else
        return;
    StepScan();
}

void TSQLiteCursor::StepScan()
{
    KeyKnown = IsFetched = false;
    auto* const Stepped = std::exchange(Scan, nullptr); // none when it raises
    if (Stepped->Step())
        Scan = Stepped;
    Place = Scan ? plRecord : plEnd;
}

/// Copies the record, so that no statement stays open for it. A record that has vanished reads as null.
void TSQLiteCursor::FetchRecord()
{
    if (!Fetch)
        Fetch = Prepared(" WHERE " + Source.KeyCondition(1));
    Bind(Fetch, CurrentKey);
    const bool Found = Fetch.Step();
    Fetched.resize(Source.Columns.size());
    for (std::size_t I = 0; I < Fetched.size(); ++I)
        Fetched[I].Set(Found ? Fetch.Column(static_cast<int>(Source.Key.size() + I)) : TSQLiteValue{});
    Fetch.Reset();
    IsFetched = true;
}

TSQLiteStatement TSQLiteCursor::Prepared(const std::string& Clauses) const
{
    return TSQLiteStatement(Connection, Source.Select + Clauses, Source.Title);
}

void TSQLiteCursor::Bind(TSQLiteStatement& Statement, const TSQLiteKey& Values)
{
    int Param = 0;
    for (const auto& Value : Values)
        Statement.Bind(++Param, Value.Get());
}

} // namespace kv

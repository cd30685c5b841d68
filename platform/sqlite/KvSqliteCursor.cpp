#include "KvSqliteCursor.h"

#include <utility>

#include "KvSqliteConnection.h"

namespace kv {

namespace {

std::string Collated(const TSQLiteKeyColumn& Column)
{
    return Column.Sql + (Column.Collation.empty() ? "" : " COLLATE " + Column.Collation);
}

/// Records past a key: "KEY1 > ?1" or "(KEY1, KEY2) > (?1, ?2)".
std::string KeyAfter(const TSQLiteRowSource& Source)
{
    std::string Params;
    for (std::size_t I = 1; I <= Source.Key.size(); ++I)
        Params += (I == 1 ? "?" : ", ?") + std::to_string(I);
    return "(" + KeyOrder(Source) + ") > (" + Params + ")";
}

} // namespace

std::string KeyOrder(const TSQLiteRowSource& Source)
{
    std::string Order;
    for (const auto& Column : Source.Key)
        Order += (Order.empty() ? "" : ", ") + Collated(Column);
    return Order;
}

std::string KeyCondition(const TSQLiteRowSource& Source, int FirstParam)
{
    std::string Condition;
    for (const auto& Column : Source.Key)
        Condition += (Condition.empty() ? "" : " AND ") + Collated(Column) + " = ?" + std::to_string(FirstParam++);
    return Condition;
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
        Prepare(ScanAll, HasKey() ? " ORDER BY " + KeyOrder(Source) : "");
        Scan = &ScanAll;
    }
    else if (Place == plAfterKey) {
        Prepare(ScanAfter, " WHERE " + KeyAfter(Source) + " ORDER BY " + KeyOrder(Source));
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
    Prepare(Fetch, " WHERE " + KeyCondition(Source, 1));
    Bind(Fetch, CurrentKey);
    const bool Found = Fetch.Step();
    Fetched.resize(Source.Columns.size());
    for (std::size_t I = 0; I < Fetched.size(); ++I)
        Fetched[I].Set(Found ? Fetch.Column(static_cast<int>(Source.Key.size() + I)) : TSQLiteValue{});
    Fetch.Reset();
    IsFetched = true;
}

void TSQLiteCursor::Prepare(TSQLiteStatement& Statement, const std::string& Condition)
{
    if (!Statement)
        Statement = TSQLiteStatement(Connection, Source.Select + Condition, Source.Title);
}

void TSQLiteCursor::Bind(TSQLiteStatement& Statement, const TSQLiteKey& Values)
{
    int Param = 0;
    for (const auto& Value : Values)
        Statement.Bind(++Param, Value.Get());
}

} // namespace kv

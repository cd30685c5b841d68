#include "KvSqliteDataSet.h"

#include <algorithm>

#include "KvIsoDate.h"
#include "KvSqliteConnection.h"
#include "KvSqliteCursor.h"
#include "KvSqliteDatabase.h"

namespace kv {

namespace {

/// Date-times are equal when they are so to the millisecond, which is all that is stored of them.
bool IsSameTime(const TVariant& Stored, const TVariant& Wanted)
{
    return Stored.Kind() == vkDateTime && Wanted.Kind() == vkDateTime &&
           DateTimeToIso(Stored.DateTime()) == DateTimeToIso(Wanted.DateTime());
}

} // namespace

TSQLiteDataSet::TSQLiteDataSet(TComponent* Owner) : TDataSet(Owner) {}

TSQLiteDataSet::~TSQLiteDataSet() = default;

// --- Connection -------------------------------------------------------------------------------------

TSQLiteDatabase& TSQLiteDataSet::UsedDatabase()
{
    CheckActive();
    return OwnDatabase ? *OwnDatabase : *FDatabase;
}

TSQLiteConnection& TSQLiteDataSet::Connection()
{
    return *FConnection;
}

void TSQLiteDataSet::OpenConnection()
{
    if (FConnection)
        InternalClose();                            // an earlier Close could not commit
    if (!FDatabase) {
        OwnDatabase = std::make_unique<TSQLiteDatabase>();
        OwnDatabase->DatabaseName = DatabaseName;
    }
    FConnection = &(FDatabase ? FDatabase : OwnDatabase.get())->Connection();
    FConnection->Attach(*this);
}

void TSQLiteDataSet::InternalClose()
{
    FCursor.reset();
    if (FConnection)
        FConnection->Detach(*this);
    FConnection = nullptr;
    OwnDatabase.reset();
}

// --- Reading ----------------------------------------------------------------------------------------

void TSQLiteDataSet::OpenCursor(const TSQLiteRowSource& Source)
{
    for (const auto& Column : Source.Columns)
        AddField(Column.Def);
    Rows = &Source;
    FCursor = std::make_unique<TSQLiteCursor>(Connection(), Source);
}

void TSQLiteDataSet::ReleaseCursor()
{
    if (FCursor)
        FCursor->Release();
}

void TSQLiteDataSet::InternalFirst()
{
    FCursor->First();
}

void TSQLiteDataSet::InternalNext()
{
    FCursor->Next();
}

bool TSQLiteDataSet::InternalEof()
{
    return FCursor->Eof();
}

TVariant TSQLiteDataSet::InternalGetValue(const TField& Field)
{
    return DecodeValue(Field.DataType(), FCursor->Value(Field.Index()));
}

bool TSQLiteDataSet::InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                    TLocateOptions Options)
{
    auto Search = std::make_unique<TSQLiteCursor>(Connection(), *Rows);
    const auto IsMatch = [&](std::size_t I) {
        const auto Stored = DecodeValue(Keys[I]->DataType(), Search->Value(Keys[I]->Index()));
        return IsSameTime(Stored, Values[I]) || MatchesKey(Stored, Values[I], Options);
    };
    for (Search->First(); !Search->Eof(); Search->Next()) {
        std::size_t Equal = 0;
        while (Equal < Keys.size() && IsMatch(Equal))
            ++Equal;
        if (Equal == Keys.size()) {
            FCursor = std::move(Search);
            return true;
        }
    }
    return false;
}

} // namespace kv

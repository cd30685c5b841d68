// kv_yardstick - imports a file of orders the way a programmer would who needs just that once: one prepared
// statement a record, one transaction, the database's default settings. What kvimport is measured against.
//
//   kv_yardstick append|append-fixed|append-update|update|delete FILE DATABASE
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <string>

#include "KvBenchSchema.h"
#include "KvBenchSql.h"
#include "KvYardConvert.h"
#include "KvYardMappedFile.h"
#include "KvYardText.h"

namespace kv::bench {

namespace {

template <typename TCutter> void Append(std::string_view File, TSqlDatabase& Database)
{
    TSqlStatement Insert(Database, InsertOrderSql());
    TOrderBinder Binder;
    TOrderText Order;
    for (TCutter Cutter(File); Cutter.Next(Order);) {
        Binder.Bind(Order, Insert);
        Insert.Run();
    }
}

/// The statement that finds an order by its ID.
TSqlStatement FindOrder(TSqlDatabase& Database)
{
    return {Database, "SELECT 1 FROM orders WHERE ID = ?1"};
}

void AppendUpdate(std::string_view File, TSqlDatabase& Database)
{
    auto Find = FindOrder(Database);
    TSqlStatement Change(Database, UpdateOrderSql()), Insert(Database, InsertOrderSql());
    TOrderBinder Binder;
    TOrderText Order;
    for (TDelimitedCutter Cutter(File); Cutter.Next(Order);) {
        BindKey(Order, Find);
        auto& Write = Find.Run() ? Change : Insert;
        Binder.Bind(Order, Write);
        Write.Run();
    }
}

void Update(std::string_view File, TSqlDatabase& Database)
{
    auto Find = FindOrder(Database);
    TSqlStatement Change(Database, UpdateOrderSql());
    TOrderBinder Binder;
    TOrderText Order;
    for (TDelimitedCutter Cutter(File); Cutter.Next(Order);) {
        BindKey(Order, Find);
        if (!Find.Run())
            continue;
        Binder.Bind(Order, Change);
        Change.Run();
    }
}

void Delete(std::string_view File, TSqlDatabase& Database)
{
    auto Find = FindOrder(Database);
    TSqlStatement Remove(Database, "DELETE FROM orders WHERE ID = ?1");
    TOrderText Order;
    for (TDelimitedCutter Cutter(File); Cutter.Next(Order);) {
        BindKey(Order, Find);
        if (!Find.Run())
            continue;
        BindKey(Order, Remove);
        Remove.Run();
    }
}

using TLoop = std::function<void(std::string_view, TSqlDatabase&)>;

const std::map<std::string, TLoop> Loops = {
    {"append", Append<TDelimitedCutter>},
    {"append-fixed", Append<TFixedWidthCutter>},
    {"append-update", AppendUpdate},
    {"update", Update},
    {"delete", Delete},
};

} // namespace

} // namespace kv::bench

int main(int Count, char** Arguments)
{
    using namespace kv::bench;
    const auto Loop = Count == 4 ? Loops.find(Arguments[1]) : Loops.end();
    if (Loop == Loops.end()) {
        std::fputs("usage: kv_yardstick append|append-fixed|append-update|update|delete FILE DATABASE\n",
                   stderr);
        return 2;
    }
    try {
        const TMappedFile File(Arguments[2]);
        TSqlDatabase Database(Arguments[3]);
        Database.Execute("BEGIN");
        Loop->second(File.View(), Database);
        Database.Execute("COMMIT");
    }
    catch (const std::exception& Error) {
        std::fprintf(stderr, "kv_yardstick: %s\n", Error.what());
        return EXIT_FAILURE;
    }
}

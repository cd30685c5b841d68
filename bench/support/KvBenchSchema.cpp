#include "KvBenchSchema.h"

namespace kv::bench {

namespace {

/// Column by column, what `Text` says of its number from `First` on, with commas between.
template <typename TText> std::string Listed(std::size_t First, TText Text)
{
    std::string Result;
    for (auto Column = First; Column < OrderColumns.size(); Column++)
        Result.append(Column == First ? "" : ", ").append(Text(Column));
    return Result;
}

std::string NameOf(std::size_t Column)
{
    return std::string(OrderColumns[Column].Name);
}

std::string ParameterOf(std::size_t Column)
{
    return "?" + std::to_string(Column + 1);
}

} // namespace

std::string CreateOrdersSql(TOrderKey Key, const std::string& Table)
{
    const auto Declaration = [Key](std::size_t Column) {
        const std::string Constraint = Column == 0 && Key == okIndexed ? " PRIMARY KEY" : "";
        return NameOf(Column) + " " + std::string(OrderColumns[Column].SqlType) + Constraint;
    };
    return "CREATE TABLE " + Table + " (" + Listed(0, Declaration) + ")";
}

std::string InsertOrderSql()
{
    return "INSERT INTO orders VALUES (" + Listed(0, ParameterOf) + ")";
}

std::string UpdateOrderSql()
{
    const auto Assignment = [](std::size_t Column) { return NameOf(Column) + " = " + ParameterOf(Column); };
    return "UPDATE orders SET " + Listed(1, Assignment) + " WHERE ID = ?1";
}

std::string AssignmentsSql(const std::string& Source)
{
    return Listed(1, [&](std::size_t Column) {
        return NameOf(Column).append(" = ").append(Source).append(".").append(NameOf(Column));
    });
}

} // namespace kv::bench

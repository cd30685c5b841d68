#include "KvBenchTables.h"

#include <cstdint>
#include <string_view>

#include "KvBenchOrders.h"
#include "KvDbaseBuilder.h"
#include "KvIsoDate.h"
#include "KvParadoxBuilder.h"

namespace kv::bench {

namespace {

constexpr unsigned WindowsPage = 1252, WindowsDriver = 0x03;

/// Of UTF-8 with characters of one and two bytes: the orders have no others.
std::string WindowsText(std::string_view Utf8)
{
    std::string Text;
    unsigned Lead = 0;
    for (const char Char : Utf8) {
        const auto Byte = static_cast<unsigned char>(Char);
        if (Byte >= 0xC0) {
            Lead = Byte & 0x1Fu;
            continue;
        }
        const auto Character = Byte < 0x80 ? Byte : Lead << 6 | (Byte & 0x3Fu);
        Text += Character < 0x100 ? static_cast<char>(Character) : '?';
    }
    return Text;
}

std::string Digits(std::string_view Date)           // 2024-02-29
{
    return std::string(Date.substr(0, 4)).append(Date.substr(5, 2)).append(Date.substr(8, 2));
}

std::int32_t DayNumber(std::string_view Date)       // from the year 1
{
    return static_cast<std::int32_t>(TryIsoToDateTime(Date)->Days) + 693594;
}

} // namespace

std::string MakeParadoxTable(std::size_t Rows)
{
    TParadoxBuilder Builder;
    Builder.Field("ID", 'I').Field("CUSTOMER", 'A', 36).Field("CITY", 'A', 14).Field("ORDERED", 'D');
    Builder.Field("AMOUNT", '$').Field("QTY", 'S').Field("PAID", 'L').Field("NOTE", 'A', 40)
           .CodePage(WindowsPage);
    TOrder Order;
    for (std::size_t Id = 1; Id <= Rows; ++Id) {
        MakeOrder(Id, 0, Order);
        const auto& [IdText, Customer, City, Ordered, Amount, Qty, Paid, Note] = Order;
        Builder.Record({ParadoxLong(static_cast<std::int32_t>(Id)), WindowsText(Customer), WindowsText(City),
                        ParadoxLong(DayNumber(Ordered)), ParadoxNumber(std::stod(Amount)),
                        ParadoxShort(std::stoi(Qty)), Paid == "True" ? "\x81" : "\x80", WindowsText(Note)});
    }
    return Builder.Build();
}

std::string MakeDbaseTable(std::size_t Rows)
{
    TDbaseBuilder Builder;
    Builder.Field("ID", 'N', 9).Field("CUSTOMER", 'C', 36).Field("CITY", 'C', 14).Field("ORDERED", 'D', 8);
    Builder.Field("AMOUNT", 'N', 8, 2).Field("QTY", 'N', 3).Field("PAID", 'L', 1).Field("NOTE", 'C', 40);
    Builder.Language(WindowsDriver);
    TOrder Order;
    for (std::size_t Id = 1; Id <= Rows; ++Id) {
        MakeOrder(Id, 0, Order);
        const auto& [IdText, Customer, City, Ordered, Amount, Qty, Paid, Note] = Order;
        Builder.Record({IdText, WindowsText(Customer), WindowsText(City), Digits(Ordered), Amount, Qty,
                        Paid == "True" ? "T" : "F", WindowsText(Note)});
    }
    return Builder.Build();
}

} // namespace kv::bench

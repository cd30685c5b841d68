#include "KvBenchOrders.h"

#include <cstdio>

#include "KvBenchRandom.h"

namespace kv::bench {

namespace {

constexpr std::string_view FirstNames[] = {"Ada",    "Björn",  "Chloé", "David",  "Elena", "Frank",
                                           "Grace",  "Hélène", "Ivan",  "Judith", "Karl",  "Lucía",
                                           "Martin", "Nora",   "Otto",  "Paula"};
constexpr std::string_view LastNames[] = {"Andersen", "Becker", "Carter",  "Dvořák", "Evans",  "Fischer",
                                          "García",   "Hansen", "Ivanova", "Jensen", "Keller", "López",
                                          "Müller",   "Novak",  "Olsen",   "Peters"};
constexpr std::string_view Forms[] = {"Ltd", "Inc", "GmbH", "& Sons", "S.A.", "Co"};
constexpr std::string_view Nicknames[] = {"Ace", "Red", "Doc", "Buddy"};
constexpr std::string_view Cities[] = {
    "Amsterdam", "Berlin", "Chicago", "Dublin",   "Edinburgh", "Frankfurt", "Geneva",    "Helsinki",
    "Kraków",    "Lisbon", "Malmö",   "New York", "Oslo",      "Paris",     "São Paulo", "Zürich"};
constexpr std::string_view Actions[] = {"deliver",      "collect",   "call ahead",
                                        "send by post", "hold back", "gift wrap"};
constexpr std::string_view Things[] = {"spare parts", "two parcels", "café supplies", "the samples",
                                       "all boxes"};
constexpr std::string_view Times[] = {"before noon", "on Friday", "this week", "after 5 pm", "next month"};

template <std::size_t Count> std::string_view OneOf(const std::string_view (&Words)[Count], TRandom& Random)
{
    return Words[Random.Below(Count)];
}

void MakeCustomer(TRandom& Random, std::string& Text)
{
    const auto Kind = Random.Below(20);
    Text = OneOf(FirstNames, Random);
    if (Kind == 0)
        Text.append(" \"").append(OneOf(Nicknames, Random)).append("\"");
    Text.append(" ").append(OneOf(LastNames, Random));
    if (Kind == 1 || Kind == 2)
        Text.append(", ").append(OneOf(Forms, Random));
}

void MakeNote(TRandom& Random, std::string& Text)
{
    Text.clear();
    if (Random.OneIn(12))
        return;
    Text.append(OneOf(Actions, Random)).append(" ").append(OneOf(Things, Random)).append(" ");
    Text.append(OneOf(Times, Random));
}

template <typename... TValues> void Print(std::string& Text, const char* Format, TValues... Values)
{
    char Buffer[40];
    const auto Length = std::snprintf(Buffer, sizeof Buffer, Format, Values...);
    Text.assign(Buffer, static_cast<std::size_t>(Length));
}

} // namespace

void MakeOrder(std::uint64_t Id, std::uint64_t Revision, TOrder& Order)
{
    TRandom Random(Mixed(Id) ^ Revision);
    auto& [IdText, Customer, City, Ordered, Amount, Qty, Paid, Note] = Order;
    IdText = std::to_string(Id);
    MakeCustomer(Random, Customer);
    City = OneOf(Cities, Random);
    const auto Year = 1995 + Random.Below(30), Month = 1 + Random.Below(12), Day = 1 + Random.Below(28);
    Print(Ordered, "%04u-%02u-%02u", Year, Month, Day);
    const auto Cents = 100 + Random.Below(999900);
    Print(Amount, "%u.%02u", Cents / 100, Cents % 100);
    Qty = std::to_string(1 + Random.Below(99));
    Paid = Random.OneIn(4) ? "False" : "True";
    MakeNote(Random, Note);
}

} // namespace kv::bench

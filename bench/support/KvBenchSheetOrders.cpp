#include "KvBenchSheetOrders.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace kv::bench {

namespace {

/// Digits of `Text` from `First` on, a period among them left out: "1234.56" is 123456.
int DigitsOf(std::string_view Text, std::size_t First = 0, std::size_t Count = std::string_view::npos)
{
    int Number = 0;
    for (const char Char : Text.substr(First, Count))
        if (Char != '.')
            Number = 10 * Number + (Char - '0');
    return Number;
}

/// Of a date like 1995-12-31.
int DaysOf(std::string_view Date)
{
    using namespace std::chrono;
    const year_month_day Day(year(DigitsOf(Date, 0, 4)), month(static_cast<unsigned>(DigitsOf(Date, 5, 2))),
                             day(static_cast<unsigned>(DigitsOf(Date, 8, 2))));
    return static_cast<int>((sys_days(Day) - sys_days(year(1899) / December / 30)).count());
}

std::string CentsText(int Cents)
{
    char Text[20];
    std::snprintf(Text, sizeof Text, "%d.%02d", Cents / 100, Cents % 100);
    return Text;
}

std::string Quoted(std::string_view Value)
{
    std::string Text = "\"";
    for (const char Byte : Value)
        Text.append(Byte == '"' ? 2 : 1, Byte);
    return Text + '"';
}

std::string Line(const TSheetOrder& Row)
{
    std::string Text;
    for (std::size_t Column = 0; Column < Row.Texts.size(); ++Column)
        Text += (OrderColumns[Column].Name == "CUSTOMER" ? Quoted(Row.Texts[Column]) : Row.Texts[Column]) +
                ',';
    return Text + CentsText(Row.PriceCents) + ',' + std::to_string(Row.Weight) + ",0.25," +
           CentsText(Row.TotalCents) + '\n';
}

} // namespace

std::string_view SheetColumnName(std::size_t Column)
{
    const auto Orders = OrderColumns.size();
    return Column < Orders ? OrderColumns[Column].Name : MoreSheetColumns[Column - Orders].Name;
}

void MakeSheetOrder(std::uint64_t Id, TSheetOrder& Row)
{
    constexpr int TaxPercent = 19;
    MakeOrder(Id, 0, Row.Texts);
    auto& [IdText, Customer, City, Ordered, Amount, Qty, Paid, Note] = Row.Texts;
    if (!Note.empty())
        Note += " (order " + IdText + ")";          // most texts of real sheets stand there once
    Row.Id = Id;
    Row.OrderedDays = DaysOf(Ordered);
    Row.AmountCents = DigitsOf(Amount);
    Row.Qty = DigitsOf(Qty);
    Row.Paid = Paid == "True";
    Row.PriceCents = static_cast<int>(Id % 30'000 * 3);
    Row.Weight = static_cast<int>(Id % 777);
    Row.TotalCents = Row.AmountCents + Row.AmountCents / 100 * TaxPercent;
}

void WriteSheetOrders(const std::filesystem::path& File, std::uint64_t Rows)
{
    std::ofstream Out(File, std::ios::binary);
    for (std::size_t Column = 0; Column < SheetColumnCount; ++Column)
        Out << (Column > 0 ? "," : "") << SheetColumnName(Column);
    Out << '\n';
    TSheetOrder Row;
    for (std::uint64_t Id = 1; Id <= Rows; ++Id) {
        MakeSheetOrder(Id, Row);
        Out << Line(Row);
    }
    if (!Out.flush())
        throw std::runtime_error("Cannot write " + File.string());
}

std::string CreateSheetOrdersSql()
{
    std::string Columns;
    const auto Add = [&Columns](std::string_view Name, std::string_view SqlType) {
        Columns.append(Columns.empty() ? "" : ", ").append(Name).append(" ").append(SqlType);
    };
    for (const auto& Column : OrderColumns)
        Add(Column.Name, Column.SqlType);
    for (const auto& Column : MoreSheetColumns)
        Add(Column.Name, Column.SqlType);
    return "CREATE TABLE orders (" + Columns + ")";
}

} // namespace kv::bench

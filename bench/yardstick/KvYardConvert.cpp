#include "KvYardConvert.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace kv::bench {

namespace {

enum TOrderColumnIndex
{
    ciId,
    ciCustomer,
    ciCity,
    ciOrdered,
    ciAmount,
    ciQty,
    ciPaid,
    ciNote
};

constexpr int ParameterOf(TOrderColumnIndex Column)
{
    return Column + 1;
}

[[noreturn]] void Refuse(std::string_view Text, const char* Kind)
{
    throw std::runtime_error("\"" + std::string(Text) + "\" is not " + Kind);
}

template <typename T> T ToNumber(std::string_view Text)
{
    T Value;
    const auto [End, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Value);
    if (Error != std::errc() || End != Text.data() + Text.size())
        Refuse(Text, "a number");
    return Value;
}

bool ToBoolean(std::string_view Text)
{
    if (Text != "True" && Text != "False")
        Refuse(Text, "True or False");
    return Text == "True";
}

/// Reads yyyy-mm-dd and writes the day that it names the same way.
std::string_view ToIsoDate(std::string_view Text, char (&Buffer)[10])
{
    using namespace std::chrono;
    if (Text.size() != 10 || Text[4] != '-' || Text[7] != '-')
        Refuse(Text, "a date");
    const year_month_day Day(year(ToNumber<int>(Text.substr(0, 4))),
                             month(ToNumber<unsigned>(Text.substr(5, 2))),
                             day(ToNumber<unsigned>(Text.substr(8, 2))));
    if (!Day.ok())
        Refuse(Text, "a date");
    const auto Write = [&](int At, int Digits, int Value) {
        for (; Digits > 0; Digits--, Value /= 10)
            Buffer[At + Digits - 1] = static_cast<char>('0' + Value % 10);
    };
    Write(0, 4, int(Day.year()));
    Write(5, 2, static_cast<int>(unsigned(Day.month())));
    Write(8, 2, static_cast<int>(unsigned(Day.day())));
    Buffer[4] = Buffer[7] = '-';
    return {Buffer, sizeof Buffer};
}

} // namespace

void TOrderBinder::Bind(const TOrderText& Order, TSqlStatement& Statement)
{
    const auto BindAs = [&](TOrderColumnIndex Column, auto Convert) {
        if (Order[Column].empty())
            Statement.BindNull(ParameterOf(Column));
        else
            Statement.Bind(ParameterOf(Column), Convert(Order[Column]));
    };
    const auto Itself = [](std::string_view Text) { return Text; };
    BindAs(ciId, ToNumber<sqlite3_int64>);
    BindAs(ciCustomer, Itself);
    BindAs(ciCity, Itself);
    BindAs(ciOrdered, [&](std::string_view Text) { return ToIsoDate(Text, IsoDate); });
    BindAs(ciAmount, ToNumber<double>);
    BindAs(ciQty, ToNumber<sqlite3_int64>);
    BindAs(ciPaid, [](std::string_view Text) { return sqlite3_int64{ToBoolean(Text)}; });
    BindAs(ciNote, Itself);
}

void BindKey(const TOrderText& Order, TSqlStatement& Statement)
{
    Statement.Bind(ParameterOf(ciId), ToNumber<sqlite3_int64>(Order[ciId]));
}

} // namespace kv::bench

// KvYardConvert - binds the texts of an order, checked and converted, to the parameters of a statement.
#pragma once

#include "KvBenchSql.h"
#include "KvYardText.h"

namespace kv::bench {

/// Parameter n gets column n, counted from 1: numbers as numbers, dates as ISO text, True and False as 1
/// and 0, anything empty as NULL. Raises std::runtime_error with a value that is none of its kind.
class TOrderBinder
{
public:
    void Bind(const TOrderText& Order, TSqlStatement& Statement);

private:
    char IsoDate[10];                               // the statement reads it when it runs
};

/// Binds only the key, to parameter 1.
void BindKey(const TOrderText& Order, TSqlStatement& Statement);

} // namespace kv::bench

// KvConsoleProgress - how far a run is, in one line of a terminal.
#pragma once

#include <string>

namespace kv {

/// What a progress line tells.
struct TConsoleProgress
{
    std::string Title;
    int Min = 0, Max = 0, Position = 0;             ///< Max not above Min: the size of the work is not known.
    int Errors = 0;
    double Seconds = 0;                             ///< Since the first record.
};

/// "orders.csv  [#####     ]  50 %  500,000 of 1,000,000  3 errors  0:02 left" in exactly or less than
/// `Width` columns; what does not fit is left out, the bar first. `Blocks`: the bar is drawn with block
/// characters of Unicode.
std::string ProgressLine(const TConsoleProgress& Progress, int Width, bool Blocks);

/// The same without a bar, for a log: "orders.csv: 50 %, 500,000 of 1,000,000 records, 3 errors".
std::string ProgressMessage(const TConsoleProgress& Progress);

/// Of 100; 0 when the size of the work is not known.
int PercentDone(const TConsoleProgress& Progress);

} // namespace kv

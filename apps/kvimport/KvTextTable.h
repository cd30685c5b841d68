// KvTextTable - rows and columns of text, set in columns of the screen.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kv {

class TTextTable
{
public:
    /// Lines above the rule.
    void AddHeading(std::vector<std::string> Cells) { Headings.push_back(std::move(Cells)); }
    void AddRow(std::vector<std::string> Cells) { Rows.push_back(std::move(Cells)); }

    /// In `Width` columns of the screen; 0: as wide as it gets. Wide columns give way first. Columns of
    /// numbers stand at the right.
    void Print(std::ostream& Out, int Width) const;
    /// To standard output, as wide as the screen; what goes into a pipe is not cut.
    void PrintToScreen() const;

private:
    struct TColumn
    {
        int Width = 0;
        bool IsNumber = true;                       // all cells that are not empty
        bool IsEmpty = true;
    };

    std::vector<TColumn> Measure() const;
    static void Shrink(std::vector<TColumn>& Columns, int Width);
    static void PrintLine(std::ostream& Out, const std::vector<std::string>& Cells,
                          const std::vector<TColumn>& Columns, int Width);

    std::vector<std::vector<std::string>> Headings, Rows;
};

} // namespace kv

// KvColumnLetters - names of columns, "A" to "IV".
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// The column from 0 that `Letters` name, in any case: "A" is 0, "AA" 26. The first column for no letters
/// at all; a number that no sheet has for what is no name of a column, such as -1 for "@".
int ColumnOfLetters(std::string_view Letters);

/// The name of column `Number`, from 1. Multiples of 26 from 52 on end in "@", which takes the place of the
/// Z before: 52 is "B@", not "AZ". ColumnOfLetters reads both. 0 is "@".
std::string LettersOfColumn(int Number);

/// The name of column `Number`, from 1, as spreadsheets show it: 52 is "AZ".
std::string SpreadSheetLetters(int Number);

} // namespace kv

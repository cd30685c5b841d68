#include "KvColumnLetters.h"

#include <cstdint>

#include "KvText.h"

namespace kv {

namespace {

constexpr int LetterCount = 26;
constexpr char BeforeA = '@';
constexpr std::int64_t BeyondAnySheet = 1 << 20;

char Letter(int Number)
{
    return static_cast<char>(BeforeA + Number);
}

} // namespace

/// For three letters or more this is no number to the base of 26; mappings are read so all the same.
int ColumnOfLetters(std::string_view Letters)
{
    std::int64_t Number = 1, Place = 0;
    for (const char Char : UpperCase(Letters)) {
        Number = static_cast<unsigned char>(Char) - BeforeA + Place++ * LetterCount * Number;
        if (Number >= BeyondAnySheet || Number <= -BeyondAnySheet)
            break;                                  // another letter would only take it farther
    }
    return static_cast<int>(Number) - 1;
}

std::string LettersOfColumn(int Number)
{
    if (Number <= LetterCount)
        return {Letter(Number)};
    return {Letter(Number / LetterCount), Letter(Number % LetterCount)};
}

std::string SpreadSheetLetters(int Number)
{
    std::string Letters;
    for (; Number > 0; Number = (Number - 1) / LetterCount)
        Letters.insert(Letters.begin(), Letter((Number - 1) % LetterCount + 1));
    return Letters;
}

} // namespace kv

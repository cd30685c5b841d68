// KvRandomText - short random texts over few characters, where every rule meets every other one.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

namespace kv {

/// Draws from a seed of its own, or that in the environment variable KV_SEED. Print Seed() with a
/// failure, so that it can be repeated.
class TRandomText
{
public:
    TRandomText()
    {
        const char* const Wanted = std::getenv("KV_SEED");
        FSeed = Wanted ? static_cast<unsigned>(std::strtoul(Wanted, nullptr, 10)) : std::random_device()();
        Engine.seed(FSeed);
    }

    unsigned Seed() const { return FSeed; }

    std::size_t Below(std::size_t Limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, Limit - 1)(Engine);
    }

    std::string Text(std::string_view Alphabet, std::size_t MaxSize)
    {
        std::string Result(Below(MaxSize + 1), '\0');
        for (char& Char : Result)
            Char = Alphabet[Below(Alphabet.size())];
        return Result;
    }

private:
    unsigned FSeed;
    std::mt19937 Engine;
};

} // namespace kv

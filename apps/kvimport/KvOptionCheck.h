// KvOptionCheck - adds options whose text is read by a function of ours, so that a wrong one is told
// with the option's name.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

namespace CLI {
class App;
class Option;
}

namespace kv {

/// `Read` gets the option's text and raises EUsageError when it has no meaning.
CLI::Option* AddChecked(CLI::App& Command, const std::string& Name, const std::string& ValueName,
                        const std::string& Help, std::function<void(const std::string&)> Read);

/// A word and what it sets.
struct TChoice
{
    std::string_view Word;
    std::function<void()> Choose;
};

/// An option that takes one of some words, in any case.
CLI::Option* AddChoice(CLI::App& Command, const std::string& Name, const std::string& Help,
                       std::initializer_list<TChoice> Choices);

/// A whole number not below `Least`. Raises EUsageError.
int ReadCount(std::string_view Text, int Least);

} // namespace kv

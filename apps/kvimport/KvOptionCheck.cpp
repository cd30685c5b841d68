#include "KvOptionCheck.h"

#include <limits>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvExitStatus.h"
#include "KvNumberText.h"
#include "KvOptionText.h"
#include "KvText.h"

namespace kv {

CLI::Option* AddChecked(CLI::App& Command, const std::string& Name, const std::string& ValueName,
                        const std::string& Help, std::function<void(const std::string&)> Read)
{
    const auto Named = [Name, Read = std::move(Read)](const std::string& Text) {
        try {
            Read(Text);
        }
        catch (const Exception& Error) {
            throw CLI::ValidationError(Name, Error.Message);
        }
    };
    return Command.add_option_function<std::string>(Name, Named, Help)->type_name(ValueName);
}

CLI::Option* AddChoice(CLI::App& Command, const std::string& Name, const std::string& Help,
                       std::initializer_list<TChoice> Choices)
{
    return AddChecked(Command, Name, "WORD", Help, [Choices = std::vector(Choices)](const std::string& Text) {
        std::vector<std::string> Words;
        for (const auto& Choice : Choices) {
            if (SameText(Choice.Word, Text))
                return Choice.Choose();
            Words.emplace_back(Choice.Word);
        }
        throw EUsageError("'" + Text + "' is none of " + JoinNames(Words));
    });
}

int ReadCount(std::string_view Text, int Least)
{
    const auto Number = TryTextToInt(Text);
    if (!Number || *Number < Least || *Number > std::numeric_limits<int>::max())
        throw EUsageError("'" + std::string(Text) + "' is no whole number from " + std::to_string(Least) +
                          " on");
    return static_cast<int>(*Number);
}

} // namespace kv

#include "KvCorpus.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>

namespace kv {

namespace fs = std::filesystem;

namespace {

using TJson = nlohmann::ordered_json;

TDumpCell CellOf(const TJson& Json)
{
    TDumpCell Cell;
    Cell.Type = Json[0].get<std::string>().at(0);
    const auto& Value = Json[1];
    if (Value.is_string())
        Cell.Text = Value;
    else if (Value.is_boolean())
        Cell.Number = Value.get<bool>() ? 1 : 0;
    else if (Value.is_number())
        Cell.Number = Value.get<double>();
    if (Json.size() > 2 && Json[2].is_string())
        Cell.NumberFormat = Json[2];
    return Cell;
}

/// Some tools write halves of characters that they never read: those become question marks.
TJson ParseDump(const fs::path& Path)
{
    std::ifstream File(Path, std::ios::binary);
    const std::string Text(std::istreambuf_iterator<char>(File), {});
    if (TJson::accept(Text))
        return TJson::parse(Text);
    static const std::regex HalfCharacter(R"re(\\u[dD][89a-fA-F][0-9a-fA-F]{2})re");
    return TJson::parse(std::regex_replace(Text, HalfCharacter, "?"));
}

} // namespace

std::optional<fs::path> CorpusFolder(std::string_view Format)
{
    const char* const Named = std::getenv("KV_CORPUS");
    const fs::path Folder = Named ? Named : KV_CORPUS_DEFAULT;
    if (fs::is_directory(Folder / Format) && fs::is_directory(Folder / "expected" / Format))
        return Folder;
    return {};
}

std::vector<fs::path> CorpusFiles(const fs::path& Corpus, std::string_view Format)
{
    std::vector<fs::path> Files;
    for (const auto& Entry : fs::directory_iterator(Corpus / Format))
        Files.push_back(Entry.path());
    std::ranges::sort(Files);
    return Files;
}

TCellRef ParseCellRef(std::string_view Text)
{
    int Column = 0;
    for (; !Text.empty() && Text[0] >= 'A' && Text[0] <= 'Z'; Text.remove_prefix(1))
        Column = 26 * Column + Text[0] - 'A' + 1;
    return {std::stoi(std::string(Text)) - 1, Column - 1};
}

std::string CellRefText(TCellRef Ref)
{
    std::string Letters;
    for (int Column = Ref.second + 1; Column > 0; Column = (Column - 1) / 26)
        Letters.insert(Letters.begin(), static_cast<char>('A' + (Column - 1) % 26));
    return Letters + std::to_string(Ref.first + 1);
}

std::vector<std::pair<std::string, TDumpSheet>> ReadCellDump(const fs::path& Path)
{
    const auto Json = ParseDump(Path);
    std::vector<std::pair<std::string, TDumpSheet>> Sheets;
    for (const auto& [Name, Cells] : Json["sheets"].items()) {
        auto& Sheet = Sheets.emplace_back(Name, TDumpSheet()).second;
        for (const auto& [Ref, Cell] : Cells.items())
            Sheet[ParseCellRef(Ref)] = CellOf(Cell);
    }
    return Sheets;
}

} // namespace kv

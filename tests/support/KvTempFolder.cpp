#include "KvTempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace kv {

namespace {

std::filesystem::path MakeFolder()
{
    auto Pattern = (std::filesystem::temp_directory_path() / "kvimport-test-XXXXXX").string();
    if (!mkdtemp(Pattern.data()))
        throw std::runtime_error("cannot make " + Pattern);
    return Pattern;
}

} // namespace

TTempFolder::TTempFolder() : Path(MakeFolder()) {}

TTempFolder::~TTempFolder()
{
    std::error_code Ignored;
    std::filesystem::remove_all(Path, Ignored);
}

std::string TTempFolder::Write(std::string_view Name, std::string_view Bytes) const
{
    std::ofstream File(Path / Name, std::ios::binary);
    File.write(Bytes.data(), static_cast<std::streamsize>(Bytes.size()));
    return *this / Name;
}

std::string TTempFolder::Read(std::string_view Name) const
{
    std::ifstream File(Path / Name, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

std::vector<std::string> TTempFolder::Names() const
{
    std::vector<std::string> Result;
    for (const auto& Entry : std::filesystem::directory_iterator(Path))
        Result.push_back(Entry.path().filename().string());
    std::ranges::sort(Result);
    return Result;
}

} // namespace kv

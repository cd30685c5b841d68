#include "KvApplication.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace kv {

namespace {

std::filesystem::path ApplicationFile()
{
    std::error_code Ignored;
    return std::filesystem::read_symlink("/proc/self/exe", Ignored);
}

std::string& Title()
{
    static std::string Text = ApplicationFile().filename().string();
    return Text;
}

} // namespace

std::string ApplicationFolder()
{
    const auto File = ApplicationFile();
    return File.has_parent_path() ? (File.parent_path() / "").string() : std::string();
}

const std::string& ApplicationTitle()
{
    return Title();
}

void SetApplicationTitle(std::string NewTitle)
{
    Title() = std::move(NewTitle);
}

} // namespace kv

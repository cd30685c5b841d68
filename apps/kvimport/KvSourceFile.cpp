#include "KvSourceFile.h"

#include <utility>

#include "KvCancelSignals.h"
#include "KvDisplayText.h"

namespace kv {

namespace {

constexpr char StandardInput[] = "-";

} // namespace

TSourceFile::TSourceFile(const std::string& Given) : FName(Given), FDisplayName(Given)
{
    if (Given == StandardInput) {
        FName = TSpooledFile::StandardInput;
        FDisplayName = "standard input";
    }
    if (!IsReadOnce(FName))
        return;
    Spooled.emplace(FName, [] { return !TCancelSignals::Requested(); });
    FName = Spooled->Name();
}

std::string TSourceFile::Explain(std::string Text) const
{
    return FName == FDisplayName ? Text : ReplaceAll(std::move(Text), FName, FDisplayName);
}

} // namespace kv

// KvSourceFile - the file of a source: opened under one name, called by another in messages.
#pragma once

#include <optional>
#include <string>

#include "KvSpooledFile.h"

namespace kv {

class TSourceFile
{
public:
    /// `Given` as the user named it; "-" is standard input. A pipe is read to its end, so that it can be
    /// looked at more than once. Raises EFileError when the file cannot be opened.
    explicit TSourceFile(const std::string& Given);

    /// Under which a component opens it.
    const std::string& Name() const { return FName; }
    /// What messages call it.
    const std::string& DisplayName() const { return FDisplayName; }
    /// `Text` of a message with the one in place of the other.
    std::string Explain(std::string Text) const;

private:
    std::string FName, FDisplayName;
    std::optional<TSpooledFile> Spooled;
};

} // namespace kv

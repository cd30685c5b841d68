// KvJson - what the commands print for scripts: one JSON object, on one line.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace kv {

/// Members stay in the order in which they are given.
using TJson = nlohmann::ordered_json;

// Texts are as messages and files hold them.

/// Null for an empty text.
TJson TextOrNull(const std::string& Text);
TJson TextList(const std::vector<std::string>& Texts);

void PrintJsonLine(std::ostream& Out, const TJson& Object);

} // namespace kv

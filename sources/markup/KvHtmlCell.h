// KvHtmlCell - where a cell of a table stands in the text of its page.
#pragma once

#include <string_view>

namespace kv {

struct TKvHtmlCell
{
    std::string_view Tag;                           ///< That begins the cell, with its attributes.
    std::string_view Content;                       ///< All up to the tag that ends the cell.
    bool HasTags = false;                           ///< Content holds tags or comments, not text alone.
};

} // namespace kv

#include "KvMdbLink.h"

#include <cstddef>
#include <string_view>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvMdbLongValue.h"
#include "KvMdbRows.h"
#include "KvMdbText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ObjectsTable = "MSysObjects";

/// The text of the field of that name in the current record; empty where there is none.
std::string TextOf(const TMdbFile& File, const TMdbRows& Rows, std::string_view FieldName)
{
    for (std::size_t I = 0; I < Rows.FieldCount(); ++I) {
        if (Rows.Column(I).name != FieldName || Rows.Value(I).IsNull)
            continue;
        std::string Long, Utf8;
        const auto Stored = Rows.Column(I).col_type == MDB_MEMO
                              ? ReadLongValue(File, Rows.Value(I).Bytes, Long)
                              : Rows.Value(I).Bytes;
        return std::string(File.IsUnicode() ? ReadUnicodeText(Stored, Utf8) : AnsiToUtf8(Stored, Utf8));
    }
    return {};
}

} // namespace

std::string LinkTarget(const TMdbFile& File, const MdbCatalogEntry& Link)
{
    if (SameText(Link.object_name, ObjectsTable))   // of a damaged database
        return "another database";
    try {
        TMdbRows Rows(File, File.Table(ObjectsTable));
        while (Rows.Next()) {
            const auto Database = TextOf(File, Rows, "Database");
            if (!Database.empty() && TextOf(File, Rows, "Name") == Link.object_name)
                return "table " + TextOf(File, Rows, "ForeignName") + " of " + Database;
        }
    }
    catch (const Exception&) {                      // that it is a link is known all the same
    }
    return "another database";
}

} // namespace kv

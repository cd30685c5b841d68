// KvMdbFile - an Access database that libmdb has open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvMdb.h"

namespace kv {

/// Errors are Exceptions whose messages leave the name of the file to the reader's caller.
class TMdbFile
{
public:
    /// Opens for reading and makes the code page of the database that of the process.
    explicit TMdbFile(const std::string& FileName);

    MdbHandle* Handle() const { return FHandle.get(); }
    /// Every object of the database: tables, queries, forms, ... Raises when a table has no name.
    std::vector<MdbCatalogEntry*> Objects() const;
    /// The table of that name, without regard to the case of Latin letters. Raises when there is none, and
    /// when it is only a link: then the file that has it is named.
    MdbCatalogEntry& Table(std::string_view Name) const;

    std::uint64_t Size() const { return FSize; }
    std::size_t PageCount() const { return static_cast<std::size_t>(FSize / PageSize()); }
    std::size_t PageSize() const { return static_cast<std::size_t>(FHandle->fmt->pg_size); }
    /// Text is UTF-16 instead of 8-bit text of a code page.
    bool IsUnicode() const { return FHandle->f->jet_version != MDB_VER_JET3; }

    /// False for what damage makes of a name.
    static bool IsName(std::string_view Text);
    static bool IsTable(const MdbCatalogEntry& Object);
    static bool IsSystem(const MdbCatalogEntry& Object);
    static bool IsLinked(const MdbCatalogEntry& Object);

private:
    struct TClose
    {
        void operator()(MdbHandle* Handle) const { mdb_close(Handle); }
    };
    std::uint64_t FSize;
    std::unique_ptr<MdbHandle, TClose> FHandle;
};

/// What to say of a database that is damaged when its file is cut off; else nothing.
std::string CutNote(const std::string& FileName);

} // namespace kv

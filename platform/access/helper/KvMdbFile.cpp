#include "KvMdbFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvMdbLink.h"
#include "KvText.h"
#include "KvUtf8.h"

namespace kv {

namespace {

// The start of the file: 00 01 00 00 "Standard Jet DB" 00, or "Standard ACE DB", then the version.
constexpr std::string_view Signature("\0\1\0\0", 4);
constexpr std::size_t VersionPosition = 0x14;
constexpr int NewestVersion = MDB_VER_ACCDB_2019;

constexpr char MsgNoTables[] = "its list of tables cannot be read; it is damaged or encrypted";

constexpr int OdbcTable = 4;                        // object types that libmdb has no names for
constexpr unsigned SystemFlags = 0x80000002;        // of Access itself, or hidden with it

/// From its first bytes, the version among them.
bool IsAccess(std::string_view Start)
{
    return Start.size() > VersionPosition && Start.starts_with(Signature) &&
           (Start.find("Jet") != Start.npos || Start.find("ACE DB") != Start.npos);
}

std::uint64_t CheckedSize(const std::string& FileName)
{
    std::error_code Code;
    if (std::filesystem::is_directory(FileName, Code))
        throw EFileError("cannot be opened: it is a directory");
    if (std::filesystem::exists(FileName, Code) && !std::filesystem::is_regular_file(FileName, Code))
        throw EFileError("cannot be opened: it is no ordinary file");
    errno = 0;
    std::ifstream File(FileName, std::ios::binary);
    if (!File)
        throw EFileError(std::string("cannot be opened: ") + std::strerror(errno ? errno : ENOENT));
    char Start[VersionPosition + 1] = {};
    File.read(Start, sizeof Start);
    const std::string_view View(Start, static_cast<std::size_t>(File.gcount()));
    if (!IsAccess(View))
        throw EFormatError("is not an Access database");
    if (const int Version = Start[VersionPosition]; Version < 0 || Version > NewestVersion)
        throw EFormatError("is an Access database of an unknown version (" + std::to_string(Version & 0xFF) +
                           ")");
    return std::filesystem::file_size(FileName);
}

} // namespace

TMdbFile::TMdbFile(const std::string& FileName)
    : FSize(CheckedSize(FileName)), FHandle(mdb_open(FileName.c_str(), MDB_NOFLAGS))
{
    if (!FHandle)
        throw EFormatError("cannot be read as an Access database");
    if (!IsUnicode() && FHandle->f->code_page != 0)
        SetAnsiCodePage(std::to_string(FHandle->f->code_page));
    else if (!IsUnicode())
        SetAnsiCodePage("windows-1252");
    if (!mdb_read_catalog(Handle(), MDB_ANY) || FHandle->num_catalog == 0)
        throw EFormatError(MsgNoTables);
}

std::vector<MdbCatalogEntry*> TMdbFile::Objects() const
{
    std::vector<MdbCatalogEntry*> Found;
    for (guint I = 0; I < FHandle->num_catalog; ++I) {
        auto* const Object = static_cast<MdbCatalogEntry*>(g_ptr_array_index(FHandle->catalog, I));
        if (IsTable(*Object) && !IsName(Object->object_name))
            throw EFormatError(MsgNoTables);
        Found.push_back(Object);
    }
    return Found;
}

MdbCatalogEntry& TMdbFile::Table(std::string_view Name) const
{
    MdbCatalogEntry* Found = nullptr;
    for (auto* const Object : Objects()) {
        if (!SameText(Object->object_name, Name))
            continue;
        if (IsTable(*Object) && (!Found || Object->object_name == Name))
            Found = Object;
    }
    if (!Found)
        throw Exception("has no table " + std::string(Name));
    if (IsLinked(*Found))
        throw Exception("its table " + std::string(Name) + " is a link to " + LinkTarget(*this, *Found) +
                        ", which has to be opened itself");
    return *Found;
}

std::string CutNote(const std::string& FileName)
{
    constexpr std::int64_t Jet3PageSize = 2048, AcePageSize = 4096;
    std::ifstream File(FileName, std::ios::binary);
    char Start[VersionPosition + 1] = {};
    File.read(Start, sizeof Start);
    File.clear();
    File.seekg(0, std::ios::end);
    const auto Size = static_cast<std::int64_t>(File.tellg());
    const std::int64_t Page = Start[VersionPosition] == MDB_VER_JET3 ? Jet3PageSize : AcePageSize;
    if (!IsAccess({Start, sizeof Start}) || Size % Page == 0)
        return {};
    return "; the file is cut off: its " + std::to_string(Size) + " bytes end within page " +
           std::to_string(Size / Page);
}

bool TMdbFile::IsName(std::string_view Text)
{
    return !Text.empty() && IsValidUtf8(Text);
}

bool TMdbFile::IsTable(const MdbCatalogEntry& Object)
{
    return Object.object_type == MDB_TABLE || IsLinked(Object);
}

bool TMdbFile::IsSystem(const MdbCatalogEntry& Object)
{
    return (static_cast<unsigned>(Object.flags) & SystemFlags) != 0;
}

bool TMdbFile::IsLinked(const MdbCatalogEntry& Object)
{
    return Object.object_type == MDB_LINKED_TABLE || Object.object_type == OdbcTable;
}

} // namespace kv

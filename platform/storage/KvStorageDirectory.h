// KvStorageDirectory - the directory of a compound document: what stands in it and where.
//
//   directory := entry*                                a storage is a binary tree of entries, sorted by name
//   entry     := name:utf16le[32]  namebytes:u16le  kind:u8  colour:u8  left:u32le  right:u32le  child:u32le
//                class:u8[16]  state:u32le  created:u64le  changed:u64le  first:u32le  size:u64le
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

enum TKvStorageEntryKind : std::uint8_t { ekUnused = 0, ekStorage = 1, ekStream = 2, ekRoot = 5 };

/// One entry of a directory.
struct TKvStorageEntry
{
    std::string_view NameField;                     ///< Views the directory.
    TKvStorageEntryKind Kind;
    std::uint32_t Left, Right;                      ///< Entries whose names come before and after this one's.
    std::uint32_t Child;                            ///< Top entry of what stands in this storage.
    std::uint32_t FirstSector;
    std::uint64_t Size;                             ///< Of the stream in bytes.

    /// The name as process text. Where the process's code page lacks a character of it, all that is not
    /// ASCII becomes "\u4E2D": a strange name must not keep a reader from the other entries.
    std::string Name() const;
};

/// Views the bytes of a directory, which must outlive the object.
class TKvStorageDirectory
{
public:
    explicit TKvStorageDirectory(std::string_view Entries) : Bytes(Entries) {}

    std::size_t Count() const;
    /// The entry `Index`, from 0, below Count(). Entry 0 is the root.
    TKvStorageEntry Entry(std::uint32_t Index) const;

    /// The entries that stand in the storage `Parent`, in the order of their tree.
    /// Raises EFormatError "directory entry %d does not exist" or "directory entry %d is named twice".
    std::vector<TKvStorageEntry> EntriesOf(const TKvStorageEntry& Parent) const;

private:
    std::string_view Bytes;
};

} // namespace kv

// KvJetPage - the pages of an Access database: 2048 bytes in Jet 3, 4096 later.
//
//   page := kind:u8 1:u8 free:u16 owner:u32 [4 in Jet 4] count:u16 slot:u16[count] ...
//           row[count - 1] ... row[0]
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

/// Puts `Part` in the place of as many bytes.
void PutBytes(std::string& Bytes, std::size_t Offset, std::string_view Part);

std::string EmptyJetPage(std::size_t Size, unsigned Kind, std::uint32_t Owner);
/// False when it does not fit. `Flags` are those of its slot.
bool AddJetRow(std::string& Page, std::string_view Row, unsigned Flags = 0);
/// The place of the last row of page `Number`: the page, and the slot in the low byte.
std::uint32_t LastJetRow(std::string_view Page, std::size_t Number);

/// RC4, which undoes itself.
void EncodeJet(std::string& Bytes, std::size_t Start, std::size_t Size, std::uint32_t Key);

} // namespace kv

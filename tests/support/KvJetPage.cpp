#include "KvJetPage.h"

#include <array>
#include <numeric>
#include <utility>

#include "KvByteCursor.h"
#include "KvBytes.h"

namespace kv {

namespace {

constexpr std::size_t Jet3Size = 2048;
constexpr unsigned PositionMask = 0x1FFF;           // of a slot

std::size_t SlotsStart(std::string_view Page) { return Page.size() == Jet3Size ? 10 : 14; }

unsigned U16At(std::string_view Page, std::size_t Offset)
{
    return LoadLittleEndian<std::uint16_t>(Page.data() + Offset);
}

unsigned RowCount(std::string_view Page) { return U16At(Page, SlotsStart(Page) - 2); }

} // namespace

void PutBytes(std::string& Bytes, std::size_t Offset, std::string_view Part)
{
    Bytes.replace(Offset, Part.size(), Part);
}

std::string EmptyJetPage(std::size_t Size, unsigned Kind, std::uint32_t Owner)
{
    std::string Page = TBytes().U8(Kind).U8(1).U16(0).U32(Owner);
    Page.resize(Size);
    return Page;
}

bool AddJetRow(std::string& Page, std::string_view Row, unsigned Flags)
{
    const auto Count = RowCount(Page);
    const std::size_t Slot = SlotsStart(Page) + 2 * Count;
    const std::size_t End = Count > 0 ? U16At(Page, Slot - 2) & PositionMask : Page.size();
    if (Slot + 2 + Row.size() > End)
        return false;
    const auto Start = End - Row.size();
    PutBytes(Page, Start, Row);
    PutBytes(Page, Slot, TBytes().U16(static_cast<unsigned>(Start) | Flags));
    PutBytes(Page, SlotsStart(Page) - 2, TBytes().U16(Count + 1));
    return true;
}

std::uint32_t LastJetRow(std::string_view Page, std::size_t Number)
{
    return static_cast<std::uint32_t>(Number) << 8 | (RowCount(Page) - 1);
}

void EncodeJet(std::string& Bytes, std::size_t Start, std::size_t Size, std::uint32_t Key)
{
    const std::string KeyBytes = TBytes().U32(Key);
    std::array<unsigned char, 256> State;
    std::iota(State.begin(), State.end(), static_cast<unsigned char>(0));
    for (std::size_t I = 0, J = 0; I < 256; ++I) {
        J = (J + State[I] + static_cast<unsigned char>(KeyBytes[I % 4])) % 256;
        std::swap(State[I], State[J]);
    }
    for (std::size_t Position = Start, I = 0, J = 0; Position < Start + Size; ++Position) {
        I = (I + 1) % 256;
        J = (J + State[I]) % 256;
        std::swap(State[I], State[J]);
        Bytes[Position] ^= static_cast<char>(State[(State[I] + State[J]) % 256]);
    }
}

} // namespace kv

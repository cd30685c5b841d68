// KvAccessReader - reads the stream that KvAccessProtocol describes. Its bytes come from a program that
// may have been led astray by a damaged database: nothing in them is taken for granted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KvAccessProtocol.h"
#include "KvAccessTypes.h"
#include "KvVariant.h"

namespace kv {

struct TAccessMessage
{
    TAccessMessageKind Kind = amEnd;
    std::string_view Body;                          ///< Valid until the next message is asked for.
};

struct TAccessTable
{
    std::string Name;                               ///< In the process's code page.
    bool IsSystem = false;                          ///< Access keeps it for itself.
    bool IsLinked = false;                          ///< Its records are in another database.
};

/// Cuts the stream into messages. Everything raises EFormatError, and holds no more memory than twice
/// the bytes that have come.
class TAccessReader
{
public:
    /// `Receive` waits for bytes, stores up to `Size` of them and tells how many; 0: there are no more.
    explicit TAccessReader(std::function<std::size_t(char* Bytes, std::size_t Size)> Receive);

    /// The next message. Raises when the stream ends without one.
    TAccessMessage Next();

private:
    std::string_view Take(std::size_t Size);        // the next bytes, which it waits for
    void MakeRoom(std::size_t Size);

    std::function<std::size_t(char*, std::size_t)> Receive;
    std::vector<char> Buffer;
    std::size_t Begin = 0, End = 0;                 // what was received and not taken
    bool Started = false;
};

// What the bodies say. Each raises EFormatError, for a name also EConvertError when the process's code
// page does not have its characters.
TAccessTable ReadAccessTable(std::string_view Body);
TAccessField ReadAccessField(std::string_view Body);
std::uint32_t ReadAccessCount(std::string_view Body);

/// The records of one message.
class TAccessRecords
{
public:
    /// For records of `Fields` values each.
    void SetFieldCount(std::size_t Fields) { Starts.assign(Fields, 0); }
    /// Begins before the first record of `Body`, which must outlive the reading.
    void Load(std::string_view Body);
    /// Moves to the next record; false when there is none.
    bool Next();
    /// A value of the current record. Texts and bytes may be loans from the body. Raises EDatabaseError
    /// for a value that could not be read, EConvertError for text that the code page does not have.
    TVariant Value(std::size_t Field) const;

private:
    std::string_view Body;
    std::size_t Position = 0;                       // after the current record
    std::uint32_t Left = 0;                         // records after the current one
    std::vector<std::size_t> Starts;                // of the values of the current record
};

} // namespace kv

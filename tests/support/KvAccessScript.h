// KvAccessScript - stands in for the reader of Access databases: a shell script that answers from files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KvAccessTypes.h"
#include "KvAccessWriter.h"
#include "KvTempFolder.h"

namespace kv {

/// Its database has whatever name it is asked for. Made anew for each run of the program, so that a test
/// can change its answers in between.
class TAccessScript
{
public:
    /// Lives in `Folder`, which must outlive it; the script is its "kvaccess".
    explicit TAccessScript(const TTempFolder& Folder);

    /// Adds a table that answers with these fields and with what `Fill` writes; every record takes one value
    /// for each field. `Counted` is what its definition claims.
    void Table(const std::string& Name, const std::vector<TAccessField>& Fields, std::uint32_t Counted,
               const std::function<void(TAccessWriter&)>& Fill, std::uint8_t Flags = ttLocal);
    /// Commands of the shell that run after the answer: "sleep 60", "kill -SEGV $$".
    void Afterwards(const std::string& Commands);
    /// The bytes of an answer in place of those that were: of "tables", or of "records.NAME".
    void Answer(const std::string& Of, std::string_view Bytes) const { Folder.Write(Of, Bytes); }
    std::string AnswerTo(const std::string& Of) const { return Folder.Read(Of); }

    std::string Program() const { return Folder / "kvaccess"; }

private:
    void WriteScript() const;
    void WriteTables() const;

    const TTempFolder& Folder;
    std::vector<std::pair<std::string, std::uint8_t>> Tables;
    std::string Commands;
};

/// The whole stream that `Fill` writes.
std::string AccessStream(const std::function<void(TAccessWriter&)>& Fill);

} // namespace kv

#include "KvAccessScript.h"

#include <filesystem>

namespace kv {

std::string AccessStream(const std::function<void(TAccessWriter&)>& Fill)
{
    std::string Stream;
    TAccessWriter Writer([&Stream](std::string_view Bytes) { Stream += Bytes; });
    Fill(Writer);
    return Stream;
}

TAccessScript::TAccessScript(const TTempFolder& TheFolder) : Folder(TheFolder)
{
    WriteScript();
    WriteTables();
}

void TAccessScript::Table(const std::string& Name, const std::vector<TAccessField>& Fields,
                          std::uint32_t Counted, const std::function<void(TAccessWriter&)>& Fill,
                          std::uint8_t Flags)
{
    Tables.emplace_back(Name, Flags);
    WriteTables();
    Answer("records." + Name, AccessStream([&](TAccessWriter& Writer) {
               for (const auto& Field : Fields)
                   Writer.Field(Field);
               Writer.Count(Counted);
               Fill(Writer);
               Writer.End();
           }));
}

void TAccessScript::Afterwards(const std::string& TheCommands)
{
    Commands = TheCommands;
    WriteScript();
}

void TAccessScript::WriteScript() const
{
    const auto Of = Folder.Path.string();
    const auto File = Folder.Write("kvaccess", "#!/bin/sh\n"
                                               "echo \"$1 $2 $3\" >>'" + Of + "/log'\n"
                                               "cat \"" + Of + "/$1${3:+.}$3\"\n" + Commands + "\n");
    std::filesystem::permissions(File, std::filesystem::perms::owner_all);
}

void TAccessScript::WriteTables() const
{
    Answer("tables", AccessStream([this](TAccessWriter& Writer) {
               for (const auto& [Name, Flags] : Tables)
                   Writer.Table(Name, Flags);
               Writer.End();
           }));
}

} // namespace kv

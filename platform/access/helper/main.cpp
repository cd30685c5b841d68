// kvaccess - reads an Access database for the program that started it and writes what it finds to standard
// output, in the form that KvAccessProtocol.h describes.
//
//   kvaccess tables FILE
//   kvaccess records FILE TABLE
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

#include "KvAccessWriter.h"
#include "KvException.h"
#include "KvMdbFile.h"
#include "KvMdbLimits.h"
#include "KvMdbRows.h"
#include "KvMdbValues.h"

namespace kv {

namespace {

constexpr int WrongUsage = 2;

/// Keeps standard output for the answer alone: about some damaged bytes the library writes there itself.
int TakeOutput()
{
    const int Answer = ::dup(STDOUT_FILENO);
    const int Nowhere = ::open("/dev/null", O_WRONLY);
    if (Answer < 0 || Nowhere < 0 || ::dup2(Nowhere, STDOUT_FILENO) < 0)
        std::_Exit(EXIT_FAILURE);
    return Answer;
}

void WriteAll(int Output, std::string_view Bytes)
{
    while (!Bytes.empty()) {
        const auto Written = ::write(Output, Bytes.data(), Bytes.size());
        if (Written < 0 && errno != EINTR)
            std::_Exit(EXIT_FAILURE);               // nobody reads any more
        if (Written > 0)
            Bytes.remove_prefix(static_cast<std::size_t>(Written));
    }
    GrantTime();
}

void WriteTables(const std::string& FileName, TAccessWriter& Writer)
{
    const TMdbFile File(FileName);
    for (const auto* const Object : File.Objects())
        if (TMdbFile::IsTable(*Object))
            Writer.Table(Object->object_name,
                         static_cast<std::uint8_t>((TMdbFile::IsSystem(*Object) ? ttSystem : ttLocal) |
                                                   (TMdbFile::IsLinked(*Object) ? ttLinked : ttLocal)));
}

/// Hands records over that come slowly, though they are few: whoever waits for them counts records.
class TSignsOfLife
{
public:
    explicit TSignsOfLife(TAccessWriter& TheWriter) : Writer(TheWriter) {}

    void Give()
    {
        const auto Now = std::chrono::steady_clock::now();
        if (Now - Last < std::chrono::milliseconds(200))
            return;
        Writer.Flush();
        Last = Now;
    }

private:
    TAccessWriter& Writer;
    std::chrono::steady_clock::time_point Last = std::chrono::steady_clock::now();
};

void WriteRecords(const std::string& FileName, std::string_view TableName, TAccessWriter& Writer)
{
    const TMdbFile File(FileName);
    TMdbRows Rows(File, File.Table(TableName));
    for (std::size_t I = 0; I < Rows.FieldCount(); ++I)
        Writer.Field(DescribeField(Rows.Column(I), File.IsUnicode()));
    Writer.Count(Rows.RecordCount());
    TMdbValues Values(File, Writer);
    TSignsOfLife Signs(Writer);
    while (Rows.Next()) {
        Values.WriteRecord(Rows);
        Signs.Give();
    }
}

void Answer(int Count, char** Arguments)
{
    const int Output = TakeOutput();
    TAccessWriter Writer([Output](std::string_view Bytes) { WriteAll(Output, Bytes); });
    try {
        if (Count == 4)
            WriteRecords(Arguments[2], Arguments[3], Writer);
        else
            WriteTables(Arguments[2], Writer);
        Writer.End();
    }
    catch (const EFormatError& Error) {
        Writer.Damage(Error.Message + CutNote(Arguments[2]));
    }
    catch (const Exception& Error) {
        Writer.Error(Error.Message);
    }
    catch (const std::bad_alloc&) {
        Writer.Error("reading it takes more memory than " + std::to_string(MaxReaderMemory >> 20) + " MB");
    }
}

bool IsUsage(int Count, char** Arguments)
{
    const std::string_view Task = Count > 1 ? Arguments[1] : "";
    return (Task == "tables" && Count == 3) || (Task == "records" && Count == 4);
}

} // namespace

} // namespace kv

int main(int Count, char** Arguments)
{
    if (!kv::IsUsage(Count, Arguments)) {
        std::cerr << "kvaccess reads Access databases for kvimport; it is not meant to be run by hand.\n";
        return kv::WrongUsage;
    }
    kv::EndWithParent();
    kv::LimitResources();
    for (const char* const Variable : {"MDBOPTS", "MDBICONV", "MDB_JET3_CHARSET"})
        ::unsetenv(Variable);                       // settings of the library; text is to be UTF-8
    kv::Answer(Count, Arguments);
    std::_Exit(EXIT_SUCCESS);                       // the library may fall over what a damaged file left
}

#include "KvAccessEngine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "KvAccessHelper.h"
#include "KvAccessReader.h"
#include "KvCodePage.h"
#include "KvException.h"

namespace kv {

namespace {

/// One run of the program on a database. What goes wrong in it names the file.
class TAccessStream
{
public:
    TAccessStream(const TAccessHelperOptions& Options, std::string DatabaseName,
                  std::vector<std::string> Arguments)
        : FileName(std::move(DatabaseName)), Helper(Options, Arguments),
          Reader([this](char* Bytes, std::size_t Size) { return Helper.Receive(Bytes, Size); })
    {
    }

    /// The next message, which is no error.
    TAccessMessage Next()
    {
        return Named([this] {
            const auto Message = Reader.Next();
            Helper.NoteProgress();
            if (Message.Kind == amError)
                throw EDatabaseError(Utf8ToAnsi(Message.Body));
            if (Message.Kind == amDamage)
                throw EDatabaseError(Utf8ToAnsi(Message.Body), {.Rule = erFormat});
            return Message;
        });
    }

    /// What `Work` gives; its errors get the name of the file.
    template <class TWork> auto Named(TWork&& Work) -> decltype(Work())
    {
        try {
            return Work();
        }
        catch (const Exception& Error) {
            auto Facts = Error.Facts;
            Facts.FileName = FileName;
            throw EDatabaseError(FileName + ": " + Error.Message, std::move(Facts));
        }
    }

    [[noreturn]] void RaiseUnexpected()
    {
        Named([] { throw EDatabaseError("the reader of Access databases gave an answer out of its order"); });
        std::abort();
    }

private:
    const std::string FileName;
    TAccessHelper Helper;
    TAccessReader Reader;
};

class THelperRecordset final : public TAccessRecordset
{
public:
    THelperRecordset(TAccessHelperOptions TheOptions, std::string DatabaseName, std::string Table)
        : Options(std::move(TheOptions)), FileName(std::move(DatabaseName)), TableName(std::move(Table))
    {
        Start();
    }

    const std::vector<TAccessField>& Fields() const override { return FFields; }
    bool Eof() const override { return AtEnd; }
    int RecordCount() override
    {
        return static_cast<int>(std::min<std::uint32_t>(Counted, std::numeric_limits<int>::max()));
    }
    void MoveFirst() override
    {
        if (!AtFirst)
            Start();
    }
    void MoveNext() override
    {
        AtFirst = AtFirst && AtEnd;
        if (!AtEnd)
            Step();
    }
    TVariant Value(int Index) override
    {
        if (AtEnd)
            throw EDatabaseError(FileName + ": no current record in table " + TableName,
                                 {.FileName = FileName, .Rule = erMissing});
        try {
            return Stream->Named([this, Index] { return Records.Value(static_cast<std::size_t>(Index)); });
        }
        catch (EDatabaseError& Error) {
            Error.Facts.Field = FFields[static_cast<std::size_t>(Index)].Name;
            Error.Facts.Place = Place();
            throw;
        }
    }
    void Close() override
    {
        Stream.reset();
        AtFirst = false;
        AtEnd = true;
    }

private:
    /// Up to the first record.
    void Start()
    {
        Close();
        FFields.clear();
        Stream.emplace(Options, FileName, std::vector<std::string>{"records", FileName, ToUtf8(TableName)});
        auto Message = Stream->Next();
        for (; Message.Kind == amField; Message = Stream->Next()) {
            if (FFields.size() == TAccessBounds::MaxFields)
                Stream->RaiseUnexpected();
            FFields.push_back(Stream->Named([&Message] { return ReadAccessField(Message.Body); }));
        }
        if (Message.Kind != amCount)
            Stream->RaiseUnexpected();
        Counted = Stream->Named([&Message] { return ReadAccessCount(Message.Body); });
        Records = {};
        Records.SetFieldCount(FFields.size());
        Number = 0;
        Step();
        AtFirst = true;
    }

    void Step()
    {
        ++Number;                                   // errors are about the record that is looked for
        try {
            Find();
        }
        catch (EDatabaseError& Error) {
            Error.Facts.Place = Place();
            throw;
        }
    }

    /// An error leaves no current record: its bytes are gone with the message before.
    void Find()
    {
        AtEnd = true;
        while (!Stream->Named([this] { return Records.Next(); })) {
            const auto Message = Stream->Next();
            if (Message.Kind == amEnd)
                return;
            if (Message.Kind != amRecords)
                Stream->RaiseUnexpected();
            Stream->Named([&] { Records.Load(Message.Body); });
        }
        AtEnd = false;
    }

    std::string Place() const { return "record " + std::to_string(Number); }

    static std::string ToUtf8(const std::string& Text)
    {
        std::string Buffer;
        return std::string(AnsiToUtf8(Text, Buffer));
    }

    const TAccessHelperOptions Options;
    const std::string FileName, TableName;
    std::optional<TAccessStream> Stream;            // none when closed
    std::vector<TAccessField> FFields;
    std::uint32_t Counted = 0;
    TAccessRecords Records;                         // of the last message
    std::int64_t Number = 0;                        // of the current record, from 1
    bool AtFirst = false, AtEnd = true;
};

class THelperDatabase final : public TAccessDatabase
{
public:
    /// Reading the list of tables shows that it is a database.
    THelperDatabase(TAccessHelperOptions TheOptions, std::string DatabaseName)
        : Options(std::move(TheOptions)), FileName(std::move(DatabaseName))
    {
        TAccessStream Stream(Options, FileName, {"tables", FileName});
        for (auto Message = Stream.Next(); Message.Kind != amEnd; Message = Stream.Next()) {
            if (Message.Kind != amTable || Tables.size() == TAccessBounds::MaxTables)
                Stream.RaiseUnexpected();
            Tables.push_back(Stream.Named([&Message] { return ReadAccessTable(Message.Body); }));
        }
    }

    const std::vector<TAccessTable>& TableDefs() override { return Tables; }
    std::unique_ptr<TAccessRecordset> OpenRecordset(const std::string& TableName, int Type, int, int) override
    {
        if (Type != AccessTableRecordset)
            throw EDatabaseError(
                FileName + ": a recordset of type " + std::to_string(Type) + " cannot be opened",
                {.FileName = FileName});
        return std::make_unique<THelperRecordset>(Options, FileName, TableName);
    }
    void Close() override {}

private:
    const TAccessHelperOptions Options;
    const std::string FileName;
    std::vector<TAccessTable> Tables;
};

class THelperEngine final : public TAccessEngine
{
public:
    explicit THelperEngine(TAccessHelperOptions TheOptions) : Options(std::move(TheOptions)) {}

    void SetContinue(std::function<bool()> Value) override { Options.Continue = std::move(Value); }
    void SetPatience(std::chrono::milliseconds Value) override { Options.Patience = Value; }
    std::unique_ptr<TAccessDatabase> OpenDatabase(const std::string& FileName) override
    {
        return std::make_unique<THelperDatabase>(Options, FileName);
    }

private:
    TAccessHelperOptions Options;
};

} // namespace

std::unique_ptr<TAccessEngine> MakeAccessEngine(TAccessHelperOptions Options)
{
    return std::make_unique<THelperEngine>(std::move(Options));
}

} // namespace kv

#include "KvTable.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <string_view>

#include "KvCompanionFile.h"
#include "KvDbaseFile.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvParadoxFile.h"
#include "KvPublish.h"
#include "KvTableFile.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t SignatureSize = 256;          // enough of a file to tell its format

/// A format of table files.
struct TFormat
{
    TTableType Type;
    std::string_view Extension;
    bool (*Begins)(std::string_view Bytes);         // so: the first SignatureSize bytes, or all of them
    std::unique_ptr<TKvTableFile> (*Open)(const std::string& FileName, bool Transliterate);
};

template <class TFile> std::unique_ptr<TKvTableFile> OpenAs(const std::string& FileName, bool Transliterate)
{
    return std::make_unique<TFile>(FileName, Transliterate);
}

constexpr TFormat Formats[] = {
    {ttParadox, ".db", IsParadox, OpenAs<TKvParadoxFile>},
    {ttDBase, ".dbf", IsDbase, OpenAs<TKvDbaseFile>},
    {ttFoxPro, ".dbf", IsDbase, OpenAs<TKvDbaseFile>},
};

const TFormat* FormatOfType(TTableType Type)
{
    const auto* const Found = std::ranges::find(Formats, Type, &TFormat::Type);
    return Found != std::end(Formats) ? Found : nullptr;
}

const TFormat& FormatOf(const std::string& FileName, TTableType Type)
{
    if (const auto* const Stated = FormatOfType(Type))
        return *Stated;
    if (Type != ttDefault)
        throw EDatabaseError(FormatText("File \"%s\" cannot be opened as a table of text", {FileName}),
                             {.FileName = FileName});
    const auto Extension = std::filesystem::path(FileName).extension().string();
    for (const auto& Format : Formats)
        if (SameText(Extension, Format.Extension))
            return Format;
    const auto Bytes = ReadFileBytes(FileName, SignatureSize);
    for (const auto& Format : Formats)
        if (Format.Begins(Bytes.View()))
            return Format;
    throw EDatabaseError(FormatText("File \"%s\" is neither a Paradox nor a dBase table", {FileName}),
                         {.FileName = FileName, .Rule = erFormat});
}

int ClampToInt(std::size_t Count)
{
    constexpr std::size_t Most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(Count, Most));
}

/// Tables used to be named without the extension that their type implies, and in any case.
std::string FileNameOf(const std::string& TableName, TTableType Type)
{
    const std::filesystem::path Path(TableName);
    const auto* const Format = FormatOfType(Type);
    std::error_code Ignored;
    if (!Format || Path.has_extension() || std::filesystem::exists(Path, Ignored))
        return TableName;
    return CompanionFileName(TableName + std::string(Format->Extension), Format->Extension);
}

} // namespace

TSession& Session()
{
    static TSession Default;
    return Default;
}

TPublishedProperties TDBDataSet::PublishedProperties() const
{
    auto Properties = TDataSet::PublishedProperties();
    Properties.push_back(Publish("SessionName", &TDBDataSet::SessionName));
    return Properties;
}

TTable::TTable(TComponent* Owner) : TDBDataSet(Owner) {}

TTable::~TTable()
{
    Close();
}

TPublishedProperties TTable::PublishedProperties() const
{
    auto Properties = TDBDataSet::PublishedProperties();
    Properties.push_back(Publish("TableName", &TTable::TableName));
    Properties.push_back(Publish("TableType", &TTable::TableType, TableTypeNames));
    Properties.push_back(Publish("Transliterate", &TTable::Transliterate));
    return Properties;
}

int TTable::RecNo()
{
    return Eof() ? 0 : ClampToInt(File->Number());
}

std::vector<TKvTableRemark> TTable::Remarks() const
{
    return File ? File->Remarks() : std::vector<TKvTableRemark>();
}

void TTable::InternalOpen()
{
    if (TableName.empty())
        Fail("TableName is missing");
    const auto FileName = FileNameOf(TableName, TableType);
    File = FormatOf(FileName, TableType).Open(FileName, Transliterate);
    for (auto Def : File->FieldDefs()) {
        Def.ReadOnly = true;
        AddField(std::move(Def));
    }
}

void TTable::InternalClose()
{
    File.reset();
}

void TTable::InternalFirst()
{
    RecordsBefore = 0;
    File->StopAfter(LastRecord > 0 ? static_cast<std::size_t>(LastRecord)
                                   : std::numeric_limits<std::size_t>::max());
    File->First();
}

void TTable::InternalNext()
{
    ++RecordsBefore;
    File->Next();
}

bool TTable::InternalEof()
{
    return File->Eof();
}

int TTable::InternalRecordCount()
{
    return ClampToInt(File->RecordCount());
}

TVariant TTable::InternalGetValue(const TField& Field)
{
    return File->Value(static_cast<std::size_t>(Field.Index()));
}

void TTable::InternalInsert(const TRecordBuffer&)
{
    Fail("the table cannot be changed");
}

void TTable::InternalUpdate(const TRecordBuffer&)
{
    Fail("the table cannot be changed");
}

void TTable::InternalDelete()
{
    Fail("the table cannot be changed");
}

bool TTable::InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                            TLocateOptions Options)
{
    const auto Before = RecordsBefore;
    const auto Matches = [&](const TField* Key, const TVariant& Value) {
        return MatchesKey(InternalGetValue(*Key), Value, Options);
    };
    for (InternalFirst(); !InternalEof(); InternalNext())
        if (std::ranges::equal(Keys, Values, Matches))
            return true;
    ReturnTo(Before);
    return false;
}

void TTable::ReturnTo(std::size_t Before)
{
    for (InternalFirst(); RecordsBefore < Before; InternalNext()) {}
}

std::string TTable::DisplayName() const
{
    return TableName.empty() ? TDBDataSet::DisplayName() : TableName;
}

} // namespace kv

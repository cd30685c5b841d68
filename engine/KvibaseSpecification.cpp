// Saving the settings of an import to a file, and loading them again.
//
// The keys of a specification and their order are those that its readers know. What only some sources
// have goes to a section of its own behind them.
#include "Kvibase.h"

#include <optional>

#include "KvApplication.h"
#include "KvIniFile.h"
#include "KvText.h"
#include "KvUserInterface.h"
#include "KviOwnSettings.h"
#include "KviTableType.h"

namespace kv {

namespace {

constexpr char Common[] = "Common", Mapped[] = "Mappings", Layout[] = "Text", Formats[] = "DataFormat";
constexpr char CountKey[] = "Count";

constexpr char SpecificationTitle[] = "Import specification";
constexpr char SpecificationFilter[] = "Import specification|*.KVI|All files (*.*)|*.*";

constexpr int MaxMappings = 65536;                  // lines; a table has far fewer fields

std::string MapKey(int Index)
{
    return "Map" + std::to_string(Index);
}

std::string HexOf(char Character)
{
    return TextToHex({&Character, 1});
}

/// The text behind a hexadecimal value.
std::string ReadHex(const TIniFile& File, const char* Section, const char* Key, std::string_view Current)
{
    try {
        return HexToText(File.ReadString(Section, Key, TextToHex(Current)));
    }
    catch (const EConvertError& Error) {
        File.RefuseValue(Section, Key, Error.Message);
    }
}

/// The first character behind a hexadecimal value, if there is one.
std::optional<char> ReadCharacter(const TIniFile& File, const char* Section, const char* Key, char Current)
{
    const auto Text = ReadHex(File, Section, Key, {&Current, 1});
    return Text.empty() ? std::nullopt : std::optional(Text.front());
}

template <class TEnum>
TEnum ReadOrdinal(const TIniFile& File, const char* Section, const char* Key, TEnum Current, TEnum Last)
{
    const int Ordinal = File.ReadInteger(Section, Key, Current);
    if (Ordinal < 0 || Ordinal > Last)
        File.RefuseValue(Section, Key, FormatText("%d is none of the values 0 to %d",
                                                  {std::to_string(Ordinal), std::to_string(Last)}));
    return static_cast<TEnum>(Ordinal);
}

/// Nothing where the file names no kind that there is.
std::optional<TTableTypeImport> ReadTableType(const TIniFile& File)
{
    return TableTypeOfName(File.ReadString(Common, "TableType", {}));
}

void WriteMappings(TIniFile& File, const TStrings& Lines)
{
    if (Lines.Count() > MaxMappings)
        throw EFileError(
            FormatText("Cannot write file \"%s\": of %d mappings a specification holds %d",
                       {File.FileName(), std::to_string(Lines.Count()), std::to_string(MaxMappings)}));
    File.WriteInteger(Mapped, CountKey, Lines.Count());
    for (int I = 0; I < Lines.Count(); ++I)
        File.WriteString(Mapped, MapKey(I), Lines[I]);
}

void ReadMappings(const TIniFile& File, TStrings& Lines)
{
    Lines.Clear();
    const int Count = File.ReadInteger(Mapped, CountKey, 0);
    if (Count > MaxMappings)
        File.RefuseValue(Mapped, CountKey, FormatText("%d is more than %d", {std::to_string(Count),
                                                                             std::to_string(MaxMappings)}));
    for (int I = 0; I < Count; ++I)
        Lines.Add(File.ReadString(Mapped, MapKey(I), {}));
}

void WriteFormats(TIniFile& File, const TKvIDataFormats& Values)
{
    File.WriteInteger(Formats, "DateOrder", Values.DateOrder);
    File.WriteString(Formats, "DateSeparator", HexOf(Values.DateSeparator));
    File.WriteString(Formats, "TimeSeparator", HexOf(Values.TimeSeparator));
    File.WriteString(Formats, "ThousandSeparator", HexOf(Values.ThousandSeparator));
    File.WriteString(Formats, "DecimalSeparator", HexOf(Values.DecimalSeparator));
    File.WriteBool(Formats, "FourDigitYear", Values.FourDigitYear);
    File.WriteBool(Formats, "LeadingZerosInDate", Values.LeadingZerosInDate);
}

void ReadFormats(const TIniFile& File, TKvIDataFormats& Values)
{
    const auto ReadSeparator = [&File](const char* Key, char& Value) {
        Value = ReadCharacter(File, Formats, Key, Value).value_or(Value);
    };
    Values.DateOrder = ReadOrdinal(File, Formats, "DateOrder", Values.DateOrder, doMYD);
    ReadSeparator("DateSeparator", Values.DateSeparator);
    ReadSeparator("TimeSeparator", Values.TimeSeparator);
    ReadSeparator("ThousandSeparator", Values.ThousandSeparator);
    ReadSeparator("DecimalSeparator", Values.DecimalSeparator);
    Values.FourDigitYear = File.ReadBool(Formats, "FourDigitYear", Values.FourDigitYear);
    Values.LeadingZerosInDate = File.ReadBool(Formats, "LeadingZerosInDate", Values.LeadingZerosInDate);
}

/// Beside the running program, named after the source, which may lie on a system with other slashes.
std::string ProposedFileName(const std::string& SourceFileName)
{
    const auto Name = SourceFileName.substr(SourceFileName.find_last_of("/\\") + 1);
    return ApplicationFolder() + Name.substr(0, Name.rfind('.')) + ".kvi";
}

/// What the user makes of both names; on Cancel they stay.
void AskForNames(std::string& SpecName, std::string& FileName, const std::string& SourceFileName)
{
    TSaveSpecificationRequest Request{.Caption = SpecificationTitle,
                                      .NameLabel = SpecificationTitle,
                                      .FileLabel = "Import from File:",
                                      .SpecName = SpecName.empty() ? SpecificationTitle : SpecName,
                                      .FileName =
                                          FileName.empty() ? ProposedFileName(SourceFileName) : FileName,
                                      .Filter = SpecificationFilter,
                                      .Ok = "&OK",
                                      .Cancel = "&Cancel"};
    if (!UserInterface().AskSaveSpecification(Request))
        return;
    SpecName = Request.SpecName;
    FileName = Request.FileName;
}

} // namespace

std::string TKvImportBaseComponent::Translate(std::string_view S, bool ToHex)
{
    return ToHex ? TextToHex(S) : HexToText(S);
}

void TKvImportBaseComponent::SaveSpecification(std::string SpecName, std::string FileName, bool ShowDialog)
{
    if (ShowDialog)
        AskForNames(SpecName, FileName, SourceFileName);
    if (FileName.empty() || SpecName.empty())
        return;
    if (OnBeforeSaveSpecification)
        OnBeforeSaveSpecification(*this);
    TIniFile File(FileName, ioOpenOrCreate);
    WriteSpecification(File, SpecName);
    File.UpdateFile();
    if (OnAfterSaveSpecification)
        OnAfterSaveSpecification(*this);
}

void TKvImportBaseComponent::WriteSpecification(TIniFile& File, const std::string& SpecName) const
{
    if (ReadTableType(File).value_or(TableType) != TableType)
        EraseOwnSettings(File);
    WriteCommon(File, SpecName);
    WriteMappings(File, FMappings);
    WriteLayout(File);
    WriteFormats(File, DataFormats);
    WriteOwnSettings(File, *this);
}

void TKvImportBaseComponent::LoadSpecification(std::string FileName)
{
    if (FileName.empty() && !UserInterface().PickFileToOpen(SpecificationFilter, FileName))
        return;
    if (FileName.empty())
        return;
    if (OnBeforeLoadSpecification)
        OnBeforeLoadSpecification(*this);
    ReadSpecification(TIniFile(FileName));
    if (OnAfterLoadSpecification)
        OnAfterLoadSpecification(*this);
}

void TKvImportBaseComponent::ReadSpecification(const TIniFile& File)
{
    ReadCommon(File);
    ReadMappings(File, FMappings);
    ReadLayout(File);
    ReadFormats(File, DataFormats);
    ReadOwnSettings(File, *this);
}

void TKvImportBaseComponent::WriteCommon(TIniFile& File, const std::string& SpecName) const
{
    File.WriteString(Common, "App", ApplicationTitle());
    File.WriteString(Common, "Description", "KvImport: specification");
    File.WriteString(Common, "Specification", SpecName);
    File.WriteString(Common, "DatasetKeys", DatasetKeys);
    File.WriteInteger(Common, "Mode", Mode);
    File.WriteString(Common, "TableType", TableTypeName(TableType));
    File.WriteString(Common, "SourceFileName", SourceFileName);
    File.WriteInteger(Common, "CharacterSet", CharacterSet);
}

void TKvImportBaseComponent::ReadCommon(const TIniFile& File)
{
    DatasetKeys = File.ReadString(Common, "DatasetKeys", DatasetKeys);
    Mode = ReadOrdinal(File, Common, "Mode", Mode, imCopy);
    TableType = ReadTableType(File).value_or(TableType);
    SourceFileName = File.ReadString(Common, "SourceFileName", SourceFileName);
    CharacterSet = ReadOrdinal(File, Common, "CharacterSet", CharacterSet, csiASCII_MSDOS);
}

void TKvImportBaseComponent::WriteLayout(TIniFile& File) const
{
    File.WriteString(Layout, "FieldDelimiter", HexOf(FFieldDelimiterCustom));
    File.WriteString(Layout, "TextQualifier", HexOf(FTextQualifierCustom));
    File.WriteString(Layout, "RecordSeparator", TextToHex(FRecordSeparatorCustom));
    File.WriteBool(Layout, "Fixed", Fixed);
    File.WriteInteger(Layout, "RowFirst", RowFirst);
    File.WriteInteger(Layout, "RowLast", RowLast);
}

void TKvImportBaseComponent::ReadLayout(const TIniFile& File)
{
    if (const auto Delimiter = ReadCharacter(File, Layout, "FieldDelimiter", FFieldDelimiterCustom))
        SetFieldDelimiterCustom(*Delimiter);
    if (const auto Qualifier = ReadCharacter(File, Layout, "TextQualifier", FTextQualifierCustom))
        SetTextQualifierCustom(*Qualifier);
    SetRecordSeparatorCustom(ReadHex(File, Layout, "RecordSeparator", FRecordSeparatorCustom));
    Fixed = File.ReadBool(Layout, "Fixed", Fixed);
    RowFirst = File.ReadInteger(Layout, "RowFirst", RowFirst);
    RowLast = File.ReadInteger(Layout, "RowLast", RowLast);
}

} // namespace kv

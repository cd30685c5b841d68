// The columns that a text file is taken to have while nobody has said, and the mapping that follows.
#include "Kvi2txt.h"

#include <algorithm>

#include "KvText.h"
#include "KvTextFields.h"
#include "Kvi2txtLine.h"
#include "Kvi2txtState.h"

namespace kv {

namespace {

constexpr int PositionScale = 10000;                // past every position

bool NamesField(std::string_view Name, const TField& Field)
{
    return !Name.empty() && SameText(Name, Field.FieldName());
}

void FillDelimited(char Delimiter, char TextQualifier, std::string_view Line, std::vector<int>& Positions)
{
    if (Line.size() > MaxLineSize)
        throw Exception(std::string("The line ") + MsgLineTooLong);
    TKvTextFields Fields(Delimiter, TextQualifier);
    Fields.Split(Line);
    for (std::size_t I = 0; I < Fields.Count(); ++I)
        Positions.push_back(static_cast<int>(Fields[I].Start + 1) * PositionScale +
                            static_cast<int>(Fields[I].Stop));
}

/// A column holds the byte after its field's width too, unless that is a delimiter or qualifier.
void FillBreaks(const TDataSet& DataSet, char Delimiter, char TextQualifier, std::string_view Line,
                std::vector<int>& Positions)
{
    const auto Size = static_cast<std::int64_t>(Line.size());
    const auto CharAt = [Line](std::int64_t Position) {
        return Line[static_cast<std::size_t>(Position - 1)];
    };
    std::int64_t Start = 1;                         // all positions count from 1
    for (int I = 0; I < DataSet.FieldCount(); ++I) {
        std::int64_t End = Start + DataSet.Fields(I).DisplayWidth();
        std::int64_t Stop = End;
        if (End > Size)
            End = Stop = Size;
        else if (CharAt(End) == TextQualifier || CharAt(End) == Delimiter)
            --Stop;
        Positions.push_back(static_cast<int>(Stop));
        Start = End + 1;
        if (Start <= Size && CharAt(Start) == Delimiter)
            ++Start;
        if (Start >= Size)
            break;
    }
}

} // namespace

void FillFields(TDataSet* DataSet, bool IsFixed, char Delimiter, char TextQualifier, std::string_view Line,
                std::vector<int>& Positions)
{
    Positions.clear();
    if (!IsFixed)
        FillDelimited(Delimiter, TextQualifier, Line, Positions);
    else if (DataSet)
        FillBreaks(*DataSet, Delimiter, TextQualifier, Line, Positions);
}

/// Line 1 is enough: the run that follows reads the file anyway.
void TKvImportFromText::DetectAutoMapping()
{
    // the figures of the run before are gone too, should this fail
    FFieldCounts = {};
    LoadLines({.Header = 1});
    if (RowFirst > 1)
        Fixed ? MapHeaderBreaks() : MapHeaderFields();
    else
        Fixed ? MapFieldWidths() : MapFieldsInOrder();
    AfterLook();
}

/// By the names in line 1. A field whose name is not there gets no mapping.
void TKvImportFromText::MapHeaderFields()
{
    const auto& Header = State->Text.Header();
    CheckLength(Header, 1, 1);
    auto& Names = *State->Fields;
    Names.Split(Header);
    MapFields([&Names](const TField& Field) {
        std::size_t Position = 0;
        while (Position < Names.Count() && !NamesField(Names.Value(Position), Field))
            ++Position;
        return Position < Names.Count() ? "Field" + std::to_string(Position + 1) : std::string();
    });
}

/// By the names in line 1 between breaks that the fields' widths propose. The text compared begins with
/// the byte at the last break, wherever the search for the field before has left it, and the column
/// that is mapped is the one byte at the break: programs know the result as it is.
void TKvImportFromText::MapHeaderBreaks()
{
    const auto& Header = State->Text.Header();
    std::vector<int> Breaks;
    FillFields(GetDataSet(), true, GetFieldDelimiterCustom(), GetTextQualifierCustom(), Header, Breaks);
    std::size_t Pos = 0;
    MapFields([&](const TField& Field) {
        for (const int Break : Breaks) {
            const auto Part = Slice(Header, std::max<std::size_t>(Pos, 1), static_cast<std::size_t>(Break));
            Pos = static_cast<std::size_t>(Break);
            if (NamesField(Part, Field))
                return "Text" + std::to_string(Pos) + "-" + std::to_string(Break);
        }
        return std::string();
    });
}

void TKvImportFromText::MapFieldsInOrder()
{
    MapFields([](const TField& Field) { return "Field" + std::to_string(Field.Index() + 1); });
}

/// One column after the other. The first begins at 0, which is no position: it imports its own name.
void TKvImportFromText::MapFieldWidths()
{
    std::int64_t Pos = 0;
    MapFields([&](const TField& Field) {
        const auto Start = Pos, Stop = Start + Field.DisplayWidth();
        Pos = Stop + 1 + (GetFieldDelimiterCustom() != '\0');
        return "Text" + std::to_string(Start) + "-" + std::to_string(Stop);
    });
}

} // namespace kv

// A look at the source: its columns and first rows, read by what a run reads them with.
#include "Kvibase.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "KvName.h"
#include "KvText.h"
#include "KviActive.h"

namespace kv {

namespace {

constexpr char MsgLookCanceled[] = "Looking at the source was canceled by user.";

} // namespace

TKvISourceView TKvImportBaseComponent::Look(const TKvISourceLook& What)
{
    const TActive Active(*this, acLooking, "Look");
    TKvISourceView View;
    try {
        View = LookAtSource(What);
    }
    catch (...) {
        DestFields.clear();
        try {
            AfterLook();
        }
        catch (...) {                               // what has gone wrong first tells more
        }
        throw;
    }
    DestFields.clear();
    AfterLook();
    return View;
}

TKvISourceView TKvImportBaseComponent::LookAtSource(const TKvISourceLook& What)
{
    TKvISourceView View;
    LookedAt = 0;
    const auto CheckCancel = [this] {               // what was read then is not the source
        if (IsCanceled())
            throw Exception(MsgLookCanceled, {.Rule = erCancelled});
    };
    BeforeLook(What);
    CheckCancel();
    if (What.Columns.empty())
        View.Columns = SourceColumns(What.HeaderRow);
    for (const auto& Column : What.Columns)
        View.Columns.push_back({.Name = Column});
    View.Offered = View.Columns.size();
    DestFields.clear();
    for (const auto& Column : View.Columns)
        PretendMapping(Column);
    GoFirst();
    CheckCancel();
    for (; NeedMore(); GoNext()) {
        View.HasMore = std::cmp_greater_equal(View.Rows.size(), What.Rows);
        if (View.HasMore)
            break;
        ++LookedAt;
        View.Rows.push_back(LookAtRecord(View.Columns, What.Columns.empty()));
    }
    return View;
}

/// Some sources find a column by its place in the mappings.
void TKvImportBaseComponent::PretendMapping(const TKvISourceColumn& Column)
{
    DestFields.push_back({.Name = {}, .Source = SourceName(Column.Name), .Value = Null});
}

TKvISourceRow TKvImportBaseComponent::LookAtRecord(std::vector<TKvISourceColumn>& Columns, bool MayWiden)
{
    TKvISourceRow Row;
    try {
        LoadRecord();
    }
    catch (const Exception& Error) {
        Row.Position = SourcePosition();
        Row.Values.assign(Columns.size(), {.Value = Null, .Error = Error.Message});
        return Row;
    }
    Row.Position = SourcePosition();
    const int Width = MayWiden ? RecordWidth() : -1;
    while (std::cmp_less(Columns.size(), Width)) {
        Columns.push_back({.Name = "Field" + std::to_string(Columns.size() + 1)});
        PretendMapping(Columns.back());
    }
    const auto Count = Width < 0 ? Columns.size() : static_cast<std::size_t>(Width);
    for (std::size_t I = 0; I < Count; ++I) {
        const TVariant Source(SourceName(Columns[I].Name)); // which the value may be a loan of
        Row.Values.push_back(LookAtValue([&] { return GetFieldValue(Source); }, Columns[I].DataType));
    }
    if (MayWiden && Columns.empty() && SourceRecord().IsString()) // lines that nobody has told how to cut
        Row.Values.push_back(LookAtValue([this] { return SourceRecord(); }, ftUnknown));
    return Row;
}

TKvISourceValue TKvImportBaseComponent::LookAtValue(const std::function<TVariant()>& ValueOf,
                                                    TFieldType DataType)
{
    try {
        const TVariant Lent = ValueOf();
        TVariant Value(Lent);                       // owned
        if (Value.IsString() && IsOemText() && !IsBinaryField(DataType))
            Value = UECode(true, Value.Text());
        return {.Value = std::move(Value)};
    }
    catch (const Exception& Error) {
        return {.Value = Null, .Error = Error.Message};
    }
}

/// Names that differ in case only are told apart where a source has such.
TKvISourceName TKvImportBaseComponent::ResolveName(const std::string& Wanted,
                                                   const std::vector<TKvISourceColumn>& Columns) const
{
    const auto IsSame = [&Wanted](const TKvISourceColumn& Each) { return SameName(Each.Name, Wanted); };
    auto Found = std::ranges::find(Columns, Wanted, &TKvISourceColumn::Name);
    if (Found == Columns.end())
        Found = std::ranges::find_if(Columns, IsSame);
    if (Found == Columns.end())
        return {.Kind = snConstant, .Name = Wanted};
    return {.Kind = snColumn, .Name = Found->Name};
}

void TKvImportBaseComponent::SelectPart(int, const TKvISourcePart& Part)
{
    throw Exception(FormatText("%s has no parts such as '%s'", {ClassName(), Part.Name}));
}

void TKvImportBaseComponent::BeforeLook(const TKvISourceLook&)
{
    BeforeImport();
}

std::vector<TKvISourceColumn> TKvImportBaseComponent::SourceColumns(int)
{
    return {};
}

std::string TKvImportBaseComponent::TitleText(std::string_view Header) const
{
    return UECode(IsOemText(), Trim(Header));
}

} // namespace kv

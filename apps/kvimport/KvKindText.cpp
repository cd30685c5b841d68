#include "KvKindText.h"

#include "KvOptionText.h"
#include "KviSourceKinds.h"

namespace kv {

std::vector<std::string> KindNames()
{
    std::vector<std::string> Names;
    for (const auto* const Kind : ImportKinds())
        Names.emplace_back(Kind->Name);
    return Names;
}

std::string SuchSource(std::string_view Kind)
{
    return Kind == "access" ? "an Access database" : "a table file";
}

std::string ColumnsAreCalled(std::string_view Kind)
{
    const auto* const Found = FindImportKind(Kind);
    return Found && Found->Part == spSheet ? "A to IV" : "Field1, Field2, ...";
}

std::string_view OptionGroupOf(const TKvISourceKind& Kind)
{
    switch (Kind.Part) {
    case spSheet:       return SheetOptionGroup;
    case spTable:       return TableOptionGroup;
    case spTableNumber: return HtmlOptionGroup;
    case spRowTag:      return XmlOptionGroup;
    case spNone:        break;
    }
    return Kind.TableType == teText ? TextOptionGroup : std::string_view();
}

std::string KindsOfGroup(std::string_view Group)
{
    std::vector<std::string> Names;
    for (const auto* const Kind : ImportKinds())
        if (OptionGroupOf(*Kind) == Group)
            Names.emplace_back(Kind->Name);
    return JoinNames(Names);
}

} // namespace kv

#include "KvPlanText.h"

#include "KvJobSource.h"

namespace kv {

namespace {

std::string MissingText(const TJobSource& Source)
{
    const auto Looked = [&Source]() -> std::string {
        switch (Source.Kind().TableType) {
        case teXML:  return "the file announces no such attribute";
        case teText: return "line " + std::to_string(Source.Component().RowFirst) + " has no such column";
        default:     return "there is no such column in the first row that was looked at";
        }
    };
    if (Source.IsFixed())
        return "there is no such column: the field stays empty";
    return Looked() + ": the field stays empty where it is missing";
}

} // namespace

std::string RemarkOn(const TJobColumnFate& Fate, const TJobSource& Source)
{
    switch (Fate.Fate) {
    case jcMapped:       return {};
    case jcConstant:     return "no column but a constant: every record gets this text";
    case jcMissing:      return MissingText(Source);
    case jcBlank:        return "the column holds no values: the field stays empty";
    case jcByOrder:      return "cells go to the mappings in their order, whatever columns are called";
    case jcNoTitle:      return "has no name: not imported";
    case jcNoField:      return "no field of that name: not imported";
    case jcTitleTwice:   return "a column before it has that name: not imported";
    case jcFieldSet:     return "--set gives its field a value: not imported";
    case jcReadOnly:     return "its field is computed by the database: not imported";
    case jcUnnameable:   return "the name of its field cannot stand in a mapping: not imported";
    case jcUnnameableColumn:
        return "a name with blanks at its ends cannot stand in a mapping: not imported";
    case jcNoMoreFields: return "the table has no more fields: not imported";
    case jcNotMapped:
        return Source.IsSaved() ? "the saved import does not name it: not imported"
                                : "no --map names it: not imported";
    }
    return {};
}

std::string RemarkOn(const TJobFieldWithout& Field)
{
    switch (Field.Fate) {
    case jdNothing:  break;
    case jdRequired: return "new records must have a value";
    case jdDefault:  return "default of the database";
    case jdComputed: return "computed by the database";
    }
    return {};
}

} // namespace kv

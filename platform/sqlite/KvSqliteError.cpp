#include "KvSqliteError.h"

#include <sqlite3.h>

namespace kv {

namespace {

TKvErrorRule RuleOfConstraint(int Code, std::string_view Message)
{
    switch (Code) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:      return erUnique;
    case SQLITE_CONSTRAINT_NOTNULL:    return erRequired;
    case SQLITE_CONSTRAINT_FOREIGNKEY: return erForeignKey;
    case SQLITE_CONSTRAINT_DATATYPE:   return erConversion; // of a STRICT table
    case SQLITE_CONSTRAINT_TRIGGER:                 // also what ON DELETE RESTRICT is made of
        return Message == "FOREIGN KEY constraint failed" ? erForeignKey : erCheck;
    default: return erCheck;
    }
}

} // namespace

TKvErrorRule RuleOfCode(int Code, std::string_view Message)
{
    constexpr int PrimaryCode = 0xFF;
    switch (Code & PrimaryCode) {
    case SQLITE_CONSTRAINT: return RuleOfConstraint(Code, Message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:     return erBusy;
    case SQLITE_INTERRUPT:  return erCancelled;
    case SQLITE_FULL:
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_PROTOCOL:   return erStorage;
    case SQLITE_NOTADB:     return erFormat;
    case SQLITE_MISMATCH:   return erConversion;    // a rowid that is no integer
    case SQLITE_TOOBIG:     return erLength;
    default:                return erNone;
    }
}

} // namespace kv

// KvException - the exception family. A caller tells kinds apart only where it acts on the difference;
// everybody else shows Message, which is complete and meant for users, or reads Facts.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "KvErrorFacts.h"

namespace kv {

/// The base of every error that the system raises.
class Exception : public std::exception
{
public:
    explicit Exception(std::string Text) : Message(std::move(Text)) {}
    Exception(std::string Text, TKvErrorFacts Known) : Message(std::move(Text)), Facts(std::move(Known)) {}

    const char* what() const noexcept override { return Message.c_str(); }

    /// Message, behind the name of the file where it lacks that.
    std::string FullMessage() const
    {
        return Facts.LacksFileName ? Facts.FileName + ": " + Message : Message;
    }

    std::string Message;                            ///< Complete text for users, UTF-8.
    TKvErrorFacts Facts;                            ///< What Message says, in parts; those that are known.
};

/// A value has no meaning in the type asked for.
class EConvertError : public Exception
{
public:
    using Exception::Exception;
};

/// A dataset, a field or the database behind them refused.
class EDatabaseError : public Exception
{
public:
    using Exception::Exception;
};

/// A file could not be opened, read or written. The message names the file and the system's reason.
class EFileError : public Exception
{
public:
    using Exception::Exception;
};

/// The bytes of a file are not what its format asks for. The message names the place in the file.
class EFormatError : public Exception
{
public:
    using Exception::Exception;
};

/// A published property is unknown or read-only, or the value does not suit it.
class EPropertyError : public Exception
{
public:
    using Exception::Exception;
};

} // namespace kv

// KvSettingsGuard - known format settings for the length of a test, whatever the environment's locale.
#pragma once

#include <string>
#include <utility>

#include "KvFormatSettings.h"

namespace kv {

class TKvSettingsGuard
{
public:
    explicit TKvSettingsGuard(TFormatSettings During = {})
        : Before(std::exchange(FormatSettings(), std::move(During)))
    {
    }
    TKvSettingsGuard(const TKvSettingsGuard&) = delete;
    TKvSettingsGuard& operator=(const TKvSettingsGuard&) = delete;
    ~TKvSettingsGuard() { FormatSettings() = std::move(Before); }

private:
    TFormatSettings Before;
};

/// The forms of a country that writes 24.12.2024 and 1.234,5.
inline TFormatSettings GermanSettings()
{
    TFormatSettings Settings;
    Settings.DecimalSeparator = ',';
    Settings.ThousandSeparator = '.';
    Settings.DateSeparator = '.';
    Settings.ShortDateFormat = "dd.MM.yyyy";
    return Settings;
}

/// The message of the EError that `Action` raises; an empty one when it raises nothing.
template <class EError, class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    } catch (const EError& Error) {
        return Error.Message;
    }
    return {};
}

} // namespace kv

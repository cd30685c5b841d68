// KvFileTest - what tests of kvimport on files of their own have in common.
#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "KvShop.h"

namespace kv {

/// A shop into which files are imported that each test writes anew.
class TFileTest : public testing::Test
{
protected:
    /// Files are called `FileName` where a test does not say otherwise; `Sql` makes the table "orders".
    TFileTest(std::string FileName, std::string_view Sql) : Shop(Sql), UsualName(std::move(FileName)) {}

    /// Runs a command on a file of these bytes.
    TProgramResult Kvimport(const std::string& Command, std::string_view Bytes, TArguments Arguments = {},
                            const std::string& Name = {}) const;
    /// Imports a file of these bytes into "orders".
    TProgramResult Import(std::string_view Bytes, const TArguments& Arguments = {},
                          const std::string& Name = {}) const;

    const TShop Shop;

private:
    std::string Write(std::string_view Bytes, const std::string& Name) const;

    const std::string UsualName;
};

} // namespace kv

#include "KvFileTest.h"

namespace kv {

TProgramResult TFileTest::Kvimport(const std::string& Command, std::string_view Bytes, TArguments Arguments,
                                   const std::string& Name) const
{
    Arguments.insert(Arguments.begin(), {Command, Write(Bytes, Name)});
    return RunKvImport(Shop.Folder, Arguments);
}

TProgramResult TFileTest::Import(std::string_view Bytes, const TArguments& Arguments,
                                 const std::string& Name) const
{
    return Shop.ImportFile(Write(Bytes, Name), Arguments);
}

std::string TFileTest::Write(std::string_view Bytes, const std::string& Name) const
{
    return Shop.Folder.Write(Name.empty() ? UsualName : Name, Bytes);
}

} // namespace kv

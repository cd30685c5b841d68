#include "KvTextImport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace kv {

TTemporaryFile::TTemporaryFile(std::string_view Text)
    : FName((std::filesystem::temp_directory_path() / "kvtextXXXXXX").string())
{
    const int Descriptor = mkstemp(FName.data());
    EXPECT_GE(Descriptor, 0);
    close(Descriptor);
    std::ofstream(FName, std::ios::binary) << Text;
}

TTemporaryFile::~TTemporaryFile()
{
    std::filesystem::remove(FName);
}

TTextImport::TTextImport(std::string_view FileText) : File(FileText)
{
    SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
    SetDataSet(&Destination);
    SourceFileName = File.Name();
    SetFieldDelimiter(fdComma);
    MapTo({"Field1", "Field2", "Field3"});
    AnimatedStatus = false;
    Options = {};
}

void TTextImport::SetFields(std::vector<TFieldDef> Defs)
{
    Destination.Close();
    Destination.SetFieldDefs(std::move(Defs));
    Destination.Open();
}

void TTextImport::MapTo(const std::vector<std::string>& Sources)
{
    Mappings().Clear();
    for (std::size_t I = 0; I < Sources.size(); ++I)
        Mappings().Add(Destination.Fields(static_cast<int>(I)).FieldName() + "=" + Sources[I]);
}

std::vector<std::string> TTextImport::Run()
{
    Execute();
    EXPECT_EQ(Statistic.Result, irExecuted) << ErrorMessage();
    EXPECT_EQ(Statistic.TotalErrors, 0);
    std::vector<std::string> Rows;
    for (Destination.First(); !Destination.Eof(); Destination.Next()) {
        std::string Row;
        for (int I = 0; I < Destination.FieldCount(); ++I)
            Row += (I > 0 ? "|" : "") + Destination.Fields(I).AsString();
        Rows.push_back(Row);
    }
    EXPECT_EQ(Statistic.TotalAdded, static_cast<int>(Rows.size()));
    return Rows;
}

std::string TTextImport::RunAndFail()
{
    Execute();
    EXPECT_EQ(Statistic.Result, irFailed);
    std::string Message = ErrorMessage();
    if (const auto Place = Message.find(SourceFileName); Place != Message.npos)
        Message.replace(Place, SourceFileName.size(), "FILE");
    return Message;
}

std::vector<std::string> TTextImport::DetectedMappings()
{
    Mappings().Clear();
    DetectAutoMapping();
    return {Mappings().begin(), Mappings().end()};
}

} // namespace kv

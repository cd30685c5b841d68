// KvFileRun - an import of a file that is ready to run: a file of its own, a destination in memory.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvMemoryDataSet.h"
#include "KvTempFolder.h"
#include "KviFileImport.h"

namespace kv {

using TRows = std::vector<std::string>;

/// Imports into the text fields A, B and C. No progress dialog and no message box.
template <class TImport> class TFileRun : public TImport
{
public:
    explicit TFileRun(std::string_view Text)
    {
        this->SourceFileName = Folder.Write("file", Text);
        SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
        this->SetDataSet(&Destination);
        this->AnimatedStatus = false;
        this->Options = {};
    }

    /// Other fields of the destination; drops its records.
    void SetFields(std::vector<TFieldDef> Defs)
    {
        Destination.Close();
        Destination.SetFieldDefs(std::move(Defs));
        Destination.Open();
    }

    /// Mappings "A=<Sources[0]>", "B=<Sources[1]>", ...
    void MapTo(const std::vector<std::string>& Sources)
    {
        this->Mappings().Clear();
        for (std::size_t I = 0; I < Sources.size(); ++I)
            this->Mappings().Add(Destination.Fields(static_cast<int>(I)).FieldName() + "=" + Sources[I]);
    }

    /// Executes and gives the records of the destination, values separated by "|".
    TRows Run()
    {
        this->Execute();
        EXPECT_EQ(this->Statistic.Result, irExecuted) << this->ErrorMessage();
        EXPECT_EQ(this->Statistic.TotalErrors, 0);
        TRows Records;
        for (Destination.First(); !Destination.Eof(); Destination.Next()) {
            std::string Row;
            for (int I = 0; I < Destination.FieldCount(); ++I) {
                const auto& Field = Destination.Fields(I);
                Row += (I > 0 ? "|" : "") + (Field.IsNull() ? NullText : Field.AsString());
            }
            Records.push_back(Row);
        }
        EXPECT_EQ(this->Statistic.TotalAdded, static_cast<int>(Records.size()));
        return Records;
    }

    /// Executes, expects a failure and gives its message, the file called FILE.
    std::string RunAndFail()
    {
        this->Execute();
        EXPECT_EQ(this->Statistic.Result, irFailed);
        std::string Message = this->ErrorMessage();
        if (const auto Place = Message.find(this->SourceFileName); Place != Message.npos)
            Message.replace(Place, this->SourceFileName.size(), "FILE");
        return Message;
    }

    /// The lines that automatic mapping adds.
    TRows DetectedMappings()
    {
        this->Mappings().Clear();
        this->DetectAutoMapping();
        return {this->Mappings().begin(), this->Mappings().end()};
    }

    using TImport::DetectAutoMapping;
    using TImport::GetTotalCount;
    using TImport::TableType;

    const TTempFolder Folder;
    TMemoryDataSet Destination;
    std::string NullText;                           ///< What Run gives for no value.
};

} // namespace kv

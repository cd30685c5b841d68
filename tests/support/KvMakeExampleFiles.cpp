// Writes workbooks and tables of the examples again: make_example_files examples
#include <fstream>
#include <iostream>

#include "KvExampleFiles.h"

namespace {

bool WriteAll(const std::string& Folder, const std::vector<kv::TExampleFile>& Files)
{
    for (const auto& Each : Files) {
        const auto Name = Folder + "/" + Each.Name;
        std::ofstream File(Name, std::ios::binary);
        if (!File.write(Each.Bytes.data(), static_cast<std::streamsize>(Each.Bytes.size())).flush()) {
            std::cerr << "Cannot write " << Name << '\n';
            return false;
        }
    }
    return true;
}

} // namespace

int main(int ArgumentCount, char** Arguments)
{
    if (ArgumentCount != 2) {
        std::cerr << "Usage: make_example_files FOLDER\n";
        return 2;
    }
    return WriteAll(Arguments[1], kv::ExampleBooks()) && WriteAll(Arguments[1], kv::ExampleTables()) ? 0 : 1;
}

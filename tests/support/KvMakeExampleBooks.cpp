// Writes the workbooks of the examples again: make_example_books examples
#include <fstream>
#include <iostream>

#include "KvExampleBooks.h"

int main(int ArgumentCount, char** Arguments)
{
    if (ArgumentCount != 2) {
        std::cerr << "Usage: make_example_books FOLDER\n";
        return 2;
    }
    for (const auto& Book : kv::ExampleBooks()) {
        const auto Name = std::string(Arguments[1]) + "/" + Book.Name;
        std::ofstream File(Name, std::ios::binary);
        if (!File.write(Book.Bytes.data(), static_cast<std::streamsize>(Book.Bytes.size())).flush()) {
            std::cerr << "Cannot write " << Name << '\n';
            return 1;
        }
    }
    return 0;
}

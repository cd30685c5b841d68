// Any bytes as an import specification: it loads or is refused, every setting is one that there is, and
// what was loaded survives saving and loading to the byte.
#include <filesystem>
#include <string>

#include "KvException.h"
#include "KvFile.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"
#include "Kvi2txt.h"

namespace {

using namespace kv;

/// A file in memory where there is such a folder: saving waits until a disk has it.
std::string FileToSave()
{
    const std::filesystem::path Memory = "/dev/shm";
    const auto Folder = std::filesystem::exists(Memory) ? Memory : std::filesystem::temp_directory_path();
    return (Folder / ("kv-fuzz-" + std::to_string(getpid()) + ".kvi")).string();
}

std::string Saved(TKvImportFromText& Import)
{
    static const auto FileName = FileToSave();
    std::filesystem::remove(FileName);
    Import.SaveSpecification("Fuzz", FileName, false);
    return std::string(ReadFileBytes(FileName).View());
}

void CheckSettings(const TKvImportFromText& Import)
{
    Require(Import.Mode >= imAppend && Import.Mode <= imCopy);
    Require(Import.CharacterSet == csiANSI_WINDOWS || Import.CharacterSet == csiASCII_MSDOS);
    Require(Import.DataFormats.DateOrder >= doMDY && Import.DataFormats.DateOrder <= doMYD);
    Require(Import.Extensions.Bits() < 16);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    static TKvImportFromText Import, Again;         // once: data formats live for ever
    const TMemoryFile Bytes({reinterpret_cast<const char*>(Data), Size});
    try {
        Import.LoadSpecification(Bytes.Name());
    }
    catch (const Exception&) {                      // what was read before stays
    }
    CheckSettings(Import);

    const auto First = Saved(Import);
    const TMemoryFile Copy(First);
    Again.Extensions = {};                          // nothing is written of an empty set
    Again.LoadSpecification(Copy.Name());
    Require(Saved(Again) == First);
    return 0;
}

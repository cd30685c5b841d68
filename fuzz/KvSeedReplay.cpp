// KvSeedReplay - main program of a fuzz target that is built without libFuzzer.
//
// Feeds the target every file of the folders named on the command line, as it is, cut short at many
// places and with single bytes changed. The same input always gives the same run.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size);

namespace {

using TBytes = std::vector<std::uint8_t>;

constexpr std::size_t MaxVariants = 64;                 // of each kind of damage, for one seed
constexpr std::uint8_t Damage[] = {0x00, 0xFF, 0x7F, 0x80, '"', '\n'};

void Feed(const TBytes& Input)
{
    // A copy of exactly this size, so that a sanitizer sees the first byte read past its end.
    const TBytes Exact(Input.begin(), Input.end());
    LLVMFuzzerTestOneInput(Exact.data(), Exact.size());
}

TBytes ReadFile(const std::filesystem::path& Path)
{
    std::ifstream File(Path, std::ios::binary);
    return TBytes(std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>());
}

void FeedDamaged(const TBytes& Seed)
{
    const auto Step = Seed.size() / MaxVariants + 1;
    for (std::size_t Pos = 0; Pos < Seed.size(); Pos += Step) {
        Feed(TBytes(Seed.begin(), Seed.begin() + static_cast<std::ptrdiff_t>(Pos)));
        TBytes Changed = Seed;
        Changed[Pos] = Damage[(Pos / Step) % std::size(Damage)];
        Feed(Changed);
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t Count = 0;
    Feed({});
    for (int Arg = 1; Arg < argc; ++Arg) {
        for (const auto& Entry : std::filesystem::recursive_directory_iterator(argv[Arg])) {
            if (!Entry.is_regular_file())
                continue;
            const auto Seed = ReadFile(Entry.path());
            Feed(Seed);
            FeedDamaged(Seed);
            ++Count;
        }
    }
    std::printf("%zu seeds replayed\n", Count);
    return 0;
}

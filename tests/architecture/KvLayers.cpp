#include "KvLayers.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

namespace kv {

namespace {

using TNames = std::vector<std::string_view>;

/// A folder and the folders that it may include besides itself. "sources/*" stands for every folder
/// directly below sources.
struct TLayer
{
    std::string_view Folder;
    TNames MayInclude;
};

const TNames Ports = {"platform/runtime", "platform/dataset", "platform/ui"};
const TNames Engine = {"platform/runtime", "platform/dataset", "platform/ui", "engine"};

const std::vector<TLayer>& Layers()
{
    static const std::vector<TLayer> Table = {
        {"platform/runtime", {}},
        {"platform/dataset", {"platform/runtime"}},
        {"platform/ui", {"platform/runtime"}},
        {"platform/*", Ports},                      // the adapters: ports, but not each other
        {"platform/access/helper", {"platform/runtime", "platform/access"}},
        {"engine", Ports},
        {"sources/spreadsheet",
         {"platform/runtime", "platform/dataset", "platform/ui", "platform/storage", "engine"}},
        {"sources/database",
         {"platform/runtime", "platform/dataset", "platform/ui", "platform/access", "platform/tables",
          "engine"}},
        {"sources/factory", {"platform/runtime", "engine", "sources/*"}},
        {"sources/*", Engine},
        {"job", {"platform/runtime", "platform/dataset", "platform/ui", "engine", "sources/*"}},
        {"wizard", {"platform/*", "engine", "sources/*", "job"}},
        {"design", {"platform/*", "engine", "sources/*", "job", "wizard"}},
        {"apps/*", {"platform/*", "engine", "sources/*", "job", "wizard", "design"}},
        {"examples", {"platform/*", "engine", "sources/*", "job"}},
    };
    return Table;
}

/// Headers of others and the places that may include them: folders, or a unit as "folder/Unit".
struct TForeignHeaders
{
    std::string_view Maker;
    std::string Headers;                            // a regular expression for the whole name
    TNames Places;
};

const std::vector<TForeignHeaders>& Foreign()
{
    static const std::vector<TForeignHeaders> Table = {
        {"SQLite", "sqlite3(ext)?\\.h", {"platform/sqlite"}},
        {"PostgreSQL", "(postgresql/)?(libpq|postgres_ext|pg_config|pgtypes).*", {"platform/postgres"}},
        {"mdbtools", "mdb(tools|sql|fakeglib|ver)?\\.h", {"platform/access"}},
        {"GLib", "(glib|gmodule|gobject|gio)([-./].*)?", {"platform/access"}},
        {"iconv", "iconv\\.h", {"platform/runtime/KvIconv"}},
        {"processor", "[a-z]mmintrin\\.h", {"platform/runtime/KvByteScan"}},
        {"CLI11", "CLI/.*", {"apps"}},
        {"nlohmann-json", "nlohmann/.*", {"apps"}},
        {"Qt", "(Qt\\w*/.*|Q[A-Z]\\w*|q[a-z]+\\.h|ui_\\w+\\.h)",
         {"wizard", "design", "platform/qt", "apps/kvwizard", "*Form"}},
        {"POSIX",
         "(sys|arpa|net|netinet)/.*|(aio|cpio|dirent|dlfcn|fcntl|fmtmsg|fnmatch|ftw|glob|grp|langinfo|"
         "libgen|monetary|mqueue|netdb|nl_types|poll|pthread|pwd|regex|sched|semaphore|spawn|strings|"
         "syslog|tar|termios|ucontext|ulimit|unistd|utime|utmpx|wordexp)\\.h",
         {"platform"}},
    };
    return Table;
}

const std::set<std::string_view>& StandardHeaders()
{
    static const std::set<std::string_view> Names = {
        // C++20
        "algorithm", "any", "array", "atomic", "barrier", "bit", "bitset", "charconv", "chrono", "compare",
        "complex", "concepts", "condition_variable", "coroutine", "deque", "exception", "execution",
        "filesystem", "format", "forward_list", "fstream", "functional", "future", "initializer_list",
        "iomanip", "ios", "iosfwd", "iostream", "istream", "iterator", "latch", "limits", "list", "locale",
        "map", "memory", "memory_resource", "mutex", "new", "numbers", "numeric", "optional", "ostream",
        "queue", "random", "ranges", "ratio", "regex", "scoped_allocator", "semaphore", "set",
        "shared_mutex", "source_location", "span", "sstream", "stack", "stdexcept", "stop_token",
        "streambuf", "string", "string_view", "syncstream", "system_error", "thread", "tuple",
        "type_traits", "typeindex", "typeinfo", "unordered_map", "unordered_set", "utility", "valarray",
        "variant", "vector", "version",
        // The C library
        "cassert", "cctype", "cerrno", "cfenv", "cfloat", "cinttypes", "climits", "clocale", "cmath",
        "csetjmp", "csignal", "cstdarg", "cstddef", "cstdint", "cstdio", "cstdlib", "cstring", "ctime",
        "cuchar", "cwchar", "cwctype", "assert.h", "ctype.h", "errno.h", "fenv.h", "float.h", "inttypes.h",
        "limits.h", "locale.h", "math.h", "setjmp.h", "signal.h", "stdarg.h", "stddef.h", "stdint.h",
        "stdio.h", "stdlib.h", "string.h", "time.h", "uchar.h", "wchar.h", "wctype.h",
    };
    return Names;
}

std::string FolderOf(std::string_view Path)
{
    return std::filesystem::path(Path).parent_path().generic_string();
}

/// True where `Folder` is `Pattern`, or `Pattern` is "x/*" and `Folder` stands directly below x.
bool FolderMatches(std::string_view Folder, std::string_view Pattern)
{
    if (!Pattern.ends_with("/*"))
        return Folder == Pattern;
    const auto Parent = Pattern.substr(0, Pattern.size() - 1);
    return Folder.starts_with(Parent) && Folder.find('/', Parent.size()) == std::string_view::npos;
}

const TLayer* LayerOf(std::string_view Folder)
{
    const auto& Table = Layers();
    const auto Found = std::ranges::find_if(
        Table, [&](const TLayer& Layer) { return FolderMatches(Folder, Layer.Folder); });
    return Found == Table.end() ? nullptr : &*Found;
}

/// A place is a folder with all below it, a unit ("folder/Unit") or the end of unit names ("*Form").
bool IsInPlace(std::string_view File, std::string_view Place)
{
    const auto Unit = FolderOf(File) + '/' + std::filesystem::path(File).stem().string();
    if (Place.starts_with('*'))
        return Unit.ends_with(Place.substr(1));
    return Unit == Place || (File.starts_with(Place) && File.substr(Place.size()).starts_with('/'));
}

std::string Complaint(const TIncludeLine& Include, const std::string& Reason)
{
    return Include.File + ':' + std::to_string(Include.Line) + ": " + Include.Header + ' ' + Reason;
}

} // namespace

std::vector<TIncludeLine> FindIncludeLines(std::string_view File, std::string_view Text)
{
    static const std::regex Pattern(R"re(^\s*#\s*include\s*[<"]([^>"]+)[>"])re");
    std::vector<TIncludeLine> Found;
    std::istringstream Lines{std::string(Text)};
    std::string Line;
    for (std::size_t Number = 1; std::getline(Lines, Line); ++Number) {
        std::smatch Match;
        if (Line.find('#') != Line.npos && std::regex_search(Line, Match, Pattern))
            Found.push_back({std::string(File), Number, Match[1]});
    }
    return Found;
}

std::vector<std::string> FindSources(const std::filesystem::path& Root)
{
    static const std::set<std::string> Others = {"bench", "build", "cmake", "fuzz", "tests"};
    static const std::set<std::string> Extensions = {".c", ".cc", ".cpp", ".cxx", ".h", ".hpp", ".hxx"};
    std::vector<std::string> Found;
    for (auto Entry = std::filesystem::recursive_directory_iterator(Root);
         Entry != std::filesystem::recursive_directory_iterator(); ++Entry) {
        const auto Path = Entry->path().lexically_relative(Root);
        const auto Name = Path.filename().string();
        if (Entry->is_directory() && (Name.starts_with('.') || Others.contains(Path.generic_string())))
            Entry.disable_recursion_pending();
        else if (Entry->is_regular_file() && Extensions.contains(Path.extension().string()))
            Found.push_back(Path.generic_string());
    }
    std::ranges::sort(Found);
    return Found;
}

std::string ReadText(const std::filesystem::path& Path)
{
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

TKvLayers::TKvLayers(const std::vector<std::string>& Sources)
{
    for (const auto& Source : Sources)
        FoldersOfHeader[std::filesystem::path(Source).filename().string()].push_back(FolderOf(Source));
}

std::string TKvLayers::Judge(const TIncludeLine& Include) const
{
    const auto Folder = FolderOf(Include.File);
    if (LayerOf(Folder) == nullptr)
        return Complaint(Include, "is included from " + Folder + ", which has no place among the layers");

    // Our own names first: "Name.h" wins over a system header of that name for the compiler as well.
    const auto Own = FoldersOfHeader.find(std::filesystem::path(Include.Header).filename().string());
    if (Own != FoldersOfHeader.end())
        return JudgeOwn(Include, Own->second);

    if (StandardHeaders().contains(Include.Header))
        return {};
    for (const auto& Group : Foreign()) {
        if (!std::regex_match(Include.Header, std::regex(Group.Headers)))
            continue;
        const auto Allowed = std::ranges::any_of(
            Group.Places, [&](std::string_view Place) { return IsInPlace(Include.File, Place); });
        return Allowed ? std::string()
                       : Complaint(Include, "is a header of " + std::string(Group.Maker) +
                                                " and must not leave its adapter");
    }
    return Complaint(Include, "is neither ours nor standard, and no rule says where it may appear");
}

std::string TKvLayers::JudgeOwn(const TIncludeLine& Include, const std::vector<std::string>& Owners) const
{
    const auto Folder = FolderOf(Include.File);
    if (std::ranges::count(Owners, Folder) != 0)
        return {};
    const auto& MayInclude = LayerOf(Folder)->MayInclude;
    for (const auto& Owner : Owners) {
        const auto Allowed = std::ranges::any_of(
            MayInclude, [&](std::string_view Pattern) { return FolderMatches(Owner, Pattern); });
        if (!Allowed)
            return Complaint(Include, "belongs to " + Owner + ", which " + Folder + " may not include");
    }
    return {};
}

} // namespace kv

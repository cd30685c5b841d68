// kv_compare - how long kvimport takes beside other ways to do the same work, how much memory, and how
// both grow with the data.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvCompareSections.h"

namespace kv::bench {

namespace {

namespace fs = std::filesystem;

/// What the command line asks for.
struct TSettings : TCompareSettings
{
    fs::path Parent = fs::temp_directory_path();    // of the workspace
    std::vector<std::string> Sections;              // none: all
};

/// The program `Name` in the folder of this one.
fs::path Neighbour(const char* Name)
{
    return fs::read_symlink("/proc/self/exe").replace_filename(Name);
}

/// Runs the sections that are asked for. False when a program failed or tables differ.
bool Compare(const TSettings& Settings)
{
    struct TSection
    {
        const char* Name;
        void (TComparison::*Run)();
    };
    constexpr TSection Sections[] = {{"append", &TComparison::CompareAppend},
                                     {"fixed", &TComparison::CompareFixedWidth},
                                     {"keyed", &TComparison::CompareKeyed},
                                     {"markup", &TComparison::CompareMarkup},
                                     {"spreadsheets", &TComparison::CompareSpreadSheets},
                                     {"tables", &TComparison::CompareTables},
                                     {"access", &TComparison::CompareAccess},
                                     {"growth", &TComparison::MeasureGrowth}};
    TWorkspace Workspace(Settings.Parent, Settings.Programs.Yardstick);
    TComparison Comparison(Settings, Workspace);
    const auto& Wanted = Settings.Sections;
    for (const auto& Section : Sections)
        if (Wanted.empty() || std::find(Wanted.begin(), Wanted.end(), Section.Name) != Wanted.end())
            (Comparison.*Section.Run)();
    return Comparison.Good();
}

} // namespace

} // namespace kv::bench

int main(int Count, char** Arguments)
{
    using namespace kv::bench;
    TSettings Settings;
    Settings.Programs = {Neighbour("kvimport"), Neighbour("kv_yardstick"), "sqlite3"};

    CLI::App App("Measures kvimport against a hand-written loop and the sqlite3 tool. A missed target fails "
                 "nothing; status 1 means that a program failed or that two left different tables.");
    App.option_defaults()->always_capture_default();
    App.add_option("sections", Settings.Sections, "What to measure; everything by default")
        ->check(CLI::IsMember({"append", "fixed", "keyed", "markup", "spreadsheets", "tables", "access",
                               "growth"}));
    App.add_option("--rows", Settings.Rows, "Rows to append, and of the table that keyed records change");
    App.add_option("--keyed-rows", Settings.KeyedRows, "Keyed records, at most twice --rows");
    App.add_option("--access", Settings.AccessFile,
                   "Access database for section access: a table orders with id, customer, city, "
                   "order_date, amount, quantity, paid and note")
        ->check(CLI::ExistingFile);
    App.add_option("--repetitions", Settings.Repetitions, "Runs of each program, in turn")
        ->check(CLI::PositiveNumber);
    App.add_flag("--full", Settings.Full, "Let growth go to 5,000,000 rows");
    App.add_option("--directory", Settings.Parent,
                   "Where files and databases are made, about 3 GB with --full");
    App.add_option("--kvimport", Settings.Programs.KvImport, "The program to judge");
    App.add_option("--sqlite3", Settings.Programs.Sqlite3, "The sqlite3 tool");
    CLI11_PARSE(App, Count, Arguments);

    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);  // whoever waits sees each line as it comes
    std::printf("The least of %d runs each, in turn, on fresh databases.\n", Settings.Repetitions);
    try {
        CatchInterrupts();
        return Compare(Settings) ? 0 : 1;
    }
    catch (const TInterrupted&) {
        return 130;
    }
    catch (const std::exception& Error) {
        std::fprintf(stderr, "kv_compare: %s\n", Error.what());
        return 1;
    }
}

// KvProgramRun - runs a program as a shell would and keeps what it says.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include <nlohmann/json.hpp>

namespace kv {

using TArguments = std::vector<std::string>;

/// A folder of its own that is gone with the object.
class TTempFolder
{
public:
    TTempFolder();
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;
    ~TTempFolder();

    std::string operator/(std::string_view Name) const { return (Path / Name).string(); }
    /// Writes a file and gives its path.
    std::string Write(std::string_view Name, std::string_view Bytes) const;
    std::string Read(std::string_view Name) const;

    const std::filesystem::path Path;
};

/// How a program ended.
struct TProgramResult
{
    int Status = -1;                                ///< Exit status; 128 and the signal when one ended it.
    std::string Out, Err;

    nlohmann::json Json() const { return nlohmann::json::parse(Out); }
};

/// A program that runs in `Folder`, its output going to files there.
class TRunningProgram
{
public:
    /// Standard input is `Input`, a path.
    TRunningProgram(const TTempFolder& Folder, const std::string& Program, const TArguments& Arguments,
                    const std::string& Input = "/dev/null");
    TRunningProgram(const TRunningProgram&) = delete;
    TRunningProgram& operator=(const TRunningProgram&) = delete;
    ~TRunningProgram();                             ///< Ends a program that still runs.

    void Signal(int Number) const;
    bool IsRunning();
    TProgramResult Wait();

private:
    const TTempFolder& Folder;
    pid_t Process = 0;
    int Ended = -1;                                 // its exit status; -1 while it runs
};

/// Runs kvimport to its end.
TProgramResult RunKvImport(const TTempFolder& Folder, const TArguments& Arguments, const std::string& Input = "/dev/null");
/// Runs `kvimport import` with --json and gives the object. Fails the test when there is none.
nlohmann::json ImportWithJson(const TTempFolder& Folder, TArguments Arguments);

} // namespace kv

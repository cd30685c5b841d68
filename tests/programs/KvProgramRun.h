// KvProgramRun - runs a program as a shell would and keeps what it says.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

#include <nlohmann/json.hpp>

#include "KvTempFolder.h"

namespace kv {

using TArguments = std::vector<std::string>;

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
TProgramResult RunKvImport(const TTempFolder& Folder, const TArguments& Arguments,
                           const std::string& Input = "/dev/null");
/// Runs `kvimport import` with --json and gives the object. Fails the test when there is none.
nlohmann::json ImportWithJson(const TTempFolder& Folder, TArguments Arguments);

} // namespace kv

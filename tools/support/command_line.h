/**
 * What the tools' command lines have in common.
 */
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace kestrin_tools {

/** How the tools end. */
enum ExitCode
{
    ExitDone = 0,
    ExitProblem = 1, ///< something could not be done, or problems were found
    ExitUsage = 2    ///< wrong arguments
};

/** A tool's main: what `run` throws is printed behind its name, and ends it with ExitProblem. */
int RunTool(const char* name, int (*run)(int, char**), int argc, char** argv);

/** Parses a command line; how the tool ends if that is all, for help or for wrong arguments. */
std::optional<int> Parse(CLI::App& app, int argc, char** argv);

/** Breaks a description into lines that leave room for the options' names. */
std::string Wrapped(const std::string& text);

} // namespace kestrin_tools

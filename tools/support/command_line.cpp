#include "command_line.h"

#include <cstdio>
#include <exception>
#include <sstream>

#include <CLI/CLI.hpp>

namespace kestrin_tools {

int RunTool(const char* name, int (*run)(int, char**), int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", name, error.what());
        return ExitProblem;
    }
}

std::optional<int> Parse(CLI::App& app, int argc, char** argv)
{
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitDone : ExitUsage;
    }
    return std::nullopt;
}

std::string Wrapped(const std::string& text)
{
    constexpr std::size_t line_limit = 68;
    std::string wrapped;
    std::size_t line = 0;
    std::istringstream words(text);
    for (std::string word; words >> word; line += word.size() + 1) {
        const bool fits = line + word.size() <= line_limit;
        if (!fits)
            line = 0;
        wrapped += (wrapped.empty() ? "" : fits ? " " : "\n") + word;
    }
    return wrapped;
}

} // namespace kestrin_tools

/**
 * kestrin-index: examines resource index files.
 */
#include "judge.h"

#include "command_line.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace kestrin_tools;

const char* NameOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return "good";
    case Verdict::Note:
        return "note";
    default:
        return "problem";
    }
}

int Check(const std::string& file)
{
    const std::vector<Finding> findings = JudgeIndex(file);
    std::printf("%s\n", file.c_str());
    for (const Finding& finding : findings) {
        const std::string place =
            finding.line == 0 ? "the file" : "line " + std::to_string(finding.line);
        std::printf("  %-9s %-8s %s\n", place.c_str(), NameOf(finding.verdict),
                    finding.text.c_str());
    }
    const std::size_t problems = CountProblems(findings);
    std::printf(problems == 1 ? "%zu problem\n" : "%zu problems\n", problems);
    return problems == 0 ? ExitDone : ExitProblem;
}

int Run(int argc, char** argv)
{
    std::string file;
    CLI::App app("Examines resource index files, which list the fonts of a program.",
                 "kestrin-index");
    app.require_subcommand(1);
    app.footer("Ends with 0 if there is no problem, 1 if there is one or the file cannot be read, "
               "2 for wrong\narguments.");
    CLI::App* check = app.add_subcommand(
        "check", "Judges every line of an index file, and opens the fonts that it names.");
    check->add_option("file", file, "The index file")->required()->type_name("FILE");
    check->footer("An index file is text: the number of fonts on the first line, and a line "
                  "fnt:FILE for each,\nFILE relative to the directory of the index file. Programs "
                  "reach the fonts 1 and 2.\n\nExample:\n"
                  "  kestrin-index check fonts/index.txt");
    if (const auto end = kestrin_tools::Parse(app, argc, argv))
        return *end;
    return Check(file);
}

} // namespace

int main(int argc, char** argv)
{
    return kestrin_tools::RunTool("kestrin-index", Run, argc, argv);
}

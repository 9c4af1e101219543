#include "run_command.h"

#include <cstdio>

#include <sys/wait.h>

namespace kestrin_test {

Outcome RunCommand(const std::string& command)
{
    Outcome outcome;
    std::FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    if (!pipe)
        return outcome;
    char buffer[512];
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe))
        outcome.output.append(buffer, got);
    const int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

} // namespace kestrin_test

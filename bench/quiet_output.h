/** Keeps the standard output for results. */
#pragma once

#include <cstdio>
#include <iostream>

#include <unistd.h>

namespace kestrin_bench {

/** Sends what is written to the standard output to the error output: results alone go there. */
class QuietOutput
{
public:
    QuietOutput() : _real((Flush(), dup(STDOUT_FILENO))) { dup2(STDERR_FILENO, STDOUT_FILENO); }
    ~QuietOutput()
    {
        Flush();
        dup2(_real, STDOUT_FILENO);
        close(_real);
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    static void Flush()
    {
        std::cout.flush();
        std::fflush(stdout);
    }

    int _real;
};

} // namespace kestrin_bench

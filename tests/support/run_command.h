/**
 * Runs a program as a child process and keeps what it says.
 */
#pragma once

#include <string>

namespace kestrin_test {

struct Outcome
{
    int status = -1;    ///< exit status; -1 if a signal ended the program
    std::string output; ///< of both streams
};

/** Runs a command line through the shell. */
Outcome RunCommand(const std::string& command);

} // namespace kestrin_test

#include "dfb_failure.h"

#include <cctype>

#include <sys/wait.h>

namespace kestrin_test {

namespace {

/** Takes `text` off the front of `rest`; false when it does not stand there. */
bool Take(std::string& rest, const std::string& text)
{
    if (rest.compare(0, text.size(), text) != 0)
        return false;
    rest.erase(0, text.size());
    return true;
}

bool TakeNumber(std::string& rest)
{
    std::size_t digits = 0;
    while (digits < rest.size() && std::isdigit(static_cast<unsigned char>(rest[digits])))
        ++digits;
    rest.erase(0, digits);
    return digits > 0;
}

/** Leaves out the lines in which DirectFB says what it found on the program's command line. */
std::string WithoutCommandLine(std::string text)
{
    while (text.rfind("commandline read: ", 0) == 0)
        text.erase(0, text.find('\n') + 1);
    return text;
}

} // namespace

MATCHER_P4(IsReport, file, call, message, alone,
           "is the report of " + std::string(call) + " in " + std::string(file))
{
    static_cast<void>(result_listener);
    std::string rest = WithoutCommandLine(arg);
    const std::size_t begin = rest.find(std::string(file) + " <");
    if (begin == std::string::npos || (alone && begin != 0))
        return false;
    rest.erase(0, begin);
    return Take(rest, file) && Take(rest, " <") && TakeNumber(rest) && Take(rest, ">:\n\t") &&
           Take(rest, "(#) DirectFBError [" + std::string(call) + "]: " + message + "\n") &&
           rest.empty();
}

testing::Matcher<const std::string&> Reports(const std::string& file, const std::string& call,
                                             DFBResult result)
{
    return IsReport(file, call, std::string(DirectFBErrorString(result)), true);
}

testing::Matcher<const std::string&> ReportsAtLast(const std::string& file, const std::string& call,
                                                   DFBResult result)
{
    return IsReport(file, call, std::string(DirectFBErrorString(result)), false);
}

bool ExitsWith::operator()(int status) const
{
    // A process ends with the low eight bits of what it ends with.
    const int code = static_cast<int>(static_cast<unsigned>(_result) & 0xff);
    return WIFEXITED(status) && WEXITSTATUS(status) == code;
}

} // namespace kestrin_test

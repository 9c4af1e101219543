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

} // namespace

MATCHER_P3(IsReport, file, call, message,
           "is the report of " + std::string(call) + " in " + std::string(file))
{
    std::string rest = arg;
    static_cast<void>(result_listener);
    return Take(rest, file) && Take(rest, " <") && TakeNumber(rest) && Take(rest, ">:\n\t") &&
           Take(rest, "(#) DirectFBError [" + std::string(call) + "]: " + message + "\n") &&
           rest.empty();
}

testing::Matcher<const std::string&> Reports(const std::string& file, const std::string& call,
                                             DFBResult result)
{
    return IsReport(file, call, std::string(DirectFBErrorString(result)));
}

bool ExitsWith::operator()(int status) const
{
    return WIFEXITED(status) && WEXITSTATUS(status) == (static_cast<unsigned>(_result) & 0xff);
}

} // namespace kestrin_test

/**
 * Stands in for the platform's debug-log library and remembers what it is given. The library's own
 * three names are defined here, as a vendor's library defines them; a program that uses PlatformLog
 * has them instead of ours.
 */
#pragma once

#include "vrel_debug.h"

#include <string>
#include <vector>

namespace kestrin_test {

struct LoggedMessage
{
    const vrel_debug_category* category;
    int level;
    std::string file;
    std::string function;
    int line;
    std::string text;
};

struct CreatedCategory
{
    std::string name;
    unsigned flags;
    std::string description;
};

class PlatformLog
{
public:
    static std::vector<LoggedMessage>& Messages();
    static std::vector<CreatedCategory>& Categories();
    /** The texts of the messages alone. */
    static std::vector<std::string> Texts();
    static void SetThreshold(int threshold) { __vrel_debug_min = threshold; }
};

} // namespace kestrin_test

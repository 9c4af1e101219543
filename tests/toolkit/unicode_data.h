/** Unicode's own test files, as Debian ships them. */
#pragma once

#include "vrel_kestrin_datatype.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrin_test {

inline const std::string kUnicodeData = "/usr/share/unicode/";

/** Calls back with each line that holds something beside a comment; false without the file. */
inline bool ForEachLine(const std::string& name, const std::function<void(const std::string&)>& use)
{
    std::ifstream file(kUnicodeData + name);
    for (std::string line; std::getline(file, line);) {
        line.erase(std::min(line.find('#'), line.size()));
        line.erase(line.find_last_not_of(" \t\r") + 1);
        if (!line.empty())
            use(line);
    }
    return file.eof();
}

/** A hexadecimal code. */
inline std::uint32_t CodeOf(const std::string& word)
{
    return static_cast<std::uint32_t>(std::strtoul(word.c_str(), nullptr, 16));
}

inline void Append(std::vector<zelxxx::WChar>& units, std::uint32_t code)
{
    if (code >= 0x10000) {
        units.push_back(static_cast<zelxxx::WChar>(0xd800 + ((code - 0x10000) >> 10)));
        units.push_back(static_cast<zelxxx::WChar>(0xdc00 + (code & 0x3ff)));
    } else {
        units.push_back(static_cast<zelxxx::WChar>(code));
    }
}

} // namespace kestrin_test

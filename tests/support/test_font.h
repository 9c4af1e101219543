/** A font for tests that draw text. */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <fstream>
#include <iterator>
#include <string>

namespace kestrin_test {

/** A resource with DejaVu Sans as font 1, from memory that lives as long as the process. */
inline zelxxx::PResource MakeFontResource()
{
    static const std::string bytes = [] {
        std::ifstream file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    return zelxxx::zelOpenResource("DejaVu Sans", bytes.data(), static_cast<int>(bytes.size()));
}

} // namespace kestrin_test

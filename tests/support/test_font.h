/** Fonts for tests that measure or draw text. */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <fstream>
#include <iterator>
#include <string>

namespace kestrin_test {

inline const std::string kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
inline const std::string kSerif = "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf";
/** Made for television. */
inline const std::string kScreen = "/usr/share/fonts/truetype/tiresias/tiresias_infofont.ttf";

inline std::string BytesOf(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/** The bytes of kSans, which live as long as the process. */
inline const std::string& SansBytes()
{
    static const std::string bytes = BytesOf(kSans);
    return bytes;
}

/** A resource with kSans as its font, from memory. */
inline zelxxx::PResource MakeFontResource()
{
    return zelxxx::zelOpenResource("sans", SansBytes().data(),
                                   static_cast<int>(SansBytes().size()));
}

} // namespace kestrin_test

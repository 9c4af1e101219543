/**
 * The encodings a subtitle file may be written in, by name.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

#include <optional>
#include <string>

namespace kestrin_play {

/** How the bytes of a file make up characters. */
struct Encoding
{
    /** Size and order of the units that line ends and digits are written in. */
    enum class Units
    {
        Bytes,
        Utf16Little,
        Utf16Big,
        Utf16ByMark, ///< a byte-order mark decides; little end first without one
    };

    std::string name;
    zelxxx::TextEncoding text;
    Units units;
};

/** Finds an encoding; letter case, "-" and "_" do not matter. */
std::optional<Encoding> FindEncoding(const std::string& name);

/** All names, for help texts: "ascii, utf-8, ...". */
std::string EncodingNames();

/**
 * Turns the bytes of one line into UTF-16.
 *
 * @param bytes     UTF-16 units in host order, or bytes of a byte encoding
 * @return nothing when the bytes are no text in that encoding
 */
std::optional<std::u16string> Decode(const std::string& bytes, const Encoding& encoding);

/** "U+00E9"; `unit` is half of a character if it is a surrogate. */
std::string CodeName(char16_t unit);

} // namespace kestrin_play

#include "encoding.h"

#include "vrel_kestrin_graphic.h"

#include <cctype>
#include <cstdio>
#include <vector>

namespace kestrin_play {
namespace {

using Units = Encoding::Units;

const std::vector<Encoding>& Encodings()
{
    static const std::vector<Encoding> all = {
        {"ascii", zelxxx::EncodingASCII, Units::Bytes},
        {"utf-8", zelxxx::EncodingUTF8, Units::Bytes},
        {"utf-16", zelxxx::EncodingUnicode, Units::Utf16ByMark},
        {"utf-16le", zelxxx::EncodingUnicode, Units::Utf16Little},
        {"utf-16be", zelxxx::EncodingUnicode, Units::Utf16Big},
        {"big5", zelxxx::EncodingBig5, Units::Bytes},
        {"gb2312", zelxxx::EncodingGB2312, Units::Bytes},
        {"euc-kr", zelxxx::EncodingEUC_KR, Units::Bytes},
        {"euc-jp", zelxxx::EncodingEUC_JP, Units::Bytes},
        {"iso-8859-1", zelxxx::Encoding8859_1, Units::Bytes},
        {"iso-8859-2", zelxxx::Encoding8859_2, Units::Bytes},
        {"iso-8859-3", zelxxx::Encoding8859_3, Units::Bytes},
        {"iso-8859-4", zelxxx::Encoding8859_4, Units::Bytes},
        {"iso-8859-5", zelxxx::Encoding8859_5, Units::Bytes},
        {"iso-8859-6", zelxxx::Encoding8859_6, Units::Bytes},
        {"iso-8859-7", zelxxx::Encoding8859_7, Units::Bytes},
        {"iso-8859-8", zelxxx::Encoding8859_8, Units::Bytes},
        {"iso-8859-9", zelxxx::Encoding8859_9, Units::Bytes},
        {"iso-8859-15", zelxxx::Encoding8859_15, Units::Bytes},
        {"iso6937", zelxxx::Encoding6937, Units::Bytes},
    };
    return all;
}

std::string Plain(const std::string& name)
{
    std::string plain;
    for (const char c : name) {
        if (c != '-' && c != '_')
            plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return plain;
}

} // namespace

std::optional<Encoding> FindEncoding(const std::string& name)
{
    for (const Encoding& encoding : Encodings()) {
        if (Plain(encoding.name) == Plain(name))
            return encoding;
    }
    return std::nullopt;
}

std::string EncodingNames()
{
    std::string names;
    for (const Encoding& encoding : Encodings())
        names += (names.empty() ? "" : ", ") + encoding.name;
    return names;
}

std::optional<std::u16string> Decode(const std::string& bytes, const Encoding& encoding)
{
    if (bytes.empty())
        return std::u16string();

    // The conversion uses, and clears, twice the room it is told of. A byte never gives more than
    // one unit, not even an accent that stands before its letter.
    std::vector<zelxxx::WChar> room(bytes.size() * 2);
    const zelxxx::Int32 count = zelxxx::zelConvertToUnicode(
        bytes.data(), static_cast<zelxxx::UInt32>(bytes.size()), encoding.text, room.data(),
        static_cast<zelxxx::Int32>(bytes.size()));
    if (count <= 0)
        return std::nullopt;
    return std::u16string(room.begin(), room.begin() + count);
}

std::string CodeName(char16_t unit)
{
    char name[8];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(unit));
    return name;
}

} // namespace kestrin_play

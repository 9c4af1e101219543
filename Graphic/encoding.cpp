#include "tdebug.h"

#include <iconv.h>

#include <cstddef>
#include <cstring>

namespace zelxxx {

namespace {

/** UTF-16 in the order of the host's WChar, named so that iconv writes no byte-order mark. */
constexpr const char* kHostUtf16 = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? "UTF-16BE" : "UTF-16LE";

/** The character set behind an encoding; UTF-8 stands in for those that have none. */
const char* CharsetOf(TextEncoding encoding)
{
    switch (encoding) {
    case EncodingASCII:
        return "ASCII";
    case EncodingUnicode:
    case EncodingJIS: // kept as 16-bit units, not one of the JIS sets
        return "CSUNICODE";
    case EncodingBig5:
        return "Big5";
    case EncodingGB2312:
        return "GB2312";
    case EncodingEUC_KR:
        return "EUC-KR";
    case EncodingEUC_JP:
        return "EUC-JP";
    case Encoding8859_1:
        return "ISO-8859-1";
    case Encoding8859_2:
        return "ISO-8859-2";
    case Encoding8859_3:
        return "ISO-8859-3";
    case Encoding8859_4:
        return "ISO-8859-4";
    case Encoding8859_5:
        return "ISO-8859-5";
    case Encoding8859_6:
        return "ISO-8859-6";
    case Encoding8859_7:
        return "ISO-8859-7";
    case Encoding8859_8:
        return "ISO-8859-8";
    case Encoding8859_9:
        return "ISO-8859-9";
    case Encoding8859_15:
        return "ISO-8859-15";
    case Encoding6937:
        return "ISO6937";
    default:
        return "UTF-8";
    }
}

} // namespace

Int32 zelConvertToUnicode(PtrConstAny text, UInt32 length, TextEncoding encoding, PtrWChar unicode,
                          Int32 unicode_length)
{
    if (unicode_length < 0)
        return 0;
    // Twice the bytes of unicode_length units: callers provide for it.
    const std::size_t capacity = static_cast<std::size_t>(unicode_length) * 4;

    const iconv_t converter = iconv_open(kHostUtf16, CharsetOf(encoding));
    // The error value is iconv's own: a handle of all ones.
    if (converter == reinterpret_cast<iconv_t>(-1)) { // NOLINT(performance-no-int-to-ptr)
        KESTRIN_LOG(kLogFailure, "iconv_open error!\n");
        return 0;
    }
    // iconv insists on an output address, even for no room at all.
    char nowhere = 0;
    char* output = capacity > 0 ? reinterpret_cast<char*>(unicode) : &nowhere;
    std::memset(output, 0, capacity);

    char* input = const_cast<char*>(static_cast<const char*>(text));
    std::size_t input_left = length;
    std::size_t output_left = capacity;
    if (iconv(converter, &input, &input_left, &output, &output_left) ==
        static_cast<std::size_t>(-1)) {
        KESTRIN_LOG(kLogFailure, "zelConvertToUnicode error!\n");
        // The converter stays open on this path, so undecodable text costs its memory each time.
        return 0;
    }
    iconv_close(converter);
    return static_cast<Int32>((capacity - output_left) / 2);
}

} // namespace zelxxx

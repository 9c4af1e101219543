#include "srt.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <optional>

namespace kestrin_play {
namespace {

/** A line in both shapes: to read structure from, and to decode. */
struct SourceLine
{
    std::string ascii; ///< one character per unit; '?' for UTF-16 units beyond ASCII
    std::string bytes;
};

struct Times
{
    std::int64_t start;
    std::int64_t end;
};

constexpr int most_hours = 9999;
const char times_remedy[] = "write the times as 00:00:01,000 --> 00:00:02,500";

bool StartsWith(const std::string& text, const char* mark)
{
    return text.rfind(mark, 0) == 0;
}

/** Cuts at LF, CR LF and CR; `units` are bytes or UTF-16 units. */
template <class Unit>
std::vector<std::basic_string<Unit>> Split(const std::basic_string<Unit>& units)
{
    std::vector<std::basic_string<Unit>> lines(1);
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] == '\r' || units[i] == '\n') {
            if (units[i] == '\r' && i + 1 < units.size() && units[i + 1] == '\n')
                ++i;
            lines.emplace_back();
        } else {
            lines.back() += units[i];
        }
    }
    return lines;
}

std::u16string HostUnits(const std::string& content, bool little)
{
    std::u16string units;
    for (std::size_t i = 0; i + 1 < content.size(); i += 2) {
        const auto first = static_cast<unsigned char>(content[i]);
        const auto second = static_cast<unsigned char>(content[i + 1]);
        units += static_cast<char16_t>(little ? first | second << 8 : first << 8 | second);
    }
    return units;
}

std::vector<SourceLine> WideLines(const std::string& content, Encoding::Units kind)
{
    const bool big = kind == Encoding::Units::Utf16Big ||
                     (kind == Encoding::Units::Utf16ByMark && StartsWith(content, "\xFE\xFF"));
    std::u16string units = HostUnits(content, !big);
    if (!units.empty() && units.front() == 0xFEFF)
        units.erase(0, 1);

    std::vector<SourceLine> lines;
    for (const std::u16string& line : Split(units)) {
        std::string ascii;
        for (const char16_t unit : line)
            ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
        lines.push_back({ascii, std::string(reinterpret_cast<const char*>(line.data()),
                                            line.size() * sizeof(char16_t))});
    }
    return lines;
}

std::vector<SourceLine> ReadLines(const std::string& content, const Encoding& encoding)
{
    if (encoding.units != Encoding::Units::Bytes)
        return WideLines(content, encoding.units);

    std::vector<SourceLine> lines;
    const std::size_t mark = StartsWith(content, "\xEF\xBB\xBF") ? 3 : 0;
    for (const std::string& line : Split(content.substr(mark)))
        lines.push_back({line, line});
    return lines;
}

bool IsSpace(char c)
{
    return c == ' ' || c == '\t';
}

bool IsBlank(const SourceLine& line)
{
    return std::all_of(line.ascii.begin(), line.ascii.end(), IsSpace);
}

bool IsNumber(const SourceLine& line)
{
    const auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    return !IsBlank(line) && std::all_of(line.ascii.begin(), line.ascii.end(),
                                         [&](char c) { return IsSpace(c) || digit(c); });
}

bool HasArrow(const SourceLine& line)
{
    return line.ascii.find("-->") != std::string::npos;
}

/** Reads the parts of a time from text, moving a position forward. */
class TimeReader
{
public:
    explicit TimeReader(const std::string& text) : _text(text) {}

    void SkipSpace()
    {
        while (_at < _text.size() && IsSpace(_text[_at]))
            ++_at;
    }

    bool Literal(const std::string& expected)
    {
        if (_text.compare(_at, expected.size(), expected) != 0)
            return false;
        _at += expected.size();
        return true;
    }

    /** At most `most_digits`; longer numbers fail, so nothing overflows. */
    bool Number(std::size_t most_digits, int* value, std::size_t* digits)
    {
        *value = 0;
        *digits = 0;
        for (; _at < _text.size() && std::isdigit(static_cast<unsigned char>(_text[_at])); ++_at) {
            if (++*digits > most_digits)
                return false;
            *value = *value * 10 + (_text[_at] - '0');
        }
        return *digits > 0;
    }

    /** hours:minutes:seconds and a fraction after a comma or point, which may be missing. */
    bool Time(std::int64_t* milliseconds)
    {
        int hours = 0, minutes = 0, seconds = 0, fraction = 0;
        std::size_t digits = 0;
        SkipSpace();
        if (!Number(4, &hours, &digits) || !Literal(":") || !Number(2, &minutes, &digits) ||
            !Literal(":") || !Number(2, &seconds, &digits))
            return false;
        if (hours > most_hours || minutes > 59 || seconds > 59)
            return false;
        if (Literal(",") || Literal(".")) {
            if (!Number(3, &fraction, &digits))
                return false;
            for (; digits < 3; ++digits)
                fraction *= 10;
        }
        *milliseconds = ((std::int64_t{hours} * 60 + minutes) * 60 + seconds) * 1000 + fraction;
        return true;
    }

    /** At a blank or at the end: what follows the times, such as coordinates, does not matter. */
    bool AtGap() const { return _at == _text.size() || IsSpace(_text[_at]); }

private:
    const std::string& _text;
    std::size_t _at = 0;
};

std::optional<Times> ReadTimes(const SourceLine& line)
{
    TimeReader reader(line.ascii);
    Times times = {};
    if (!reader.Time(&times.start))
        return std::nullopt;
    reader.SkipSpace();
    if (!reader.Literal("-->") || !reader.Time(&times.end) || !reader.AtGap())
        return std::nullopt;
    return times;
}

/** Goes through the lines cue by cue. */
class Parser
{
public:
    explicit Parser(std::vector<SourceLine> lines) : _lines(std::move(lines)) {}

    Subtitles Run()
    {
        while (SkipBlank())
            ReadCue();
        std::stable_sort(_found.cues.begin(), _found.cues.end(),
                         [](const Cue& a, const Cue& b) { return a.start < b.start; });
        return std::move(_found);
    }

private:
    bool SkipBlank()
    {
        while (_at < _lines.size() && IsBlank(_lines[_at]))
            ++_at;
        return _at < _lines.size();
    }

    /** Files without an empty line between cues exist: times begin a cue wherever they stand. */
    bool AtCue() const
    {
        if (ReadTimes(_lines[_at]))
            return true;
        return IsNumber(_lines[_at]) && _at + 1 < _lines.size() && HasArrow(_lines[_at + 1]);
    }

    std::vector<TextLine> ReadText()
    {
        std::vector<TextLine> text;
        for (; _at < _lines.size() && !IsBlank(_lines[_at]) && !AtCue(); ++_at)
            text.push_back({static_cast<int>(_at) + 1, _lines[_at].bytes});
        return text;
    }

    void Skip(std::size_t line, const std::string& message, const std::string& remedy)
    {
        _found.problems.push_back({static_cast<int>(line) + 1, message, remedy});
    }

    void ReadCue()
    {
        std::string number;
        if (IsNumber(_lines[_at]) && _at + 1 < _lines.size() && !IsBlank(_lines[_at + 1])) {
            number = _lines[_at].ascii;
            ++_at;
        }
        const std::size_t at = _at;
        if (!HasArrow(_lines[at])) {
            Skip(at, "no times where a cue should begin: " + Quoted(_lines[at].ascii),
                 "put a line with its times before it, or remove the empty line above");
            ++_at;
            ReadText();
            return;
        }
        const std::optional<Times> times = ReadTimes(_lines[at]);
        ++_at;
        std::vector<TextLine> text = ReadText();
        if (!times)
            Skip(at, "bad times " + Quoted(_lines[at].ascii), times_remedy);
        else if (times->end <= times->start)
            Skip(at, "the cue ends before it begins", "exchange or correct its times");
        else if (text.empty())
            Skip(at, "a cue without text", "write its text below the times or remove the cue");
        else
            _found.cues.push_back(
                {static_cast<int>(at) + 1, number, times->start, times->end, std::move(text)});
    }

    const std::vector<SourceLine> _lines;
    std::size_t _at = 0;
    Subtitles _found;
};

} // namespace

Subtitles ParseSubtitles(const std::string& content, const Encoding& encoding)
{
    return Parser(ReadLines(content, encoding)).Run();
}

std::string FormatTime(std::int64_t milliseconds)
{
    char text[32];
    const auto part = [&](std::int64_t unit, std::int64_t modulus) {
        return static_cast<int>(milliseconds / unit % modulus);
    };
    std::snprintf(text, sizeof text, "%02d:%02d:%02d,%03d", part(3600000, 100000), part(60000, 60),
                  part(1000, 60), part(1, 1000));
    return text;
}

} // namespace kestrin_play

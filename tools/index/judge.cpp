#include "judge.h"

#include "whole_file.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace kestrin_tools {
namespace {

namespace fs = std::filesystem;

/** The engine reads lines of so many bytes; the rest of a longer one is the next line to it. */
constexpr std::size_t line_room = 1023;
/** The engine refuses an index file whose directory has a longer name, with its last slash. */
constexpr std::size_t directory_room = 199;
constexpr std::uint64_t most_entries = 0x10000;
constexpr std::uint64_t fonts_served = 2;

/** A line as the engine gets it. */
struct Line
{
    int number;        ///< in the file
    std::string text;  ///< without its end
    bool cut = false;  ///< it goes on in the next one
    bool zero = false; ///< a zero byte ends it early
};

std::vector<Line> LinesOf(const std::string& content)
{
    std::vector<Line> lines;
    int number = 1;
    for (std::size_t at = 0; at < content.size();) {
        const std::size_t end = std::min(content.find('\n', at), content.size() - 1) + 1;
        const std::size_t length = std::min(end - at, line_room);
        Line line = {number, content.substr(at, length)};
        at += length;
        line.cut = line.text.back() != '\n' && at < content.size();
        number += line.text.back() == '\n';
        const std::size_t zero = line.text.find('\0');
        line.zero = zero != std::string::npos;
        line.text.erase(std::min({zero, line.text.find_first_of("\r\n"), line.text.size()}));
        lines.push_back(line);
    }
    return lines;
}

std::string WithoutBlanks(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/** FreeType, for as long as fonts are looked at. */
class Fonts
{
public:
    Fonts()
    {
        if (FT_Init_FreeType(&_library) != 0)
            throw std::runtime_error("FreeType does not start");
    }
    ~Fonts() { FT_Done_FreeType(_library); }
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;

    /** Says what a file has in it. */
    Finding Look(const std::string& path)
    {
        FT_Face face = nullptr;
        const FT_Error error = FT_New_Face(_library, path.c_str(), 0, &face);
        if (error != 0)
            return {0, Verdict::Problem,
                    "no font that FreeType can open (error " + std::to_string(error) +
                        "): nothing would be drawn; name a TrueType or OpenType file"};
        std::string name = face->family_name ? face->family_name : "without a name";
        if (face->style_name)
            name += std::string(" ") + face->style_name;
        Finding finding = {0, Verdict::Good, name};
        if (face->num_faces > 1) {
            finding.verdict = Verdict::Note;
            finding.text += ", the first of " + std::to_string(face->num_faces) +
                            " fonts in the file; the others cannot be reached";
        }
        if (!FT_IS_SCALABLE(face)) {
            finding.verdict = Verdict::Note;
            finding.text += ", of bitmaps: it has no other sizes than its own";
        }
        FT_Done_Face(face);
        return finding;
    }

private:
    FT_Library _library = nullptr;
};

class Judge
{
public:
    explicit Judge(const std::string& path) : _directory(path.substr(0, path.rfind('/') + 1)) {}

    std::vector<Finding> Run(const std::vector<Line>& lines)
    {
        if (_directory.size() > directory_room)
            Say(0, Verdict::Problem,
                "the name of its directory has " + std::to_string(_directory.size()) +
                    " bytes and the engine takes " + std::to_string(directory_room) +
                    ": the file would be refused; name it in a shorter way");
        if (lines.empty()) {
            Say(0, Verdict::Problem,
                "it is empty and would be refused; write the number of fonts on its first line");
            return _findings;
        }
        JudgeFirst(lines.front());
        if (_count == 0)
            return _findings;
        const std::uint64_t entries = std::min<std::uint64_t>(_count, lines.size() - 1);
        for (std::uint64_t i = 0; i < entries; ++i)
            JudgeEntry(i + 1, lines[static_cast<std::size_t>(i) + 1]);
        JudgeRest(lines, static_cast<std::size_t>(entries) + 1);
        return _findings;
    }

private:
    void Say(int line, Verdict verdict, const std::string& text)
    {
        _findings.push_back({line, verdict, text});
    }

    void JudgeEnd(const Line& line)
    {
        if (line.zero)
            Say(line.number, Verdict::Problem,
                "has a zero byte, behind which nothing is read; save the file as plain text");
        if (line.cut)
            Say(line.number, Verdict::Problem,
                "has more than " + std::to_string(line_room) +
                    " bytes: the rest would be taken for the next entry; use a shorter name");
    }

    void JudgeFirst(const Line& line)
    {
        const std::size_t digits =
            std::min(line.text.find_first_not_of("0123456789"), line.text.size());
        for (std::size_t i = 0; i < digits; ++i)
            _count = std::min<std::uint64_t>(
                _count * 10 + static_cast<std::uint64_t>(line.text[i] - '0'), UINT32_MAX);
        JudgeEnd(line);
        if (digits == 0) {
            const bool mark = line.text.rfind("\xEF\xBB\xBF", 0) == 0;
            Say(line.number, Verdict::Problem,
                std::string(mark ? "begins with a byte order mark and not with a digit"
                                 : "does not begin with a digit") +
                    ": the file would be refused; write the number of fonts there");
            return;
        }
        if (_count == 0) {
            Say(line.number, Verdict::Problem,
                "declares no fonts: the file would be refused, and no other line is read");
            return;
        }
        Say(line.number, Verdict::Good,
            "declares " + std::to_string(_count) + (_count == 1 ? " font" : " fonts"));
        if (digits < line.text.size())
            Say(line.number, Verdict::Note, "has text behind the number that is not read");
        JudgeCount(line.number);
    }

    void JudgeCount(int line)
    {
        // The engine compares 16 bits of the number.
        const std::uint64_t compared = _count % most_entries;
        if (_count >= most_entries && compared < fonts_served)
            Say(line, Verdict::Problem,
                "declares so many that " +
                    std::string(compared == 0 ? "none can be used" : "only font 1 can be used") +
                    ": of the number, 16 bits count");
        if (_count > fonts_served)
            Say(line, Verdict::Note,
                "declares more fonts than can be used: only the fonts 1 and 2 are served; put "
                "others into index files of their own");
    }

    void JudgeEntry(std::uint64_t index, const Line& line)
    {
        JudgeEnd(line);
        const std::size_t colon = line.text.find(':');
        const std::string type = line.text.substr(0, colon);
        const std::string name = "font " + std::to_string(index) + ": ";
        if (colon == std::string::npos) {
            Say(line.number, Verdict::Problem,
                name + (line.text.empty() ? "the line is empty" : "there is no ':'") +
                    "; write fnt:FILE");
            return;
        }
        if (type != "fnt") {
            Say(line.number, Verdict::Problem,
                name + "the type is \"" + type + "\", and only \"fnt\", exactly so, is a font");
            return;
        }
        std::string file = line.text.substr(colon + 1);
        const std::size_t second = file.find(':');
        if (second != std::string::npos) {
            file.erase(second);
            Say(line.number, Verdict::Problem,
                name + "the file's name ends at the second ':', and what follows is not read; "
                       "rename the file");
        }
        if (file.empty()) {
            Say(line.number, Verdict::Problem, name + "there is no file's name behind fnt:");
            return;
        }
        JudgeFile(index, line.number, name, file);
    }

    void JudgeFile(std::uint64_t index, int line, const std::string& name, const std::string& file)
    {
        const std::string path = _directory + file;
        std::error_code ignored;
        Finding finding = {line, Verdict::Problem, {}};
        if (fs::is_directory(path, ignored)) {
            finding.text = "a directory; name a font file";
        } else if (!fs::exists(path, ignored)) {
            finding.text = "there is no such file" + Hint(file);
        } else {
            try {
                ReadWhole(path, 1);
                finding = _fonts.Look(path);
                finding.line = line;
            } catch (const FileError&) {
                finding.text = "cannot be read; look at its permissions";
            }
        }
        finding.text = name + "\"" + path + "\" - " + finding.text;
        _findings.push_back(finding);
        if (index > fonts_served)
            Say(line, Verdict::Note,
                "font " + std::to_string(index) + " is never served: only 1 and 2 are");
    }

    /** What may be meant by a name that is no file. */
    std::string Hint(const std::string& file) const
    {
        std::error_code ignored;
        const std::string trimmed = WithoutBlanks(file);
        if (trimmed != file && fs::exists(_directory + trimmed, ignored))
            return "; there is one without the blanks around the name";
        if (file.front() == '/' && fs::exists(file, ignored))
            return "; names are relative to the index file's directory, also those that begin "
                   "with '/'";
        return "; names are relative to the index file's directory";
    }

    /** What line 1 does not count. */
    void JudgeRest(const std::vector<Line>& lines, std::size_t next)
    {
        for (; next < lines.size(); ++next) {
            if (!WithoutBlanks(lines[next].text).empty())
                Say(lines[next].number, Verdict::Problem,
                    "is behind the " + std::to_string(_count) +
                        " declared on line 1 and never read; raise the number there");
        }
        const std::uint64_t found = lines.size() - 1;
        if (found < _count)
            Say(0, Verdict::Problem,
                "it ends after " + std::to_string(found) + " of the " + std::to_string(_count) +
                    " fonts declared on line 1; lower the number or add the lines");
    }

    const std::string _directory; ///< with its slash, empty for the current one
    std::uint64_t _count = 0;     ///< fonts declared
    std::vector<Finding> _findings;
    Fonts _fonts;
};

} // namespace

std::vector<Finding> JudgeIndex(const std::string& path)
{
    return Judge(path).Run(LinesOf(ReadWhole(path)));
}

std::size_t CountProblems(const std::vector<Finding>& findings)
{
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(),
                      [](const Finding& finding) { return finding.verdict == Verdict::Problem; }));
}

} // namespace kestrin_tools

#include "programme.h"

#include "srt.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestrin_play {
namespace {

constexpr std::uintmax_t largest_file = 64 << 20;

std::string ReadFile(const std::string& file)
{
    std::error_code failed;
    if (!std::filesystem::exists(file, failed))
        throw std::runtime_error(file + ": no such file; check the name");
    if (!std::filesystem::is_regular_file(file, failed))
        throw std::runtime_error(file + ": not a file; name a SubRip file (.srt)");
    if (std::filesystem::file_size(file, failed) > largest_file)
        throw std::runtime_error(file +
                                 ": larger than any subtitle file; name a SubRip file (.srt)");
    std::ifstream in(file, std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof())
        throw std::runtime_error(file + ": cannot be read; check its permissions");
    return content;
}

bool HasWideMark(const std::string& content)
{
    return content.rfind("\xFF\xFE", 0) == 0 || content.rfind("\xFE\xFF", 0) == 0;
}

bool IsBlank(const StyledLine& line)
{
    return line.text.find_first_not_of(u" \u00A0\u3000\u00AD\u200B\u200C\u200D\u200E\u200F") ==
           std::u16string::npos;
}

/** False if a line is no text in the encoding, or none shows anything; the report knows why. */
bool ReadText(const Cue& cue, const Encoding& encoding, Report& report, Caption* caption)
{
    MarkupReader markup;
    for (const TextLine& line : cue.text) {
        const std::optional<std::u16string> text = Decode(line.bytes, encoding);
        if (!text) {
            report.Skip({line.line, "not valid " + encoding.name + " text: " + Quoted(line.bytes),
                         "name the file's encoding with --encoding"});
            return false;
        }
        StyledLine styled = markup.ReadLine(*text);
        if (!IsBlank(styled))
            caption->lines.push_back({line.line, std::move(styled), {}});
    }
    if (caption->lines.empty())
        report.Skip(
            {cue.line, "a cue whose text shows nothing", "write its text or remove the cue"});
    return !caption->lines.empty();
}

} // namespace

Programme LoadProgramme(const std::string& file, const Encoding& encoding, Report& report)
{
    const std::string content = ReadFile(file);
    if (encoding.units == Encoding::Units::Bytes && HasWideMark(content))
        throw std::runtime_error(file + ": written in UTF-16; add --encoding utf-16");

    const Subtitles subtitles = ParseSubtitles(content, encoding);
    for (const Problem& problem : subtitles.problems)
        report.Skip(problem);
    Programme programme;
    for (const Cue& cue : subtitles.cues) {
        Caption caption = {cue.line, cue.start, cue.end, {}};
        if (ReadText(cue, encoding, report, &caption))
            programme.push_back(std::move(caption));
    }
    return programme;
}

void ChooseFonts(Programme& programme, const FontSet& fonts, Report& report)
{
    for (Caption& caption : programme) {
        std::u16string all;
        for (const CaptionLine& line : caption.lines)
            all += line.styled.text;
        const FontChoice common = fonts.Choose(all);
        for (CaptionLine& line : caption.lines) {
            line.font = common.missing.empty() ? common : fonts.Choose(line.styled.text);
            if (!line.font.missing.empty())
                report.Warn(
                    {line.line,
                     "no font has " + line.font.missing + ", shown as blanks or replacements",
                     "name a font that has them with --font"});
        }
    }
}

} // namespace kestrin_play

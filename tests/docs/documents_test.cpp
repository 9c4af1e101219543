/**
 * What the pages say of the tree: links lead somewhere, tests that are named exist, and files shown
 * byte by byte are those that the tools make.
 */
#include "png_file.h"
#include "run_command.h"
#include "temp_directory.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex.h>

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = KESTRIN_SOURCE_DIR;

/** Where a link leads. */
constexpr char kLink[] = R"(\]\(([^)[:space:]]+)\))";

std::string ContentOf(const fs::path& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> LinesOf(const fs::path& name)
{
    std::istringstream text(ContentOf(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/** Files of one kind in the sources, without builds and other output. */
std::vector<fs::path> SourcesWith(const std::string& extension, const fs::path& directory = kRoot)
{
    std::vector<fs::path> found;
    for (fs::recursive_directory_iterator entry(directory), end; entry != end; ++entry) {
        const std::string name = entry->path().filename();
        if (entry->is_directory() && (name == "build" || name == "out" || name[0] == '.'))
            entry.disable_recursion_pending();
        else if (entry->path().extension() == extension)
            found.push_back(entry->path());
    }
    return found;
}

/** All matches of an extended POSIX expression, each with what its groups matched. */
std::vector<std::vector<std::string>> MatchesOf(const std::string& text, const char* pattern)
{
    regex_t expression;
    std::vector<std::vector<std::string>> found;
    if (regcomp(&expression, pattern, REG_EXTENDED | REG_NEWLINE) != 0) {
        ADD_FAILURE() << "no expression: " << pattern;
        return found;
    }
    regmatch_t groups[4];
    const char* rest = text.c_str();
    for (; regexec(&expression, rest, 4, groups, 0) == 0; rest += groups[0].rm_eo) {
        found.emplace_back();
        for (const regmatch_t& group : groups)
            found.back().push_back(group.rm_so < 0
                                       ? std::string()
                                       : std::string(rest + group.rm_so, rest + group.rm_eo));
    }
    regfree(&expression);
    return found;
}

/** What the first group of an expression matched, everywhere. */
std::vector<std::string> FindAll(const std::string& text, const char* pattern)
{
    std::vector<std::string> found;
    for (const std::vector<std::string>& match : MatchesOf(text, pattern))
        found.push_back(match[1]);
    return found;
}

/** The names that headings of a page are linked by. */
std::set<std::string> AnchorsOf(const fs::path& page)
{
    std::set<std::string> anchors;
    for (const std::string& line : LinesOf(page)) {
        if (line.empty() || line[0] != '#')
            continue;
        std::string anchor;
        for (const char c : line.substr(line.find(' ') + 1)) {
            if (c == ' ')
                anchor += '-';
            else if (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_')
                anchor += static_cast<char>(std::tolower(c));
        }
        anchors.insert(anchor);
    }
    return anchors;
}

TEST(Documents, LinksLeadSomewhere)
{
    std::size_t links = 0;
    for (const fs::path& page : SourcesWith(".md")) {
        SCOPED_TRACE(page);
        for (const std::string& link : FindAll(ContentOf(page), kLink)) {
            if (link.find("://") != std::string::npos)
                continue;
            ++links;
            const std::size_t hash = std::min(link.find('#'), link.size());
            const fs::path target = hash == 0 ? page : page.parent_path() / link.substr(0, hash);
            EXPECT_TRUE(fs::exists(target)) << link;
            if (hash < link.size()) {
                EXPECT_EQ(AnchorsOf(target).count(link.substr(hash + 1)), 1u) << link;
            }
        }
    }
    EXPECT_GT(links, 50u);
}

TEST(Documents, ExcerptsAreInTheFilesNamedBeforeThem)
{
    const std::string page = ContentOf(kRoot / "CONTRIBUTING.md");
    const std::string open = "\n```cpp\n", close = "```\n";
    int excerpts = 0;
    for (std::size_t at = 0; (at = page.find(open, at)) != std::string::npos; ++excerpts) {
        const std::string file = FindAll(page.substr(0, at), kLink).back();
        at += open.size();
        const std::string excerpt = page.substr(at, page.find(close, at) - at);
        EXPECT_THAT(ContentOf(kRoot / file), testing::HasSubstr(excerpt)) << file;
    }
    EXPECT_GE(excerpts, 4);
}

TEST(Documents, EveryFolderThatThePagesNameIsThere)
{
    for (const char* page : {"README.md", "docs/architecture.md", "CONTRIBUTING.md"}) {
        for (const std::string& name : FindAll(ContentOf(kRoot / page), "`([A-Za-z/]+/)`"))
            EXPECT_TRUE(fs::is_directory(kRoot / name)) << page << " names " << name;
    }
}

TEST(Behaviours, TestsThatAreNamedExist)
{
    std::set<std::string> tests;
    for (const fs::path& source : SourcesWith(".cpp", kRoot / "tests")) {
        for (const std::vector<std::string>& match :
             MatchesOf(ContentOf(source), "^TEST(_F|_P)?\\([[:space:]]*([A-Za-z0-9_]+),"
                                          "[[:space:]]*([A-Za-z0-9_]+)\\)"))
            tests.insert(match[2] + "." + match[3]);
    }
    const auto named = FindAll(ContentOf(kRoot / "docs/behaviours.md"),
                               "`([A-Z][A-Za-z0-9]*[.][A-Z][A-Za-z0-9]*)`");
    EXPECT_GT(named.size(), 200u);
    for (const std::string& test : named)
        EXPECT_EQ(tests.count(test), 1u) << test;
}

TEST(Behaviours, EachNamesATest)
{
    for (const std::string& line : LinesOf(kRoot / "docs/behaviours.md")) {
        if (line.rfind("| ", 0) == 0 && line.find("| Test |") == std::string::npos) {
            EXPECT_THAT(line,
                        testing::ContainsRegex("`[A-Z][A-Za-z0-9]*[.][A-Z][A-Za-z0-9]*` [|]$"));
        }
    }
}

/** Follows docs/files.md. */
class FilesPage : public testing::Test
{
protected:
    /** Lines of a page's indented block from the one that begins so, to the end of the block. */
    static std::vector<std::string> Block(const std::string& first)
    {
        const std::vector<std::string> lines = LinesOf(kRoot / "docs/files.md");
        auto line = std::find_if(lines.begin(), lines.end(), [&](const std::string& text) {
            return text.rfind("    " + first, 0) == 0;
        });
        EXPECT_NE(line, lines.end()) << first;
        std::vector<std::string> block;
        for (; line != lines.end() && line->rfind("    ", 0) == 0; ++line)
            block.push_back(line->substr(4));
        return block;
    }

    /** The bytes that the page shows for a command of its own. */
    static std::string Dump(const std::string& command)
    {
        std::string bytes;
        std::vector<std::string> block = Block("$ " + command);
        block.erase(block.begin());
        for (const std::string& line : block) {
            char offset[20];
            std::snprintf(offset, sizeof offset, "%08zx", bytes.size());
            EXPECT_EQ(line.substr(0, 10), std::string(offset) + ": ");
            for (const std::string& byte : FindAll(line.substr(10, 48), "([0-9a-f]{2}) "))
                bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
            // The characters beside the bytes are theirs.
            const std::size_t shown = line.size() - 59;
            std::string text = bytes.substr(bytes.size() - shown);
            std::replace_if(
                text.begin(), text.end(), [](char c) { return c < 32 || c > 126; }, '.');
            EXPECT_EQ(line.substr(59), text);
        }
        return bytes;
    }

    /** Runs a command that the page shows, as it stands there. */
    void Run(const std::string& tool, const std::string& rest) const
    {
        Block("$ " + tool + " " + rest);
        const auto outcome = kestrin_test::RunCommand("cd " + files.Path("") +
                                                      " && " KESTRIN_TOOLS "/" + tool + " " + rest);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
    }

    void MakePalette() const
    {
        std::string gimp;
        for (const std::string& line : Block("GIMP Palette"))
            gimp += line + "\n";
        files.Write("flag.gpl", gimp);
        Run("kestrin-palette", "make --transparent 0 flag.gpl flag.pal");
    }

    const kestrin_test::TempDirectory files;
};

TEST_F(FilesPage, ShowsThePaletteThatTheToolMakes)
{
    MakePalette();
    const std::string palette = ContentOf(files.Path("flag.pal"));
    EXPECT_EQ(palette.size(), 1024u);
    EXPECT_EQ(Dump("xxd -g 1 -l 16 flag.pal"), palette.substr(0, 16));
}

TEST_F(FilesPage, ShowsTheImageThatTheToolMakes)
{
    MakePalette();
    constexpr std::uint32_t red = 0xffdc3c50, white = 0xffffffff;
    kestrin_display::ArgbImage left(8, 2, white), right(8, 2, red);
    for (int i = 0; i < 8; ++i) {
        left.At(i % 4, i / 4) = red;
        right.At(i % 4, i / 4) = white;
    }
    kestrin_tools::WritePng(files.Path("left.png"), left);
    kestrin_tools::WritePng(files.Path("right.png"), right);
    Run("kestrin-image", "make --palette flag.pal left.png right.png flag.img");
    EXPECT_EQ(Dump("xxd -g 1 flag.img"), ContentOf(files.Path("flag.img")));
}

TEST_F(FilesPage, ShowsAnIndexFileOfTwoFonts)
{
    EXPECT_EQ(Dump("xxd -g 1 index.txt"), "2\nfnt:DejaVuSans.ttf\nfnt:cjk/wqy-microhei.ttc\n");
    const fs::path fonts = "/usr/share/fonts/truetype";
    fs::create_directory(files.Path("cjk"));
    fs::create_symlink(fonts / "dejavu/DejaVuSans.ttf", files.Path("DejaVuSans.ttf"));
    fs::create_symlink(fonts / "wqy/wqy-microhei.ttc", files.Path("cjk/wqy-microhei.ttc"));
    files.Write("index.txt", Dump("xxd -g 1 index.txt"));
    const auto outcome =
        kestrin_test::RunCommand(KESTRIN_TOOLS "/kestrin-index check " + files.Path("index.txt"));
    EXPECT_EQ(outcome.status, 0) << outcome.output;
}

} // namespace

/**
 * Runs the tool on index files with each kind of line, and compares it with what the engine opens.
 */
#include "engine_display.h"
#include "test_font.h"
#include "tool_test.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using kestrin_test::EngineDisplay;
using kestrin_test::kSans;
using kestrin_test::Outcome;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class KestrinIndex : public kestrin_test::ToolTest
{
protected:
    KestrinIndex() : ToolTest(KESTRIN_INDEX_TOOL)
    {
        fs::create_symlink(kSans, files.Path("a.ttf"));
        fs::create_symlink(kSans, files.Path("b.ttf"));
        files.Write("text.ttf", "this is no font");
        files.Write("empty.ttf", "");
        fs::create_directory(files.Path("directory"));
    }
    Outcome Check(const std::string& content) const
    {
        return Run("check " + files.Write("index", content));
    }
    void ExpectGood(const std::string& content, const std::string& text) const
    {
        const Outcome outcome = Check(content);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_THAT(outcome.output, AllOf(HasSubstr(text), HasSubstr("\n0 problems\n")));
    }
    /** Expects one problem. */
    void ExpectProblem(const std::string& content, const std::string& place,
                       const std::string& text) const
    {
        const Outcome outcome = Check(content);
        EXPECT_EQ(outcome.status, 1) << content;
        const std::string line = "  " + place + std::string(10 - place.size(), ' ') + "problem  ";
        EXPECT_THAT(outcome.output, AllOf(HasSubstr(line), HasSubstr(text))) << content;
        EXPECT_THAT(outcome.output, HasSubstr("\n1 problem\n")) << content;
    }
};

TEST_F(KestrinIndex, GoodFileIsJudgedLineByLine)
{
    const Outcome outcome = Check("2\nfnt:a.ttf\r\nfnt:b.ttf");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("line 1    good     declares 2 fonts\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("line 2    good     font 1: \"" + files.Path("a.ttf") + "\" - DejaVu"));
    EXPECT_THAT(outcome.output, HasSubstr("line 3    good     font 2: "));
    EXPECT_THAT(outcome.output, HasSubstr("0 problems"));
}

TEST_F(KestrinIndex, FirstLineWithoutANumber)
{
    ExpectProblem("fnt:a.ttf\n", "line 1", "does not begin with a digit");
    ExpectProblem(" 1\nfnt:a.ttf\n", "line 1", "does not begin with a digit");
    ExpectProblem("\xEF\xBB\xBF"
                  "1\nfnt:a.ttf\n",
                  "line 1", "begins with a byte order mark");
    ExpectProblem("0\nfnt:a.ttf\n", "line 1", "declares no fonts");
    ExpectProblem("", "the file", "is empty");
}

TEST_F(KestrinIndex, TextBehindTheNumberIsNoted)
{
    ExpectGood("1 font\nfnt:a.ttf\n", "line 1    note     has text behind the number");
}

TEST_F(KestrinIndex, OnlyTheFirstTwoFontsAreServed)
{
    ExpectGood("3\nfnt:a.ttf\nfnt:b.ttf\nfnt:a.ttf\n",
               "line 1    note     declares more fonts than can be used: only the fonts 1 and 2");
    ExpectGood("3\nfnt:a.ttf\nfnt:b.ttf\nfnt:a.ttf\n", "line 4    note     font 3 is never served");
    EXPECT_THAT(Check("2\nfnt:a.ttf\nfnt:b.ttf\n").output, Not(HasSubstr("note")));
}

TEST_F(KestrinIndex, MissingFontsAreNamed)
{
    ExpectProblem("2\nfnt:a.ttf\nfnt:c.ttf\n", "line 3",
                  "font 2: \"" + files.Path("c.ttf") + "\" - there is no such file");
    ExpectProblem("3\nfnt:a.ttf\nfnt:b.ttf\nfnt:c.ttf\n", "line 4", "c.ttf\" - there is no such");
}

TEST_F(KestrinIndex, NamesThatNearlyAreFiles)
{
    ExpectProblem("1\nfnt: a.ttf\n", "line 2", "there is one without the blanks around the name");
    ExpectProblem("1\nfnt:a.ttf \n", "line 2", "there is one without the blanks around the name");
    ExpectProblem("1\nfnt:" + kSans + "\n", "line 2", "also those that begin with '/'");
}

TEST_F(KestrinIndex, WithoutADirectoryNamesAreTakenAsGiven)
{
    files.Write("index", "1\nfnt:" + kSans + "\n");
    EXPECT_EQ(Run("check index").status, 0);
    EXPECT_EQ(Run("check ./index").status, 1);
}

TEST_F(KestrinIndex, FilesThatAreNoFonts)
{
    ExpectProblem("1\nfnt:text.ttf\n", "line 2", "no font that FreeType can open");
    ExpectProblem("1\nfnt:empty.ttf\n", "line 2", "no font that FreeType can open");
    ExpectProblem("1\nfnt:directory\n", "line 2", "a directory");
}

TEST_F(KestrinIndex, LinesThatAreNoEntries)
{
    ExpectProblem("1\nfont:a.ttf\n", "line 2", "font 1: the type is \"font\"");
    ExpectProblem("1\nFNT:a.ttf\n", "line 2", "the type is \"FNT\"");
    ExpectProblem("1\n fnt:a.ttf\n", "line 2", "the type is \" fnt\"");
    ExpectProblem("1\nfnt\n", "line 2", "there is no ':'; write fnt:FILE");
    ExpectProblem("2\n\nfnt:a.ttf\n", "line 2", "font 1: the line is empty");
    ExpectProblem("1\nfnt:\n", "line 2", "there is no file's name");
    ExpectProblem("1\nfnt:a.ttf:b\n", "line 2", "ends at the second ':'");
}

TEST_F(KestrinIndex, LinesThatAreCut)
{
    const std::string longest(1018, 'x');
    const Outcome fits = Check("1\nfnt:" + longest + "\n");
    EXPECT_THAT(fits.output, Not(HasSubstr("more than 1023 bytes")));
    const Outcome cut = Check("1\nfnt:" + longest + "xx\n");
    EXPECT_THAT(cut.output, HasSubstr("line 2    problem  has more than 1023 bytes"));
    EXPECT_THAT(cut.output, HasSubstr("line 2    problem  is behind the 1 declared"));
    EXPECT_EQ(cut.status, 1);
    ExpectProblem(std::string("1\nfnt:a.ttf\0\n", 13), "line 2", "has a zero byte");
}

TEST_F(KestrinIndex, NumberAndLinesThatDisagree)
{
    ExpectProblem("1\nfnt:a.ttf\nfnt:b.ttf\n", "line 3", "behind the 1 declared on line 1");
    ExpectProblem("2\nfnt:a.ttf\n", "the file", "ends after 1 of the 2 fonts declared");
    ExpectGood("1\nfnt:a.ttf\n\n \n", "declares 1 font\n");
}

TEST_F(KestrinIndex, NumbersOfWhichTheEngineComparesTooFewBits)
{
    const auto status = [&](const std::string& count) {
        return Check(count + "\nfnt:a.ttf\nfnt:b.ttf\n").output;
    };
    EXPECT_THAT(status("65536"), HasSubstr("declares so many that none can be used"));
    EXPECT_THAT(status("65537"), HasSubstr("declares so many that only font 1 can be used"));
    EXPECT_THAT(status("65538"), Not(HasSubstr("declares so many")));
    EXPECT_THAT(status("99999999999999999999"), HasSubstr("declares 4294967295 fonts"));
}

TEST_F(KestrinIndex, DirectoryThatIsTooLongForTheEngine)
{
    const std::string directory = files.Path(std::string(100, 'd') + "/" + std::string(100, 'e'));
    fs::create_directories(directory);
    const std::string name = directory.substr(files.Path("").size()) + "/index";
    files.Write(name, "1\nfnt:../../a.ttf\n");
    const Outcome outcome = Run("check " + name);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("the file  problem  the name of its directory has 202"));
}

TEST_F(KestrinIndex, TheEngineAgrees)
{
    const char* const contents[] = {
        "0\nfnt:a.ttf\n",     "x\nfnt:a.ttf\n",     "1\nfnt:a.ttf\n",     "1\nFNT:a.ttf\n",
        "1\nfnt:a.ttf \n",    "1\nfnt:c.ttf\n",     "1\nfnt\n",           "1 and\nfnt:a.ttf:b\n",
        "65536\nfnt:a.ttf\n", "65537\nfnt:a.ttf\n", "1\nfnt:directory\n", "1\r\nfnt:a.ttf\r\n",
        "2\n\nfnt:a.ttf\n"};
    const EngineDisplay engine(64, 48);
    for (const char* content : contents) {
        const Outcome outcome = Check(content);
        bool from_memory = false;
        zelxxx::PResource resource(zelxxx::zelOpenResource(files.Path("index").c_str()));
        const bool opens = resource && resource->OpenFont(1, from_memory) != nullptr;
        const bool judged = outcome.output.find("font 1: \"") != std::string::npos &&
                            outcome.output.find("\" - DejaVu") != std::string::npos &&
                            outcome.output.find("none can be used") == std::string::npos;
        EXPECT_EQ(judged, opens) << content << outcome.output;
    }
}

TEST_F(KestrinIndex, MissingFileAndDirectoryEndWithOne)
{
    EXPECT_EQ(Run("check none").status, 1);
    EXPECT_THAT(Run("check none").output, HasSubstr("kestrin-index: none: No such file"));
    EXPECT_EQ(Run("check directory").status, 1);
    EXPECT_THAT(Run("check directory").output, HasSubstr("directory: Is a directory"));
}

TEST_F(KestrinIndex, HelpHasAnExampleAndExitCodes)
{
    EXPECT_THAT(Run("--help").output, AllOf(HasSubstr("Usage: kestrin-index"), HasSubstr("2 for")));
    EXPECT_THAT(Run("check --help").output, HasSubstr("\n  kestrin-index check "));
    EXPECT_EQ(Run("").status, 2);
    EXPECT_EQ(Run("check").status, 2);
}

} // namespace

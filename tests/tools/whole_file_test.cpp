/**
 * Files that appear when they are complete.
 */
#include "whole_file.h"

#include "temp_directory.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fs = std::filesystem;
using kestrin_test::TempDirectory;
using testing::HasSubstr;
using namespace kestrin_tools;

namespace {

std::size_t FilesIn(const TempDirectory& files)
{
    const fs::directory_iterator all(files.Path(""));
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::string ErrorOf(const std::string& path)
{
    try {
        NewFile file(path, "text");
        file.Publish();
    } catch (const FileError& error) {
        return error.what();
    }
    return {};
}

TEST(NewFile, ReplacesAFileOnlyWhenPublished)
{
    const TempDirectory files;
    const std::string path = files.Write("a", "old");
    NewFile file(path, std::string("new\0text", 8));
    EXPECT_EQ(ReadWhole(path), "old");
    file.Publish();
    EXPECT_EQ(ReadWhole(path), std::string("new\0text", 8));
    EXPECT_EQ(FilesIn(files), 1u);
}

TEST(NewFile, LeavesNothingWhenNotPublished)
{
    const TempDirectory files;
    {
        const NewFile file(files.Path("a"), "text");
        EXPECT_EQ(FilesIn(files), 1u);
    }
    EXPECT_EQ(FilesIn(files), 0u);
}

TEST(NewFile, MayBeReadByWhomTheUserLets)
{
    const TempDirectory files;
    const mode_t mask = umask(0027);
    NewFile(files.Path("a"), "text").Publish();
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(stat(files.Path("a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(NewFile, ErrorsNameTheFileAndLeaveNothing)
{
    const TempDirectory files;
    EXPECT_THAT(ErrorOf(files.Path("none/a")), HasSubstr("none/a: No such file or directory"));
    fs::create_directory(files.Path("d"));
    EXPECT_THAT(ErrorOf(files.Path("d")), HasSubstr("/d: is there already and no file"));
    EXPECT_THAT(ErrorOf("/dev/null"), HasSubstr("/dev/null: is there already and no file"));
    EXPECT_EQ(FilesIn(files), 1u);
}

TEST(ReadWhole, ReadsAllOrAsMuchAsIsAskedFor)
{
    const TempDirectory files;
    const std::string large(100000, 'x');
    const std::string path = files.Write("a", large + "end");
    EXPECT_EQ(ReadWhole(path), large + "end");
    EXPECT_EQ(ReadWhole(path, 5), "xxxxx");
    EXPECT_EQ(ReadWhole(files.Write("b", "")), "");
}

TEST(ReadWhole, ADirectoryIsNoFile)
{
    const TempDirectory files;
    EXPECT_THROW(ReadWhole(files.Path("")), FileError);
    EXPECT_THROW(ReadWhole(files.Path("none")), FileError);
}

} // namespace

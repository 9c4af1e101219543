/** Tools that are run as a user runs them, in a directory of the test's own. */
#pragma once

#include "run_command.h"
#include "temp_directory.h"

#include <filesystem>
#include <iterator>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin_test {

class ToolTest : public testing::Test
{
protected:
    /** @param program  the tool's path; its messages begin with its name */
    explicit ToolTest(std::string program) : _program(std::move(program)) {}

    Outcome Run(const std::string& arguments) const
    {
        return RunCommand("cd " + files.Path("") + " && " + _program + " " + arguments);
    }

    std::size_t FileCount() const
    {
        const std::filesystem::directory_iterator all(files.Path(""));
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    /** Expects a failure that says something and adds no file. */
    void ExpectNoFile(const std::string& arguments, const std::string& message) const
    {
        const std::string name = std::filesystem::path(_program).filename();
        const std::size_t before = FileCount();
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_THAT(outcome.output,
                    testing::AllOf(testing::HasSubstr(name + ": "), testing::HasSubstr(message)));
        EXPECT_EQ(FileCount(), before) << arguments;
    }

    const TempDirectory files;

private:
    const std::string _program;
};

} // namespace kestrin_test

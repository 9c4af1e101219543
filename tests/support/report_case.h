/** Calls that are made to fail one by one, for parameterised tests of what is then reported. */
#pragma once

#include "dfb_failure.h"
#include "display_fixture.h"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace kestrin_test {

/** A call that fails. */
struct ReportCase
{
    const char* name;  ///< of the test
    const char* file;  ///< that reports it
    const char* call;  ///< as it is reported, to the letter
    void (*provoke)(); ///< starts the engine and makes the call; for a child process
};

inline void PrintTo(const ReportCase& value, std::ostream* out)
{
    *out << value.call;
}

inline std::string NameOfCase(const testing::TestParamInfo<ReportCase>& info)
{
    return info.param.name;
}

/** A display for the child processes, of which each ends with the report. */
class ReportTest : public testing::TestWithParam<ReportCase>
{
protected:
    static void ExpectTheCallsOwnText()
    {
        EXPECT_EXIT(GetParam().provoke(), ExitsWith(kInjected),
                    Reports(GetParam().file, GetParam().call));
    }

    TestDisplay display{64, 48};
};

} // namespace kestrin_test

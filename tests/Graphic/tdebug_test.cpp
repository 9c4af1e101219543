/** Reports of failed DirectFB calls, and leveled messages to the platform's log. */
#include "tdebug.h"

#include "dfb_failure.h"
#include "platform_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::ExitsWith;
using kestrin_test::kInjected;
using kestrin_test::PlatformLog;
using kestrin_test::Reports;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kThisFile[] = "tests/Graphic/tdebug_test.cpp";

DFBResult Answer(DFBResult result)
{
    return result;
}

DFBResult Answer(DFBResult result, const char*, unsigned)
{
    return result;
}

TEST(DfbCheck, SuccessIsSilent)
{
    testing::internal::CaptureStderr();
    DFBCHECK(Answer(DFB_OK));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(DfbCheck, CallIsMadeOnce)
{
    int calls = 0;
    const auto count = [&calls] {
        ++calls;
        return DFB_OK;
    };
    DFBCHECK(count());
    EXPECT_EQ(calls, 1);
}

TEST(DfbCheckDeathTest, FailureReportsTheCallAndEndsTheProcess)
{
    EXPECT_EXIT(DFBCHECK(Answer(kInjected)), ExitsWith(kInjected),
                         Reports(kThisFile, "Answer(kInjected)"));
}

TEST(DfbCheckDeathTest, ReportHasTheResultsOwnMessage)
{
    EXPECT_EXIT(DFBCHECK(Answer(DFB_FILENOTFOUND)), ExitsWith(DFB_FILENOTFOUND),
                         Reports(kThisFile, "Answer(DFB_FILENOTFOUND)", DFB_FILENOTFOUND));
}

TEST(DfbCheckDeathTest, HeaderNamesTheLine)
{
    const int line = __LINE__ + 1;
    EXPECT_EXIT(DFBCHECK(Answer(kInjected)), ExitsWith(kInjected),
                         testing::StartsWith(std::string(kThisFile) + " <" + std::to_string(line) +
                                             ">:\n\t(#) DirectFBError"));
}

TEST(DfbCheckDeathTest, MacroNamesInTheCallAreReportedAsWritten)
{
#define TWELVE 12
    EXPECT_EXIT(DFBCHECK(Answer(kInjected, "a, b", (TWELVE))), ExitsWith(kInjected),
                                Reports(kThisFile, "Answer(kInjected, \"a, b\", (TWELVE))"));
#undef TWELVE
}

TEST(DfbCheckDeathTest, LineBreakAfterACommaIsOneBlank)
{
    // clang-format off
    EXPECT_EXIT(
        {
            DFBCHECK(Answer(kInjected,
                            "a",
                            1));
        },
        ExitsWith(kInjected), Reports(kThisFile, "Answer(kInjected, \"a\", 1)"));
    // clang-format on
}

int LogWithEvaluatedArgument(int level)
{
    int evaluations = 0;
    KESTRIN_LOG(level, "%d of %s\n", ++evaluations, "two");
    return evaluations;
}

TEST(Log, ThresholdZeroMakesNoCallAndEvaluatesNoArgument)
{
    PlatformLog::SetThreshold(0);
    EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogFailure), 0);
    EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogInformation), 0);
    EXPECT_THAT(PlatformLog::Messages(), IsEmpty());
}

TEST(Log, ThresholdOneLetsFailuresThroughOnly)
{
    PlatformLog::SetThreshold(1);
    EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogFailure), 1);
    EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogInformation), 0);
    ASSERT_EQ(PlatformLog::Messages().size(), 1U);
    EXPECT_EQ(PlatformLog::Messages()[0].level, 1);
}

TEST(Log, ThresholdThreeKeepsInformationBack)
{
    PlatformLog::SetThreshold(3);
    EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogInformation), 0);
}

TEST(Log, ThresholdFourAndAboveLetInformationThrough)
{
    for (const int threshold : {4, 5, 100}) {
        PlatformLog::SetThreshold(threshold);
        EXPECT_EQ(LogWithEvaluatedArgument(zelxxx::kLogInformation), 1);
        EXPECT_EQ(PlatformLog::Messages().back().level, 4);
    }
    EXPECT_EQ(PlatformLog::Messages().size(), 3U);
}

TEST(Log, MessageCarriesWhereItComesFrom)
{
    PlatformLog::SetThreshold(4);
    const int line = __LINE__ + 1;
    KESTRIN_LOG(4, "%s %d\n", "text", 7);
    ASSERT_EQ(PlatformLog::Messages().size(), 1U);
    const kestrin_test::LoggedMessage& message = PlatformLog::Messages()[0];
    EXPECT_EQ(message.category, zelxxx::kestrin_debug);
    EXPECT_EQ(message.file, kThisFile);
    EXPECT_EQ(message.function, "TestBody");
    EXPECT_EQ(message.line, line);
    EXPECT_EQ(message.text, "text 7\n");
}

TEST(Log, CategoryIsNullBeforeTheFirstInitialisation)
{
    EXPECT_EQ(zelxxx::kestrin_debug, nullptr);
}

} // namespace

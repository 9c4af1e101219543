/**
 * The error classes and the sink of their text. The sink is a hook: this program puts its own in
 * place of the library's text form, as a debugging build would, and sees what arrives there.
 */
#include "vrel_kestrin_graphic.h"

#include <climits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
using zelxxx::EGraphicFailure;
using zelxxx::zelError;

namespace {

std::vector<std::string>& Pieces()
{
    static std::vector<std::string> pieces;
    return pieces;
}

} // namespace

namespace zelxxx {

void zelDebugMessage(PtrConstSChar text)
{
    Pieces().push_back(text);
}

} // namespace zelxxx

namespace {

TEST(Error, OutOfMemoryIsOnePiece)
{
    zelError(zelxxx::EOutOfMemory());
    EXPECT_THAT(Pieces(), ElementsAre("out of memory"));
}

TEST(Error, FileFailureIsTheLeadAndTheName)
{
    zelError(zelxxx::EFileFailure("a.fnt"));
    EXPECT_THAT(Pieces(), ElementsAre("failed to open file: ", "a.fnt"));
}

TEST(Error, FileNameIsNotCopied)
{
    char name[] = "first";
    const zelxxx::EFileFailure error(name);
    name[0] = 'F';
    error.Output();
    EXPECT_THAT(Pieces(), ElementsAre("failed to open file: ", "First"));
}

TEST(Error, ResourceFailureIsTheLeadAndTheIndex)
{
    zelError(zelxxx::EResourceFailure(65535));
    EXPECT_THAT(Pieces(), ElementsAre("failed to load resource object with index ", "65535"));
}

TEST(Error, GeneralGraphicFailureIsTheLeadAndTheCode)
{
    zelError(EGraphicFailure(-7, EGraphicFailure::General));
    EXPECT_THAT(Pieces(), ElementsAre("graphic engine returned error code ", "-7"));
}

TEST(Error, AllocationFailureSaysSo)
{
    zelError(EGraphicFailure(12, EGraphicFailure::Allocation));
    EXPECT_THAT(Pieces(), ElementsAre("graphic engine returned error code ", "12",
                                      " when allocating resource"));
}

TEST(Error, CreateFontFailureSaysSo)
{
    zelError(EGraphicFailure(3, EGraphicFailure::CreateFont));
    EXPECT_THAT(Pieces(),
                ElementsAre("graphic engine returned error code ", "3", " when creating font"));
}

TEST(Error, UnknownGraphicFailureTypeAddsNothing)
{
    zelError(EGraphicFailure(3, static_cast<EGraphicFailure::ErrorType>(3)));
    EXPECT_THAT(Pieces(), ElementsAre("graphic engine returned error code ", "3"));
}

TEST(Error, TypesHaveTheirValues)
{
    EXPECT_EQ(EGraphicFailure::General, 0);
    EXPECT_EQ(EGraphicFailure::Allocation, 1);
    EXPECT_EQ(EGraphicFailure::CreateFont, 2);
}

TEST(Error, ReportCallsOutputOnceAndNothingElse)
{
    struct Counting : zelxxx::Error
    {
        void Output() const override { ++calls; }
        mutable int calls = 0;
    };
    const Counting error;
    zelError(error);
    EXPECT_EQ(error.calls, 1);
    EXPECT_THAT(Pieces(), IsEmpty());
}

TEST(DebugMessage, NumbersArriveAsDecimalText)
{
    zelxxx::zelDebugMessage(zelxxx::Int32{INT_MIN});
    zelxxx::zelDebugMessage(zelxxx::UInt32{UINT_MAX});
    zelxxx::zelDebugMessage(zelxxx::Int32{0});
    EXPECT_THAT(Pieces(), ElementsAre("-2147483648", "4294967295", "0"));
}

} // namespace

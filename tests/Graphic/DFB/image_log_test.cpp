/** What images say in the platform's debug log. */
#include "engine_display.h"
#include "image_support.h"
#include "platform_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::EngineDisplay;
using kestrin_test::MemoryImage;
using kestrin_test::PaintedOn;
using kestrin_test::PlatformLog;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace zelxxx;

namespace {

constexpr char kBitsAreCopied[] =
    "==(blend_mode == BlendSrcCopy) && pDrawData && _color_mode == Color1Bit==\n";

TEST(ImageLog, OneBitDataInCopyModeIsLoggedAtTheLevelOfInformation)
{
    const EngineDisplay engine(64, 48);
    const PImage bits = MemoryImage(Color1Bit, 8, 1, {1});
    PlatformLog::SetThreshold(4);
    PlatformLog::Messages().clear();
    PaintedOn(Color32Bit, bits, 0, 8, 1, BlendSrcCopy);
    EXPECT_THAT(PlatformLog::Texts(), ElementsAre(kBitsAreCopied));
    ASSERT_FALSE(PlatformLog::Messages().empty());
    EXPECT_EQ(PlatformLog::Messages()[0].level, 4);
    PlatformLog::Messages().clear();

    PaintedOn(Color32Bit, bits, 0, 8, 1, BlendSrcOver);
    PaintedOn(Color32Bit, MemoryImage(Color8Bit, 8, 1, std::vector<UInt8>(8)), 0, 8, 1,
              BlendSrcCopy);
    PaintedOn(Color32Bit, MemoryImage(Color1Bit, 8, 1, {}), 0, 8, 1, BlendSrcCopy);
    EXPECT_THAT(PlatformLog::Texts(), IsEmpty());

    PlatformLog::SetThreshold(3);
    PaintedOn(Color32Bit, bits, 0, 8, 1, BlendSrcCopy);
    EXPECT_THAT(PlatformLog::Texts(), IsEmpty());
}

} // namespace

/** The order of virtual functions that clients of the toolkit are built against. */
#include "vrel_kestrin_flow.h"
#include "vrel_kestrin_loader.h"

#include "vtable_slot.h"

#include <gtest/gtest.h>

using kestrin_test::ExpectSlots;

namespace zelxxx {
namespace {

TEST(ToolkitSlots, ImageLoaderFollowsTheObject)
{
    ExpectSlots<IImageLoader>(4, &IImageLoader::Open, &IImageLoader::OpenPalette,
                              &IImageLoader::SetDisplayPalette, &IImageLoader::GetWidth,
                              &IImageLoader::GetHeight, &IImageLoader::GetFrameCount,
                              &IImageLoader::CreateImage, &IImageLoader::GetError);
}

TEST(ToolkitSlots, FlowLineHandlerFollowsTheDestructor)
{
    ExpectSlots<IFlowLineHandler>(2, &IFlowLineHandler::HandleLine);
}

TEST(ToolkitSlots, FlowFormatterAddsNoneToTheInterface)
{
    ExpectSlots<FlowFormatter>(2, &FlowFormatter::Format, &FlowFormatter::GetCharBuffer);
}

} // namespace
} // namespace zelxxx

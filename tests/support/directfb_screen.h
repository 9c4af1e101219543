/**
 * DirectFB with layer 1 taken exclusively, as the engine uses it.
 */
#pragma once

#include <cstdint>

#include <directfb.h>
#include <gtest/gtest.h>

namespace kestrin_test {

/** Releases what it made. One at a time. */
class Screen
{
public:
    Screen()
    {
        EXPECT_EQ(DirectFBInit(nullptr, nullptr), DFB_OK);
        EXPECT_EQ(DirectFBCreate(&dfb), DFB_OK);
    }

    ~Screen()
    {
        Drop();
        dfb->Release(dfb);
    }

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    void Take(int width, int height, DFBSurfacePixelFormat format,
              DFBDisplayLayerBufferMode mode = DLBM_FRONTONLY)
    {
        ASSERT_EQ(dfb->GetDisplayLayer(dfb, 1, &layer), DFB_OK);
        ASSERT_EQ(layer->SetCooperativeLevel(layer, DLSCL_EXCLUSIVE), DFB_OK);
        DFBDisplayLayerConfig config = {};
        config.flags = static_cast<DFBDisplayLayerConfigFlags>(
            DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT | DLCONF_BUFFERMODE);
        config.width = width;
        config.height = height;
        config.pixelformat = format;
        config.buffermode = mode;
        ASSERT_EQ(layer->SetConfiguration(layer, &config), DFB_OK);
        ASSERT_EQ(layer->GetSurface(layer, &surface), DFB_OK);
    }

    void Drop()
    {
        if (surface != nullptr)
            surface->Release(surface);
        if (layer != nullptr)
            layer->Release(layer);
        surface = nullptr;
        layer = nullptr;
    }

    void Fill(int x, int y, int width, int height, std::uint32_t argb)
    {
        surface->SetColor(surface, argb >> 16 & 0xff, argb >> 8 & 0xff, argb & 0xff, argb >> 24);
        ASSERT_EQ(surface->FillRectangle(surface, x, y, width, height), DFB_OK);
    }

    void Flip(DFBSurfaceFlipFlags flags = DSFLIP_NONE)
    {
        ASSERT_EQ(surface->Flip(surface, nullptr, flags), DFB_OK);
    }

    IDirectFB* dfb = nullptr;
    IDirectFBDisplayLayer* layer = nullptr;
    IDirectFBSurface* surface = nullptr;
};

} // namespace kestrin_test

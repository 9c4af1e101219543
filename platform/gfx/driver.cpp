/**
 * The DirectFB graphics driver "kestrin_gfx": the processor's vector units.
 *
 * DirectFB asks a driver before each operation and draws itself what the driver declines. This one
 * is for machines without a 2-D engine, on any DirectFB system that lets drivers at its surfaces.
 * `no-hardware` among DirectFB's options leaves everything as if there were no driver.
 */
#include "directfb_core.h"
#include "drawing.h"
#include "memory_pool.h"

#include <cstdio>

namespace kestrin_gfx {
namespace {

/** DirectFB allocates it, filled with zeros. */
struct Driver
{
    CoreSurfacePool* pool;
    Drawing drawing;
};

Drawing& DrawingOf(void* driver_data)
{
    return static_cast<Driver*>(driver_data)->drawing;
}

void CheckState(void*, void*, CardState* state, DFBAccelerationMask operation)
{
    if (Drawing::CanDo(*state, operation))
        state->accel = static_cast<DFBAccelerationMask>(state->accel | operation);
}

void SetState(void* driver_data, void*, GraphicsDeviceFuncs*, CardState* state,
              DFBAccelerationMask operation)
{
    DrawingOf(driver_data).Prepare(*state, operation);
    // Nothing is kept, so that every operation comes with the addresses that its buffers have.
    state->set = DFXL_NONE;
    state->mod_hw = SMF_NONE;
}

bool FillRectangle(void* driver_data, void*, DFBRectangle* area)
{
    return DrawingOf(driver_data).FillRectangle(*area);
}

bool Blit(void* driver_data, void*, DFBRectangle* from, int x, int y)
{
    return DrawingOf(driver_data).Blit(*from, x, y);
}

bool StretchBlit(void* driver_data, void*, DFBRectangle* from, DFBRectangle* to)
{
    return DrawingOf(driver_data).StretchBlit(*from, *to);
}

// Machines with a 2-D engine have a driver of their own, which may be asked later.
int Probe(CoreGraphicsDevice* device)
{
    return dfb_gfxcard_get_accelerator(device) <= 0 ? 1 : 0;
}

void GetDriverInfo(CoreGraphicsDevice*, GraphicsDriverInfo* info)
{
    std::snprintf(info->name, DFB_GRAPHICS_DRIVER_INFO_NAME_LENGTH, "Kestrin Graphics");
    std::snprintf(info->vendor, DFB_GRAPHICS_DRIVER_INFO_VENDOR_LENGTH, "Kestrin");
    std::snprintf(info->license, DFB_GRAPHICS_DRIVER_INFO_LICENSE_LENGTH, "MIT");
    info->version.major = 1;
    info->version.minor = 0;
    info->driver_data_size = sizeof(Driver);
}

DFBResult InitDriver(CoreGraphicsDevice*, GraphicsDeviceFuncs* functions, void* driver_data, void*,
                     CoreDFB* core)
{
    // Surfaces then stay in the memory where they would be without a driver.
    if (dfb_config->software_only)
        return DFB_OK;

    functions->CheckState = CheckState;
    functions->SetState = SetState;
    functions->FillRectangle = FillRectangle;
    functions->Blit = Blit;
    functions->StretchBlit = StretchBlit;

    auto& driver = *static_cast<Driver*>(driver_data);
    driver.drawing.Open(BestKernels());
    return dfb_surface_pool_initialize2(core, &memory_pool_functions, nullptr, &driver.pool);
}

DFBResult InitDevice(CoreGraphicsDevice*, GraphicsDeviceInfo* info, void*, void*)
{
    std::snprintf(info->name, DFB_GRAPHICS_DEVICE_INFO_NAME_LENGTH, "Vector units");
    std::snprintf(info->vendor, DFB_GRAPHICS_DEVICE_INFO_VENDOR_LENGTH, "Processor");
    info->caps.flags = static_cast<CardCapabilitiesFlags>(CCF_READSYSMEM | CCF_WRITESYSMEM);
    info->caps.accel = Drawing::operations;
    info->caps.clip = Drawing::clipping;
    info->caps.drawing = DSDRAW_BLEND;
    info->caps.blitting = static_cast<DFBSurfaceBlittingFlags>(
        DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA | DSBLIT_COLORIZE |
        DSBLIT_SRC_COLORKEY | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY);
    return DFB_OK;
}

void CloseDevice(CoreGraphicsDevice*, void*, void*) {}

void CloseDriver(CoreGraphicsDevice*, void* driver_data)
{
    auto& driver = *static_cast<Driver*>(driver_data);
    driver.drawing.Close();
    if (driver.pool != nullptr)
        dfb_surface_pool_destroy(driver.pool);
}

// DirectFB loads every module of the directory and asks later; the module announces itself.
__attribute__((constructor)) void RegisterDriver()
{
    static const GraphicsDriverFuncs functions = {Probe,      GetDriverInfo, InitDriver,
                                                  InitDevice, CloseDevice,   CloseDriver};
    direct_modules_register(&dfb_graphics_drivers, DFB_GRAPHICS_DRIVER_ABI_VERSION, "kestrin_gfx",
                            &functions);
}

} // namespace
} // namespace kestrin_gfx

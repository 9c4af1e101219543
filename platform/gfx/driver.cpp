/**
 * The DirectFB graphics driver "kestrin_gfx": drawing by the processor, faster than DirectFB's own.
 */
#include "directfb_driver.h"
#include "memory_pool.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace kestrin_gfx {
namespace {

struct DriverData
{
    CoreSurfacePool* pool;
    std::uint8_t* destination;
    unsigned pitch;
    std::uint32_t color;
};

void CheckState(void*, void*, CardState* state, DFBAccelerationMask accel)
{
    if (accel != DFXL_FILLRECTANGLE || state->drawingflags != DSDRAW_NOFX ||
        state->destination->config.format != DSPF_ARGB)
        return;
    state->accel = static_cast<DFBAccelerationMask>(state->accel | DFXL_FILLRECTANGLE);
}

void SetState(void* driver_data, void*, GraphicsDeviceFuncs*, CardState* state,
              DFBAccelerationMask accel)
{
    auto& driver = *static_cast<DriverData*>(driver_data);
    driver.destination = static_cast<std::uint8_t*>(state->dst.addr);
    driver.pitch = state->dst.pitch;
    const DFBColor& c = state->color;
    driver.color = static_cast<std::uint32_t>(c.a) << 24 | static_cast<std::uint32_t>(c.r) << 16 |
                   static_cast<std::uint32_t>(c.g) << 8 | c.b;
    state->set = accel;
    state->mod_hw = SMF_NONE;
}

bool FillRectangle(void* driver_data, void*, DFBRectangle* rect)
{
    const auto& driver = *static_cast<DriverData*>(driver_data);
    for (int y = rect->y; y < rect->y + rect->h; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(driver.destination + y * driver.pitch);
        std::fill_n(row + rect->x, rect->w, driver.color);
    }
    return true;
}

int Probe(CoreGraphicsDevice*)
{
    return 1;
}

void GetDriverInfo(CoreGraphicsDevice*, GraphicsDriverInfo* info)
{
    std::snprintf(info->name, DFB_GRAPHICS_DRIVER_INFO_NAME_LENGTH, "Processor");
    std::snprintf(info->vendor, DFB_GRAPHICS_DRIVER_INFO_VENDOR_LENGTH, "Kestrin");
    std::snprintf(info->license, DFB_GRAPHICS_DRIVER_INFO_LICENSE_LENGTH, "MIT");
    info->version.major = 0;
    info->version.minor = 1;
    info->driver_data_size = sizeof(DriverData);
}

DFBResult InitDriver(CoreGraphicsDevice*, GraphicsDeviceFuncs* functions, void* driver_data, void*,
                     CoreDFB* core)
{
    if (dfb_config->software_only)
        return DFB_OK;
    functions->CheckState = CheckState;
    functions->SetState = SetState;
    functions->FillRectangle = FillRectangle;
    return dfb_surface_pool_initialize2(core, &memory_pool_functions, nullptr,
                                        &static_cast<DriverData*>(driver_data)->pool);
}

DFBResult InitDevice(CoreGraphicsDevice*, GraphicsDeviceInfo* info, void*, void*)
{
    std::snprintf(info->name, DFB_GRAPHICS_DEVICE_INFO_NAME_LENGTH, "Processor");
    std::snprintf(info->vendor, DFB_GRAPHICS_DEVICE_INFO_VENDOR_LENGTH, "Kestrin");
    info->caps.flags = static_cast<CardCapabilitiesFlags>(CCF_READSYSMEM | CCF_WRITESYSMEM);
    info->caps.accel = DFXL_FILLRECTANGLE;
    return DFB_OK;
}

void CloseDevice(CoreGraphicsDevice*, void*, void*) {}

void CloseDriver(CoreGraphicsDevice*, void* driver_data)
{
    CoreSurfacePool* pool = static_cast<DriverData*>(driver_data)->pool;
    if (pool != nullptr)
        dfb_surface_pool_destroy(pool);
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

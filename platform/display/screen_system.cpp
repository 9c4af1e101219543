/**
 * The DirectFB core system "kestrin_screen": a screen with two layers in a file.
 *
 * It is a real display as far as DirectFB and its clients can tell - layers, buffers, palettes,
 * opacity, physical addresses - on machines without a panel and for ordinary users. Settings come
 * through DirectFB's own options: `fbdev=FILE` names the screen file, `mode=WIDTHxHEIGHT` gives the
 * size of the screen.
 */
#include "screen_system.h"

#include "directfb_core.h"
#include "screen_pool.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>

#include <semaphore.h>
#include <unistd.h>

namespace kestrin_display {
namespace {

constexpr int default_width = 1280;
constexpr int default_height = 720;

// A program may end without shutting DirectFB down, while its threads still run. Nothing must
// then be destroyed under them, so this is a plain pointer.
ScreenSystem* the_system = nullptr;

DFBResult InitScreen(CoreScreen*, CoreGraphicsDevice*, void*, void*,
                     DFBScreenDescription* description)
{
    description->caps = DSCCAPS_VSYNC;
    std::snprintf(description->name, DFB_SCREEN_DESC_NAME_LENGTH, "Screen file");
    return DFB_OK;
}

// Nothing scans the file out, so there is no retrace to wait for.
DFBResult WaitVSync(CoreScreen*, void*, void*)
{
    return DFB_OK;
}

DFBResult GetScreenSize(CoreScreen*, void* driver_data, void*, int* ret_width, int* ret_height)
{
    const auto& memory = *static_cast<ScreenMemory*>(driver_data);
    *ret_width = static_cast<int>(memory.Width());
    *ret_height = static_cast<int>(memory.Height());
    return DFB_OK;
}

ScreenFuncs MakeScreenFunctions()
{
    ScreenFuncs functions = {};
    functions.InitScreen = InitScreen;
    functions.WaitVSync = WaitVSync;
    functions.GetScreenSize = GetScreenSize;
    return functions;
}

const ScreenFuncs screen_functions = MakeScreenFunctions();

void GetSystemInfo(CoreSystemInfo* info)
{
    info->type = CORE_ANY;
    // Surfaces that insist on video memory but belong to no layer get ordinary memory, and a
    // graphics driver may draw on all of them.
    info->caps = static_cast<CoreSystemCapabilities>(CSCAPS_SYSMEM_EXTERNAL | CSCAPS_ACCELERATION);
    std::snprintf(info->name, DFB_CORE_SYSTEM_INFO_NAME_LENGTH, "Screen file");
    std::snprintf(info->vendor, DFB_CORE_SYSTEM_INFO_VENDOR_LENGTH, "Kestrin");
    std::snprintf(info->license, DFB_CORE_SYSTEM_INFO_LICENSE_LENGTH, "MIT");
}

DFBResult Initialize(CoreDFB* core, void** data)
{
    const std::string path =
        dfb_config->fb_device != nullptr ? dfb_config->fb_device : DefaultScreenFile();
    const int width = dfb_config->mode.width > 0 ? dfb_config->mode.width : default_width;
    const int height = dfb_config->mode.height > 0 ? dfb_config->mode.height : default_height;

    auto system = std::make_unique<ScreenSystem>();
    std::string error;
    system->memory = ScreenMemory::Create(path, static_cast<std::uint32_t>(width),
                                          static_cast<std::uint32_t>(height), error);
    if (system->memory == nullptr) {
        D_ERROR("Kestrin/Screen: %s\n", error.c_str());
        return DFB_INIT;
    }

    CoreScreen* screen = dfb_screens_register(nullptr, system->memory.get(), &screen_functions);
    for (std::uint32_t id = 0; id < screen_layer_count; id++) {
        system->layers[id] = std::make_unique<ScreenLayer>(*system->memory, id);
        dfb_layers_register(screen, system->layers[id].get(), &ScreenLayer::functions);
    }

    const DFBResult result =
        dfb_surface_pool_initialize2(core, &screen_pool_functions, system.get(), &system->pool);
    if (result != DFB_OK)
        return result;

    the_system = system.release();
    *data = the_system;
    return DFB_OK;
}

// The screen belongs to one process; a second one has its own file.
DFBResult Join(CoreDFB*, void**)
{
    return DFB_UNSUPPORTED;
}

DFBResult Shutdown(bool)
{
    dfb_surface_pool_destroy(the_system->pool);
    delete the_system;
    the_system = nullptr;
    return DFB_OK;
}

DFBResult Leave(bool)
{
    return DFB_OK;
}

DFBResult NothingToDo()
{
    return DFB_OK;
}

VideoMode* NoMode()
{
    return nullptr;
}

bool InputFilter(CoreInputDevice*, DFBInputEvent*)
{
    return false;
}

volatile void* MapMMIO(unsigned, int)
{
    return nullptr;
}

void UnmapMMIO(volatile void*, int) {}

int GetAccelerator()
{
    return -1;
}

unsigned long VideoMemoryPhysical(unsigned offset)
{
    return the_system->memory->Physical(offset);
}

void* VideoMemoryVirtual(unsigned offset)
{
    return the_system->memory->Address(offset);
}

unsigned VideoRamLength()
{
    return static_cast<unsigned>(the_system->memory->Size());
}

unsigned long AuxMemoryPhysical(unsigned)
{
    return 0;
}

void* AuxMemoryVirtual(unsigned)
{
    return nullptr;
}

unsigned AuxRamLength()
{
    return 0;
}

void GetBusID(int*, int*, int*) {}

void GetDeviceID(unsigned*, unsigned*) {}

int SurfaceDataSize()
{
    return 0;
}

void SurfaceDataIgnored(CoreSurface*, void*) {}

CoreSystemFuncs MakeSystemFunctions()
{
    CoreSystemFuncs functions = {};
    functions.GetSystemInfo = GetSystemInfo;
    functions.Initialize = Initialize;
    functions.Join = Join;
    functions.Shutdown = Shutdown;
    functions.Leave = Leave;
    functions.Suspend = NothingToDo;
    functions.Resume = NothingToDo;
    functions.GetModes = NoMode;
    functions.GetCurrentMode = NoMode;
    functions.ThreadInit = NothingToDo;
    functions.InputFilter = InputFilter;
    functions.MapMMIO = MapMMIO;
    functions.UnmapMMIO = UnmapMMIO;
    functions.GetAccelerator = GetAccelerator;
    functions.VideoMemoryPhysical = VideoMemoryPhysical;
    functions.VideoMemoryVirtual = VideoMemoryVirtual;
    functions.VideoRamLength = VideoRamLength;
    functions.AuxMemoryPhysical = AuxMemoryPhysical;
    functions.AuxMemoryVirtual = AuxMemoryVirtual;
    functions.AuxRamLength = AuxRamLength;
    functions.GetBusID = GetBusID;
    functions.GetDeviceID = GetDeviceID;
    functions.SurfaceDataSize = SurfaceDataSize;
    functions.SurfaceDataInit = SurfaceDataIgnored;
    functions.SurfaceDataDestroy = SurfaceDataIgnored;
    return functions;
}

/** Holds the thread that runs it for good, once it has told so. */
void StopThread(void* stopped, void*)
{
    sem_post(static_cast<sem_t*>(stopped));
    for (;;)
        pause();
}

// A program that ends without shutting DirectFB down leaves its message thread behind, which may
// still be freeing surfaces while the libraries destroy what it works with. This module goes before
// the libraries do: it lets the thread finish its messages, and stops it.
__attribute__((destructor)) void StopMessagesAtExit()
{
    if (the_system == nullptr)
        return;
    static sem_t stopped; // the thread outlives this function
    sem_init(&stopped, 0, 0);
    if (Core_AsyncCall(StopThread, &stopped, nullptr) != DFB_OK)
        return;
    // A message that hangs must not keep the program from ending.
    timespec deadline = {};
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += 1;
    while (sem_timedwait(&stopped, &deadline) != 0 && errno == EINTR) {
    }
}

// DirectFB loads every module of the directory and asks later; the module announces itself.
__attribute__((constructor)) void RegisterSystem()
{
    static CoreSystemFuncs functions = MakeSystemFunctions();
    direct_modules_register(&dfb_core_systems, DFB_CORE_SYSTEM_ABI_VERSION, "kestrin_screen",
                            &functions);
}

} // namespace
} // namespace kestrin_display

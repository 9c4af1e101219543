/** The engine on a display of its own, for a process with one test case. */
#pragma once

#include "display_fixture.h"
#include "vrel_kestrin_graphic.h"

namespace kestrin_test {

/** A member of a fixture, before whatever draws. Taken down last. */
class StartedEngine
{
public:
    explicit StartedEngine(int width = 64, int height = 48,
                           zelxxx::ColorMode mode = zelxxx::Color32Bit)
        : display(width, height)
    {
        zelxxx::zelInitialize(static_cast<zelxxx::UInt32>(width),
                              static_cast<zelxxx::UInt32>(height),
                              static_cast<zelxxx::UInt8>(mode));
    }
    ~StartedEngine() { zelxxx::zelUninitialize(); }
    StartedEngine(const StartedEngine&) = delete;
    StartedEngine& operator=(const StartedEngine&) = delete;

    TestDisplay display;
};

} // namespace kestrin_test

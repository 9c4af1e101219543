/**
 * The primitives' assertions are part of what they promise and hold in release builds too. Include
 * this last: it brings assert to life for the rest of the source file.
 */
#pragma once

#undef NDEBUG
#include <cassert>

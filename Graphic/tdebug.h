/** Reporting: failed DirectFB calls, and leveled messages to the platform's debug log. */
#pragma once

#include "vrel_debug.h"
#include "vrel_kestrin_graphic.h"

#include <directfb.h>

namespace zelxxx {

/** Message levels. */
constexpr int kLogFailure = 1;
constexpr int kLogInformation = 4;

/**
 * Writes where a DirectFB call failed to standard error and hands its text to DirectFBErrorFatal,
 * which normally ends the process.
 */
[[gnu::cold]] void ReportDfbFailure(const char* file, int line, const char* call, DFBResult result);

} // namespace zelxxx

/**
 * Runs a DirectFB call and reports its failure under the call's own text. Break a line in the call
 * only after a comma: the text shows every other break as a blank.
 */
#define DFBCHECK(...)                                                                              \
    do {                                                                                           \
        const DFBResult dfb_result = __VA_ARGS__;                                                  \
        if (dfb_result != DFB_OK)                                                                  \
            zelxxx::ReportDfbFailure(__FILE__, __LINE__, #__VA_ARGS__, dfb_result);                \
    } while (0)

/** Logs a printf-style message. Below the threshold its arguments are not evaluated. */
#define KESTRIN_LOG(level, ...)                                                                    \
    do {                                                                                           \
        if (__vrel_debug_min >= (level))                                                           \
            vrel_debug_log(zelxxx::kestrin_debug, level, __FILE__, __func__, __LINE__,             \
                           __VA_ARGS__);                                                           \
    } while (0)

/**
 * The platform's debug log.
 *
 * The library writes its leveled messages through these three names and nothing else, so that a
 * vendor can link the log service of the target instead of this one: configure with
 * -DKESTRIN_DEBUG_LIBRARY=<library> to name it. This implementation writes to standard error.
 *
 * All calls come from one thread.
 */
#pragma once

#define VREL_DEBUG_EXPORT __attribute__((visibility("default")))

extern "C" {

/** A named source of messages. Opaque to callers; never freed. */
struct vrel_debug_category;

/**
 * The most detailed level that is written: a message of level L appears when this is at least L.
 * 0 writes nothing, 1 failures, 4 information. Starts as the number in the environment variable
 * VREL_DEBUG, 0 without it. Callers test it before they call vrel_debug_log.
 */
VREL_DEBUG_EXPORT extern int __vrel_debug_min;

/**
 * Makes a category.
 *
 * @param name         shown with each message; copied
 * @param flags        0; other values are reserved
 * @param description  one line for people; this log does not show it
 * @return the category, which lives until the process ends
 */
VREL_DEBUG_EXPORT vrel_debug_category* vrel_debug_category_new(const char* name, unsigned flags,
                                                               const char* description);

/**
 * Writes one message, whatever the threshold says.
 *
 * @param category  where the message belongs; may be null
 * @param level     1 (failure) to 4 (information) and above
 * @param file      source file, function and line of the caller
 * @param format    printf format of the message, followed by its arguments
 */
VREL_DEBUG_EXPORT void vrel_debug_log(vrel_debug_category* category, int level, const char* file,
                                      const char* function, int line, const char* format, ...)
    __attribute__((format(printf, 6, 7)));

} // extern "C"

/**
 * Starts a DirectFB program on a screen file.
 *
 * Call UseScreenFile before DirectFBInit, from the thread that calls it and before other threads
 * run: it changes the environment.
 */
#pragma once

#include "screen_reader.h"

#include <string>

namespace kestrin_display {

/** What became of a request to use a screen file. */
enum class SetupResult
{
    Applied,           ///< DFBARGS now leads DirectFB to the screen file
    KeptUserArguments, ///< DFBARGS was set before and stays: the user chose a display
};

/**
 * Lets DirectFB draw on a screen file, through the environment variable DFBARGS.
 *
 * A DFBARGS that is already there is the user's wish and is left alone.
 *
 * @param screen_file  where the file is made; its directory exists and its name has no comma
 * @param width        of the screen in pixels, 1 to screen_side_limit
 * @param height       likewise
 * @throws std::invalid_argument for a comma, which DirectFB takes for the end of an option, and for
 *         sizes out of range
 * @throws std::runtime_error if the display module cannot be found or nothing can be written beside
 *         the screen file: DirectFB itself does not always survive a system that fails to start
 */
SetupResult UseScreenFile(const std::string& screen_file, int width, int height);

/**
 * The value UseScreenFile gives DFBARGS, for programs that are started with it. Throws likewise,
 * but does not look at the screen file's directory.
 *
 * It ends with the options in the environment variable KESTRIN_DISPLAY_OPTIONS, separated by commas
 * as DirectFB takes them: `no-hardware` leaves all drawing to DirectFB's own software renderer.
 */
std::string ScreenFileArguments(const std::string& screen_file, int width, int height);

/**
 * The directory DirectFB is to load modules from.
 *
 * Looked for in the directories above the running program: `directfb-modules` in a build tree,
 * `<library directory>/kestrin/directfb-modules` in an installation; at last where the library
 * itself was to be installed.
 *
 * @throws std::runtime_error if none holds the display module
 */
std::string FindModuleDirectory();

} // namespace kestrin_display

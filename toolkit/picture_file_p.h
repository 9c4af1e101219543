/** Picture files, unpacked into memory. */
#pragma once

#include "vrel_kestrin_datatype.h"

#include <cstddef>
#include <memory>
#include <string>

namespace zelxxx {

/** What a file is read up to, so that no mistaken name fills the memory. */
constexpr std::size_t kMostFileBytes = std::size_t{1} << 26;
/** The most pixels in all frames, whatever a file's header says. */
constexpr std::size_t kMostPixels = std::size_t{1} << 26;
constexpr std::size_t kMostSide = INT16_MAX;

/** A whole file in memory. */
struct FileContent
{
    std::unique_ptr<UInt8[]> bytes;
    std::size_t size = 0;
};

/** An unpacked picture: rows without padding, frame after frame. */
struct PictureFile
{
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t frames = 0;
    bool indexed = false;            /**< a pixel is a byte, or else R, G, B and opacity */
    std::unique_ptr<UInt8[]> pixels; /**< null for no picture */

    std::size_t FramePixels() const { return width * height; }
};

// Each returns what is wrong, without the file's name, or an empty text.

/** Reads a regular file of at most kMostFileBytes. */
std::string ReadWholeFile(const char* name, FileContent* file);
/** Unpacks a file of any of the three kinds. */
std::string UnpackPicture(const FileContent& file, PictureFile* picture);

} // namespace zelxxx

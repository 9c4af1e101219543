/**
 * A small pixel buffer for tests of the drawing primitives, whose colours are characters.
 *
 *     DlaSketch sketch(5, 2);               // DLA_Init has been called for it
 *     DLA_Line(0, 0, 4, 1, 1, '*');
 *     EXPECT_THAT(sketch.Rows(), ElementsAre("**...",
 *                                            "..***"));
 *
 * Words before and behind the buffer are looked at when it goes.
 */
#pragma once

#include "DlaUtils.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin_test {

class DlaSketch
{
public:
    DlaSketch(int width, int height)
        : _width(static_cast<std::size_t>(width)), _height(static_cast<std::size_t>(height)),
          _words(_width * _height + 2 * kGuard, kGuardWord)
    {
        std::fill(Begin(), End(), '.');
        EXPECT_TRUE(DLA_Init(&*Begin(), static_cast<U16BIT>(width), static_cast<U16BIT>(height)));
    }
    ~DlaSketch()
    {
        const auto is_guard = [](U32BIT word) { return word == kGuardWord; };
        EXPECT_TRUE(std::all_of(_words.begin(), Begin(), is_guard)) << "written before the buffer";
        EXPECT_TRUE(std::all_of(End(), _words.end(), is_guard)) << "written behind the buffer";
        dla_info = DLA_INFO();
    }
    DlaSketch(const DlaSketch&) = delete;
    DlaSketch& operator=(const DlaSketch&) = delete;

    std::vector<std::string> Rows() const
    {
        std::vector<std::string> rows;
        for (auto row = Begin(); row != End(); row += static_cast<std::ptrdiff_t>(_width)) {
            rows.emplace_back(_width, ' ');
            std::transform(row, row + static_cast<std::ptrdiff_t>(_width), rows.back().begin(),
                           [](U32BIT word) { return static_cast<char>(word); });
        }
        return rows;
    }
    char At(int x, int y) const
    {
        return static_cast<char>(*(Begin() + y * static_cast<std::ptrdiff_t>(_width) + x));
    }
    /** How many pixels have a colour. */
    std::ptrdiff_t Count(char colour) const
    {
        return std::count(Begin(), End(), static_cast<U32BIT>(colour));
    }
    bool IsBlank() const { return Count('.') == End() - Begin(); }

private:
    static constexpr std::size_t kGuard = 256;
    static constexpr U32BIT kGuardWord = 0xfee1dead;

    std::vector<U32BIT>::iterator Begin() { return _words.begin() + kGuard; }
    std::vector<U32BIT>::iterator End() { return _words.end() - kGuard; }
    std::vector<U32BIT>::const_iterator Begin() const { return _words.begin() + kGuard; }
    std::vector<U32BIT>::const_iterator End() const { return _words.end() - kGuard; }

    std::size_t _width;
    std::size_t _height;
    std::vector<U32BIT> _words;
};

/** The rows with every character but one replaced by the background. */
inline std::vector<std::string> Only(char colour, std::vector<std::string> rows)
{
    for (std::string& row : rows)
        std::replace_if(
            row.begin(), row.end(), [=](char c) { return c != colour; }, '.');
    return rows;
}

} // namespace kestrin_test

#include "picture_compare.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace kestrin_test {

using kestrin_display::ArgbImage;

namespace {

constexpr int kMapColumns = 64;
constexpr int kMapRows = 24;
constexpr int kListedPixels = 5;

struct Difference
{
    int x, y;
};

std::vector<Difference> FindDifferences(const ArgbImage& a, const ArgbImage& b)
{
    std::vector<Difference> found;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x) {
            if (a.At(x, y) != b.At(x, y))
                found.push_back({x, y});
        }
    }
    return found;
}

std::string Pixel(const ArgbImage& image, int x, int y)
{
    char text[16];
    std::snprintf(text, sizeof text, "%08x", image.At(x, y));
    return text;
}

std::string Point(int x, int y)
{
    return "(" + std::to_string(x) + ", " + std::to_string(y) + ")";
}

std::string Map(const ArgbImage& image, const std::vector<Difference>& differences)
{
    const int columns = std::min(kMapColumns, image.width);
    const int rows = std::min(kMapRows, image.height);
    std::vector<std::string> map(static_cast<std::size_t>(rows),
                                 std::string(static_cast<std::size_t>(columns), '.'));
    for (const Difference& at : differences) {
        const auto row = static_cast<std::size_t>(at.y * rows / image.height);
        map[row][static_cast<std::size_t>(at.x * columns / image.width)] = '#';
    }
    std::string text;
    for (const std::string& row : map)
        text += "\n    " + row;
    return text;
}

} // namespace

testing::AssertionResult SamePicture(const ArgbImage& actual, const ArgbImage& expected)
{
    if (actual.width != expected.width || actual.height != expected.height) {
        return testing::AssertionFailure()
               << "sizes differ: " << actual.width << " x " << actual.height << ", expected "
               << expected.width << " x " << expected.height;
    }
    const std::vector<Difference> found = FindDifferences(actual, expected);
    if (found.empty())
        return testing::AssertionSuccess();

    int left = actual.width;
    int right = 0;
    for (const Difference& at : found) {
        left = std::min(left, at.x);
        right = std::max(right, at.x);
    }
    auto result = testing::AssertionFailure()
                  << found.size() << " pixels differ, from " << Point(left, found.front().y)
                  << " to " << Point(right, found.back().y) << ":";
    for (std::size_t i = 0; i < found.size() && i < kListedPixels; ++i) {
        const Difference at = found[i];
        result << "\n    " << Point(at.x, at.y) << " is " << Pixel(actual, at.x, at.y)
               << ", expected " << Pixel(expected, at.x, at.y);
    }
    return result << Map(actual, found);
}

testing::AssertionResult AreaHasColor(const ArgbImage& image, int x1, int y1, int x2, int y2,
                                      std::uint32_t color)
{
    for (int y = y1; y < y2; ++y) {
        for (int x = x1; x < x2; ++x) {
            if (image.At(x, y) != color) {
                char text[16];
                std::snprintf(text, sizeof text, "%08x", color);
                return testing::AssertionFailure()
                       << Point(x, y) << " is " << Pixel(image, x, y) << ", expected " << text;
            }
        }
    }
    return testing::AssertionSuccess();
}

} // namespace kestrin_test

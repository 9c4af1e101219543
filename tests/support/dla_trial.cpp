#include "dla_trial.h"

#include "picture_compare.h"

namespace kestrin_test {

using kestrin_display::ArgbImage;

DlaCanvas::DlaCanvas(int width, int height, std::uint32_t background)
    : _width(width), _height(height),
      _words(2 * kGuardWords + static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
             background)
{
    std::fill_n(_words.begin(), kGuardWords, kGuard);
    std::fill_n(_words.rbegin(), kGuardWords, kGuard);
    EXPECT_TRUE(DLA_Init(_words.data() + kGuardWords, static_cast<U16BIT>(width),
                         static_cast<U16BIT>(height)));
}

testing::AssertionResult DlaCanvas::GuardsAreIntact() const
{
    const auto intact = [](std::uint32_t word) { return word == kGuard; };
    if (!std::all_of(_words.begin(), _words.begin() + kGuardWords, intact))
        return testing::AssertionFailure() << "words before the buffer were written";
    if (!std::all_of(_words.rbegin(), _words.rbegin() + kGuardWords, intact))
        return testing::AssertionFailure() << "words behind the buffer were written";
    return testing::AssertionSuccess();
}

testing::AssertionResult DlaCanvas::Shows(const ArgbImage& expected) const
{
    const testing::AssertionResult guards = GuardsAreIntact();
    if (!guards)
        return guards;
    if (expected.width == _width && expected.height == _height &&
        std::equal(expected.pixels.begin(), expected.pixels.end(), Begin()))
        return testing::AssertionSuccess();
    return SamePicture(Picture(), expected);
}

ArgbImage DlaCanvas::Picture() const
{
    ArgbImage picture(_width, _height);
    std::copy_n(Begin(), picture.pixels.size(), picture.pixels.begin());
    return picture;
}

S_POINT DlaArguments::Point()
{
    S_POINT point;
    point.x = X();
    point.y = Y();
    return point;
}

std::int16_t DlaArguments::Coordinate(int size)
{
    Place place = _place;
    if (place == Mixed)
        place = static_cast<Place>(_random.Between(Inside, AtEnds));
    std::int64_t value = 0;
    switch (place) {
    case Inside:
        value = _random.Between(0, size - 1);
        break;
    case AtEdges:
        value = _random.Between(-3, 3) + (_random.Chance(50) ? 0 : size);
        break;
    case Across:
        value = _random.Between(-size - 20, 2 * size + 20);
        break;
    case FarOut:
        value = _random.Between(INT16_MIN, INT16_MAX);
        break;
    default:
        value = _random.Chance(50) ? INT16_MIN + _random.Between(0, 40)
                                   : INT16_MAX - _random.Between(0, 40);
    }
    return static_cast<std::int16_t>(value);
}

std::uint16_t DlaArguments::LineWidth()
{
    if (_random.Chance(25))
        return 1;
    return static_cast<std::uint16_t>(_random.Chance(97) ? _random.Between(0, 40)
                                                         : _random.Between(0, UINT16_MAX));
}

std::uint16_t DlaArguments::Size(int size)
{
    if (_random.Chance(10))
        return static_cast<std::uint16_t>(_random.Between(0, 4));
    if (_random.Chance(3))
        return static_cast<std::uint16_t>(_random.Between(0, 4000));
    return static_cast<std::uint16_t>(_random.Between(1, 2 * size + 10));
}

int DlaArguments::BufferSize(SeededRandom& random, int largest)
{
    const std::int64_t kind = random.Between(1, 100);
    if (kind <= 25)
        return static_cast<int>(random.Between(1, std::min(8, largest)));
    return static_cast<int>(random.Between(1, kind <= 90 ? std::min(60, largest) : largest));
}

} // namespace kestrin_test

#include "dirty.h"

#include "dirty_rects.h"
#include "seeded_random.h"

#include <algorithm>
#include <set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::Delivered;
using kestrin_test::SeededRandom;
using testing::ElementsAre;
using testing::IsEmpty;

namespace zelxxx {
namespace {

std::vector<const DirtyRow*> Rows(const DirtyRow* row)
{
    std::vector<const DirtyRow*> rows;
    for (; row; row = row->NextRow)
        rows.push_back(row);
    return rows;
}

std::vector<int> Spans(const DirtyRow* row)
{
    return std::vector<int>(row->SpanX, row->SpanX + row->SpanCount);
}

constexpr DirtyRect kWhole = {0, 0, 100, 50};
constexpr DirtyRect kEverything = {-32768, -32768, 32767, 32767};

class Dirty : public testing::Test
{
protected:
    std::vector<DirtyRect> All() const { return Delivered(manager, kWhole); }
    /** Dirties 23 separate ranges of the rows from y1 to y2. */
    void AddCrowd(Int16 y1, Int16 y2)
    {
        for (int i = 0; i < 23; ++i)
            manager.Add({static_cast<Int16>(4 * i + 2), y1, static_cast<Int16>(4 * i + 4), y2});
    }

    DirtyManager manager = {100, 50};
};

TEST_F(Dirty, NewManagerIsClean)
{
    EXPECT_THAT(All(), IsEmpty());
    EXPECT_THAT(Delivered(manager, {10, 10, 20, 20}), IsEmpty());
    EXPECT_FALSE(manager.Check(kWhole, kWhole));
    EXPECT_FALSE(manager.Check({99, 49, 100, 50}, kEverything));
    ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 1U);
    EXPECT_EQ(manager.GetFirstRow()->RowHeight, 50);
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 100));
    EXPECT_EQ(manager.GetFirstFreeRow(), nullptr);
}

TEST_F(Dirty, WholeAreaIsOneBandWithAnEmptyCleanSpan)
{
    manager.Add(kWhole);
    ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 1U);
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(100, 100));
    EXPECT_THAT(All(), ElementsAre(kWhole));
}

TEST_F(Dirty, RectangleInTheMiddleGivesThreeBands)
{
    manager.Add({10, 5, 20, 15});
    const auto rows = Rows(manager.GetFirstRow());
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0]->RowHeight, 5);
    EXPECT_EQ(rows[1]->RowHeight, 10);
    EXPECT_EQ(rows[2]->RowHeight, 35);
    EXPECT_THAT(Spans(rows[0]), ElementsAre(0, 100));
    EXPECT_THAT(Spans(rows[1]), ElementsAre(0, 10, 20, 100));
    EXPECT_THAT(Spans(rows[2]), ElementsAre(0, 100));
    EXPECT_THAT(All(), ElementsAre(DirtyRect{10, 5, 20, 15}));
}

TEST_F(Dirty, RectangleAtTheTopOrBottomEdgeGivesTwoBands)
{
    manager.Add({0, 0, 10, 10});
    ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 2U);
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(10, 100));
    manager.Add({90, 10, 100, 50});
    ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 2U);
    EXPECT_THAT(Spans(Rows(manager.GetFirstRow())[1]), ElementsAre(0, 90, 100, 100));
    EXPECT_THAT(All(), ElementsAre(DirtyRect{0, 0, 10, 10}, DirtyRect{90, 10, 100, 50}));
}

TEST_F(Dirty, EmptyAndOutsideRectanglesChangeNothing)
{
    for (const DirtyRect& rect : std::vector<DirtyRect>{{10, 10, 10, 20},
                                                        {10, 10, 20, 10},
                                                        {20, 10, 10, 20},
                                                        {10, 20, 20, 10},
                                                        {100, 0, 120, 50},
                                                        {-20, 0, 0, 50},
                                                        {0, 50, 100, 60},
                                                        {0, -10, 100, 0},
                                                        {-5, -5, -1, -1}}) {
        manager.Add(rect);
        ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 1U) << testing::PrintToString(rect);
        ASSERT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 100));
    }
}

TEST_F(Dirty, RectangleIsCutAtTheArea)
{
    manager.Add(kEverything);
    EXPECT_THAT(Delivered(manager, {0, 0, 100, 50}), ElementsAre(kWhole));
    manager.Clear();
    manager.Add({-10, -10, 5, 5});
    manager.Add({95, 45, 200, 200});
    EXPECT_THAT(All(), ElementsAre(DirtyRect{0, 0, 5, 5}, DirtyRect{95, 45, 100, 50}));
}

TEST_F(Dirty, RectanglesThatMeetBecomeOneSpan)
{
    manager.Add({10, 0, 20, 50});
    manager.Add({20, 0, 30, 50});
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 10, 30, 100));
    manager.Add({5, 0, 40, 50});
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 5, 40, 100));
}

// From the other side an empty clean span stays between the two.
TEST_F(Dirty, RectanglesThatMeetFromTheRightKeepAnEmptyCleanSpan)
{
    manager.Add({20, 0, 30, 50});
    manager.Add({10, 0, 20, 50});
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 10, 20, 20, 30, 100));
    EXPECT_THAT(All(), ElementsAre(DirtyRect{10, 0, 20, 50}, DirtyRect{20, 0, 30, 50}));
}

TEST_F(Dirty, BandsAreNeverJoined)
{
    manager.Add({10, 5, 20, 15});
    manager.Add({10, 15, 20, 25});
    EXPECT_THAT(All(), ElementsAre(DirtyRect{10, 5, 20, 15}, DirtyRect{10, 15, 20, 25}));
    manager.Add(kWhole);
    EXPECT_EQ(All().size(), 4U);
}

TEST_F(Dirty, TwentyThreeRangesFitAndTheTwentyFourthFillsTheBand)
{
    AddCrowd(10, 20);
    const auto rows = Rows(manager.GetFirstRow());
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1]->SpanCount, 48);
    EXPECT_EQ(All().size(), 23U);

    manager.Add({96, 10, 98, 20});
    EXPECT_EQ(rows[1]->SpanCount, 0);
    EXPECT_THAT(All(), ElementsAre(DirtyRect{0, 10, 100, 20}));
}

TEST_F(Dirty, OverflowOfOneBandLeavesTheOthersTheirDetail)
{
    AddCrowd(0, 50);
    manager.Add({96, 10, 98, 20});
    const auto rows = Rows(manager.GetFirstRow());
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0]->SpanCount, 48);
    EXPECT_EQ(rows[1]->SpanCount, 0);
    EXPECT_EQ(rows[2]->SpanCount, 48);
    EXPECT_EQ(All().size(), 23U + 1U + 23U);
}

TEST_F(Dirty, AFullBandStillTakesRectanglesThatNeedNoMoreBoundaries)
{
    AddCrowd(0, 50);
    manager.Add({0, 0, 3, 50}); // grows a dirty range to the left edge
    EXPECT_EQ(manager.GetFirstRow()->SpanCount, 46);
    manager.Add({4, 0, 7, 50}); // joins it with the next
    EXPECT_EQ(manager.GetFirstRow()->SpanCount, 44);
    EXPECT_EQ(All().front(), (DirtyRect{0, 0, 8, 50}));
}

TEST_F(Dirty, AWhollyDirtyBandIsNotSplit)
{
    AddCrowd(0, 50);
    manager.Add({96, 0, 98, 50});
    ASSERT_EQ(manager.GetFirstRow()->SpanCount, 0);
    manager.Add({10, 10, 20, 20});
    EXPECT_EQ(Rows(manager.GetFirstRow()).size(), 1U);
}

TEST_F(Dirty, FilledDeliversTheBoundOnce)
{
    manager.Add({10, 5, 20, 15});
    manager.Fill();
    EXPECT_THAT(All(), ElementsAre(kWhole));
    const DirtyRect elsewhere = {-30, 60, 7, 1};
    EXPECT_THAT(Delivered(manager, elsewhere), ElementsAre(elsewhere));
}

TEST_F(Dirty, FilledAnswersForEveryOverlap)
{
    manager.Fill();
    EXPECT_TRUE(manager.Check({1, 1, 2, 2}, {0, 0, 100, 50}));
    EXPECT_TRUE(manager.Check({200, 200, 300, 300}, {250, 250, 260, 260}));
    EXPECT_FALSE(manager.Check({0, 0, 10, 10}, {10, 0, 20, 10}));
    EXPECT_FALSE(manager.Check({0, 0, 10, 10}, {0, 10, 10, 20}));
}

TEST_F(Dirty, FilledIgnoresAddUntilCleared)
{
    manager.Fill();
    manager.Add({10, 5, 20, 15});
    EXPECT_EQ(Rows(manager.GetFirstRow()).size(), 1U);
    manager.Clear();
    EXPECT_THAT(All(), IsEmpty());
    EXPECT_FALSE(manager.Check(kWhole, kWhole));
    manager.Add({10, 5, 20, 15});
    EXPECT_THAT(All(), ElementsAre(DirtyRect{10, 5, 20, 15}));
}

TEST_F(Dirty, ClearLeavesOneCleanBandAndKeepsTheRecords)
{
    for (Int16 i = 0; i < 10; ++i)
        manager.Add({i, static_cast<Int16>(4 * i + 2), 50, static_cast<Int16>(4 * i + 4)});
    const std::size_t bands = Rows(manager.GetFirstRow()).size();
    ASSERT_EQ(bands, 21U);
    manager.Clear();
    ASSERT_EQ(Rows(manager.GetFirstRow()).size(), 1U);
    EXPECT_EQ(manager.GetFirstRow()->RowHeight, 50);
    EXPECT_THAT(Spans(manager.GetFirstRow()), ElementsAre(0, 100));
    EXPECT_EQ(Rows(manager.GetFirstFreeRow()).size(), bands - 1);
}

TEST_F(Dirty, ClearAddsToTheRecordsAlreadySpare)
{
    manager.Add({10, 5, 20, 15});
    manager.Clear();
    manager.Add({10, 0, 20, 15});
    EXPECT_EQ(Rows(manager.GetFirstFreeRow()).size(), 1U);
    manager.Clear();
    EXPECT_EQ(Rows(manager.GetFirstFreeRow()).size(), 2U);
}

TEST_F(Dirty, CloneRowTakesASpareRecordFirst)
{
    manager.Add({10, 5, 20, 15});
    const DirtyRow source = *Rows(manager.GetFirstRow())[1];
    manager.Clear();
    const DirtyRow* spare = manager.GetFirstFreeRow();
    DirtyRow* clone = manager.CloneRow(&source);
    EXPECT_EQ(clone, spare);
    EXPECT_EQ(Rows(manager.GetFirstFreeRow()).size(), 1U);
    EXPECT_THAT(Spans(clone), ElementsAre(0, 10, 20, 100));
    delete clone;
}

TEST_F(Dirty, WithoutRecordsNothingIsDirtyUntilClear)
{
    manager.Add(kWhole);
    manager.DeleteRects();
    EXPECT_EQ(manager.GetFirstRow(), nullptr);
    EXPECT_THAT(All(), IsEmpty());
    EXPECT_FALSE(manager.Check(kWhole, kWhole));
    manager.Add(kWhole);
    EXPECT_THAT(All(), IsEmpty());
    EXPECT_TRUE(manager.IsConsistent());

    manager.Clear();
    manager.Add({10, 5, 20, 15});
    EXPECT_THAT(All(), ElementsAre(DirtyRect{10, 5, 20, 15}));
}

TEST_F(Dirty, WithoutRecordsAFilledManagerStillAnswers)
{
    manager.DeleteRects();
    manager.Fill();
    EXPECT_TRUE(manager.Check(kWhole, kWhole));
    EXPECT_THAT(All(), ElementsAre(kWhole));
}

TEST_F(Dirty, CheckLooksAtTheBoundOnly)
{
    manager.Add({10, 5, 20, 15});
    EXPECT_TRUE(manager.Check({0, 0, 100, 50}, {90, 40, 100, 50}));
    EXPECT_FALSE(manager.Check({20, 5, 100, 15}, kWhole));
    EXPECT_FALSE(manager.Check({0, 5, 10, 15}, kWhole));
    EXPECT_FALSE(manager.Check({10, 0, 20, 5}, kWhole));
    EXPECT_FALSE(manager.Check({10, 15, 20, 50}, kWhole));
    EXPECT_TRUE(manager.Check({19, 14, 20, 15}, kWhole));
}

TEST_F(Dirty, CheckNeedsAnOverlapOfBoundAndSearch)
{
    manager.Add(kWhole);
    const DirtyRect bound = {10, 10, 20, 20};
    EXPECT_TRUE(manager.Check(bound, {19, 19, 30, 30}));
    EXPECT_FALSE(manager.Check(bound, {20, 10, 30, 20}));
    EXPECT_FALSE(manager.Check(bound, {0, 10, 10, 20}));
    EXPECT_FALSE(manager.Check(bound, {10, 20, 20, 30}));
    EXPECT_FALSE(manager.Check(bound, {10, 0, 20, 10}));
}

// The interval before the first clean span has no left end.
TEST_F(Dirty, BoundLeftOfZeroIsTouchedAndDeliveredEvenWhenClean)
{
    EXPECT_TRUE(manager.Check({-5, 10, 5, 20}, kEverything));
    EXPECT_TRUE(manager.Check({-10, 10, -5, 20}, kEverything));
    EXPECT_THAT(Delivered(manager, {-5, 10, 5, 20}), ElementsAre(DirtyRect{-5, 10, 0, 20}));
    EXPECT_THAT(Delivered(manager, {-10, 10, -5, 20}), ElementsAre(DirtyRect{-10, 10, -5, 20}));
    EXPECT_FALSE(manager.Check({-5, 50, 5, 60}, kEverything));
    EXPECT_THAT(Delivered(manager, {-5, -20, 5, 0}), IsEmpty());
}

TEST_F(Dirty, OverflownBandHasNoSidesAtAll)
{
    AddCrowd(10, 20);
    manager.Add({96, 10, 98, 20});
    const DirtyRect beyond = {150, 0, 160, 50};
    EXPECT_TRUE(manager.Check(beyond, kEverything));
    EXPECT_THAT(Delivered(manager, beyond), ElementsAre(DirtyRect{150, 10, 160, 20}));
}

TEST(DirtyOfAnotherSize, AnEmptyAreaStaysClean)
{
    DirtyManager manager(0, 0);
    manager.Add(kEverything);
    EXPECT_TRUE(manager.IsConsistent());
    EXPECT_THAT(Delivered(manager, {0, 0, 10, 10}), IsEmpty());
}

TEST(DirtyOfAnotherSize, TheLargestAreaKeepsItsCoordinates)
{
    DirtyManager manager(32767, 32767);
    const DirtyRect corner = {32766, 32766, 32767, 32767};
    manager.Add(corner);
    EXPECT_THAT(Delivered(manager, {0, 0, 32767, 32767}), ElementsAre(corner));
}

/**
 * What must be dirty, pixel by pixel. About crowded rows it knows only what the manager promises: a
 * row may become dirty as a whole once it had room for no more clean spans, and stays so.
 */
class Mask
{
public:
    static constexpr int kMostCleanSpans = 24;

    Mask(int width, int height) : _width(width), _height(height) { Clear(); }

    void Clear()
    {
        _exact.assign(Size(), false);
        _adds.assign(static_cast<std::size_t>(_height), 0);
        _overflown.assign(static_cast<std::size_t>(_height), false);
        _filled = false;
    }
    void Fill() { _filled = true; }

    void Add(const DirtyRect& rect)
    {
        if (_filled)
            return;
        for (int y = 0; y < _height; ++y) {
            bool touched = false;
            for (int x = 0; x < _width; ++x) {
                if (Inside(rect, x, y)) {
                    _exact[At(x, y)] = true;
                    touched = true;
                }
            }
            _adds[static_cast<std::size_t>(y)] += touched;
        }
    }

    /** Compares what was delivered for the whole area, and takes over which rows have overflown. */
    void Match(const std::vector<DirtyRect>& delivered)
    {
        const std::vector<bool> actual = MaskOf(delivered);
        for (int y = 0; y < _height && !_filled; ++y) {
            const auto row = static_cast<std::size_t>(y);
            if (RowIs(actual, y, true) && !RowIs(_exact, y, true)) {
                ASSERT_TRUE(_overflown[row] || _adds[row] >= kMostCleanSpans)
                    << "row " << y << " is full after only " << _adds[row] << " rectangles";
                _overflown[row] = true;
            }
            ASSERT_FALSE(!_overflown[row] && CleanSpans(y) > kMostCleanSpans)
                << "row " << y << " cannot hold its clean spans";
        }
        for (int y = 0; y < _height; ++y) {
            for (int x = 0; x < _width; ++x)
                ASSERT_EQ(actual[At(x, y)], IsDirty(x, y)) << "(" << x << ", " << y << ")";
        }
    }

    /** Compares what was delivered for a bound; parts outside the area are left open. */
    void MatchPart(const std::vector<DirtyRect>& delivered, const DirtyRect& bound) const
    {
        const std::vector<bool> actual = MaskOf(delivered);
        for (int y = 0; y < _height; ++y) {
            for (int x = 0; x < _width; ++x) {
                ASSERT_EQ(actual[At(x, y)], Inside(bound, x, y) && IsDirty(x, y))
                    << "(" << x << ", " << y << ")";
            }
        }
    }

    /** Whether a bound that is not empty and begins in the area's columns touches dirty pixels. */
    bool Touches(const DirtyRect& bound) const
    {
        if (_filled)
            return true;
        for (int y = 0; y < _height; ++y) {
            for (int x = 0; x < _width; ++x) {
                if (Inside(bound, x, y) && IsDirty(x, y))
                    return true;
            }
        }
        return false;
    }

    bool IsDirty(int x, int y) const
    {
        return _filled || _overflown[static_cast<std::size_t>(y)] || _exact[At(x, y)];
    }

    static bool Inside(const DirtyRect& rect, int x, int y)
    {
        return rect.x1 <= x && x < rect.x2 && rect.y1 <= y && y < rect.y2;
    }

private:
    std::size_t Size() const { return static_cast<std::size_t>(_width * _height); }
    std::size_t At(int x, int y) const { return static_cast<std::size_t>(y * _width + x); }

    /** The area's pixels under the rectangles; none may be covered twice. */
    std::vector<bool> MaskOf(const std::vector<DirtyRect>& rects) const
    {
        std::vector<bool> mask(Size(), false);
        for (const DirtyRect& rect : rects) {
            for (int y = std::max<int>(rect.y1, 0); y < std::min<int>(rect.y2, _height); ++y) {
                for (int x = std::max<int>(rect.x1, 0); x < std::min<int>(rect.x2, _width); ++x) {
                    EXPECT_FALSE(mask[At(x, y)]) << "twice (" << x << ", " << y << ")";
                    mask[At(x, y)] = true;
                }
            }
        }
        return mask;
    }

    bool RowIs(const std::vector<bool>& mask, int y, bool dirty) const
    {
        const auto begin = mask.begin() + static_cast<std::ptrdiff_t>(At(0, y));
        return std::all_of(begin, begin + _width, [dirty](bool pixel) { return pixel == dirty; });
    }

    int CleanSpans(int y) const
    {
        int spans = 0;
        for (int x = 0; x < _width; ++x)
            spans += !_exact[At(x, y)] && (x == 0 || _exact[At(x - 1, y)]);
        return spans;
    }

    int _width, _height;
    std::vector<bool> _exact;
    std::vector<int> _adds; /**< rectangles that touched each row since Clear */
    std::vector<bool> _overflown;
    bool _filled = false;
};

/** Band by band from the top, within a band from left to right, and never empty. */
void ExpectOrdered(const std::vector<DirtyRect>& rects)
{
    for (std::size_t i = 0; i < rects.size(); ++i) {
        ASSERT_LT(rects[i].x1, rects[i].x2) << testing::PrintToString(rects[i]);
        ASSERT_LT(rects[i].y1, rects[i].y2) << testing::PrintToString(rects[i]);
        if (i == 0)
            continue;
        const DirtyRect& before = rects[i - 1];
        if (before.y1 == rects[i].y1) {
            ASSERT_EQ(before.y2, rects[i].y2) << "one band, two heights";
            ASSERT_LE(before.x2, rects[i].x1) << "not from left to right";
        } else {
            ASSERT_LE(before.y2, rects[i].y1) << "not from the top";
        }
    }
}

class RandomDirty : public testing::TestWithParam<std::uint32_t>
{
protected:
    static constexpr int kWidth = 120;
    static constexpr int kHeight = 40;

    int Coordinate(int size)
    {
        if (random.Chance(3))
            return random.Chance(50) ? -32768 : 32767;
        return random.Between(-size / 4, size + size / 4);
    }

    DirtyRect Rect()
    {
        const auto x = static_cast<Int16>(Coordinate(kWidth));
        const auto y = static_cast<Int16>(Coordinate(kHeight));
        if (random.Chance(15)) // also inside out
            return {x, y, static_cast<Int16>(Coordinate(kWidth)),
                    static_cast<Int16>(Coordinate(kHeight))};
        const int w = random.Chance(70) ? random.Between(1, 4) : random.Between(0, kWidth);
        const int h = random.Chance(50) ? kHeight : random.Between(0, kHeight);
        return {x, y, static_cast<Int16>(std::min(32767, x + w)),
                static_cast<Int16>(std::min(32767, y + h))};
    }

    void Step()
    {
        const int kind = random.Between(1, 100);
        if (kind <= 97) {
            const DirtyRect rect = Rect();
            manager.Add(rect);
            mask.Add(rect);
        } else if (kind <= 98) {
            manager.Clear();
            mask.Clear();
        } else if (kind <= 99) {
            manager.Fill();
            mask.Fill();
        } else {
            manager.DeleteRects();
            manager.Clear();
            mask.Clear();
        }
    }

    void Compare()
    {
        ASSERT_TRUE(manager.IsConsistent());
        const auto whole = Delivered(manager, {0, 0, kWidth, kHeight});
        ASSERT_NO_FATAL_FAILURE(ExpectOrdered(whole));
        ASSERT_NO_FATAL_FAILURE(mask.Match(whole));

        const DirtyRect bound = Rect();
        if (!manager.MayTouch(bound)) {
            ASSERT_THAT(Delivered(manager, bound), IsEmpty()) << testing::PrintToString(bound);
            ASSERT_FALSE(manager.Check(bound, {0, 0, kWidth, kHeight}))
                << testing::PrintToString(bound);
            ++untouched;
        }
        if (bound.x2 <= bound.x1 || bound.y2 <= bound.y1)
            return;
        const auto part = Delivered(manager, bound);
        ASSERT_NO_FATAL_FAILURE(ExpectOrdered(part));
        ASSERT_NO_FATAL_FAILURE(mask.MatchPart(part, bound));
        for (const DirtyRect& rect : part) {
            ASSERT_TRUE(rect.x1 >= bound.x1 && rect.x2 <= bound.x2 && rect.y1 >= bound.y1 &&
                        rect.y2 <= bound.y2)
                << testing::PrintToString(rect) << " of " << testing::PrintToString(bound);
        }
        if (bound.x1 >= 0 && bound.x1 < kWidth) {
            ASSERT_EQ(manager.Check(bound, bound), mask.Touches(bound))
                << testing::PrintToString(bound);
        }
    }

    SeededRandom random = SeededRandom(GetParam());
    DirtyManager manager = {kWidth, kHeight};
    Mask mask = {kWidth, kHeight};
    int untouched = 0;
};

TEST_P(RandomDirty, AgreesWithAMaskOfPixels)
{
    const int rounds = SeededRandom::Rounds(1500);
    for (int i = 0; i < rounds; ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        Step();
        ASSERT_NO_FATAL_FAILURE(Compare());
    }
    EXPECT_GT(untouched, 0);
}

TEST(DirtyAround, RulesOutWhatLiesBesideAllThatWasAdded)
{
    DirtyManager manager(100, 50);
    const auto may_touch = [&](int x1, int y1, int x2, int y2) {
        return manager.MayTouch({static_cast<Int16>(x1), static_cast<Int16>(y1),
                                 static_cast<Int16>(x2), static_cast<Int16>(y2)});
    };
    EXPECT_FALSE(may_touch(0, 0, 100, 50));
    manager.Add({10, 20, 30, 40});
    EXPECT_TRUE(may_touch(29, 39, 40, 50));
    EXPECT_FALSE(may_touch(30, 20, 40, 40));
    EXPECT_FALSE(may_touch(0, 20, 10, 40));
    EXPECT_FALSE(may_touch(10, 0, 30, 20));
    EXPECT_FALSE(may_touch(10, 40, 30, 50));
    manager.Clear();
    EXPECT_FALSE(may_touch(10, 20, 30, 40));
    manager.Fill();
    EXPECT_TRUE(may_touch(0, 0, 1, 1));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDirty, testing::Values(1U, 2U, 3U, 4U));

TEST(DirtyRecords, AreReusedAfterTheFirstFrames)
{
    SeededRandom random(11);
    DirtyManager manager(1280, 720);
    const auto frame = [&] {
        for (int i = 0; i < 30; ++i) {
            const auto x = static_cast<Int16>(random.Between(0, 1000));
            const auto y = static_cast<Int16>(random.Between(0, 600));
            manager.Add({x, y, static_cast<Int16>(x + 200), static_cast<Int16>(y + 90)});
        }
        manager.Clear();
    };
    const auto records = [&] {
        std::set<const DirtyRow*> all;
        for (const DirtyRow* head : {manager.GetFirstRow(), manager.GetFirstFreeRow()}) {
            for (const DirtyRow* row : Rows(head))
                EXPECT_TRUE(all.insert(row).second) << "a record stands in both lists";
        }
        return all;
    };

    // 30 rectangles cut at most 60 times.
    std::size_t before = 0;
    for (int i = 0; i < 500; ++i) {
        frame();
        const std::size_t now = records().size();
        ASSERT_GE(now, before);
        ASSERT_LE(now, 61U);
        before = now;
    }
    const auto warm = records();
    for (Int16 y = 1; y < 60; ++y)
        manager.Add({0, y, 5, static_cast<Int16>(y + 1)});
    manager.Clear();
    const auto full = records();
    for (int i = 0; i < 500; ++i)
        frame();
    EXPECT_EQ(records(), full);
    EXPECT_TRUE(std::includes(full.begin(), full.end(), warm.begin(), warm.end()));
}

} // namespace
} // namespace zelxxx

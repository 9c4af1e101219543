/**
 * The modifiers' arithmetic against models in 64 bits that are written from the geometry, with
 * every cut to 16 and wrap of 32 bits in its place; and what each kind does to a widget.
 */
#include "held.h"
#include "seeded_random.h"
#include "twidget.h"
#include "vrel_kestrin_anim.h"

#include <cstdlib>
#include <map>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::Held;
using kestrin_test::SeededRandom;

namespace zelxxx {
namespace {

constexpr int kCases = 120000;

using Attributes = std::map<AttrIndex, AttrValue>;

/** The number of 16 bits, signed, with the same low bits. */
std::int64_t Cut16(std::int64_t value)
{
    value = ((value % 65536) + 65536) % 65536;
    return value >= 32768 ? value - 65536 : value;
}

std::int64_t CutUnsigned16(std::int64_t value)
{
    return ((value % 65536) + 65536) % 65536;
}

std::int64_t Wrap32(std::int64_t value)
{
    const std::int64_t range = std::int64_t{1} << 32;
    value = ((value % range) + range) % range;
    return value >= range / 2 ? value - range : value;
}

/** Divides by 256 toward minus infinity. */
std::int64_t Shift8(std::int64_t value)
{
    return value >= 0 ? value / 256 : -((-value + 255) / 256);
}

/** A number of 16 bits: one of the extremes and special values, or any. */
std::int64_t Any16(SeededRandom& random, bool is_signed)
{
    static const std::int64_t special[] = {0,     1,      -1,     2,      255,   256,  257, 1000,
                                           32767, -32768, -32767, 0x8001, 65535, -256, 128};
    const std::int64_t value = random.Chance(40)
                                   ? special[random.Between(0, std::size(special) - 1)]
                               : random.Chance(50) ? random.Between(-400, 400)
                                                   : random.Between(-32768, 65535);
    return is_signed ? Cut16(value) : CutUnsigned16(value);
}

bool IsUnsigned(AttrIndex index)
{
    return index == AttrScaleX || index == AttrScaleY || index == AttrPercentage;
}

/** Gives an object random values in some attributes. */
template <class Object>
Attributes Randomize(Object* object, SeededRandom& random, const std::vector<AttrIndex>& indices)
{
    Attributes values;
    for (const AttrIndex index : indices) {
        values[index] = static_cast<AttrValue>(
            index == AttrBlend ? random.Between(0, 255) : Any16(random, !IsUnsigned(index)));
        object->SetAttribute(index, values[index]);
    }
    return values;
}

const std::vector<AttrIndex> kWidgetAttributes = {AttrPosX,   AttrPosY,    AttrPosZ,    AttrSpanX,
                                                  AttrSpanY,  AttrOriginX, AttrOriginY, AttrScaleX,
                                                  AttrScaleY, AttrBlend};

/** Runs a kind of modifier on random widgets; `model` rewrites the widget's attributes in 64 bits.
 */
template <class Kind, class Model>
void Compare(const std::vector<AttrIndex>& own, Model model)
{
    SeededRandom random;
    const int cases = SeededRandom::Rounds(kCases);
    ZELObjPtr<Kind> modifier(new Kind);
    Held<Widget> widget;
    int changed = 0;
    for (int i = 0; i < cases; ++i) {
        const Attributes m = Randomize(static_cast<IModifier*>(modifier), random, own);
        const Attributes before =
            Randomize(static_cast<IWidget*>(&*widget), random, kWidgetAttributes);
        Attributes expected = before;
        model(m, expected);
        modifier->Modify(&*widget);
        for (const auto& [index, value] : expected)
            ASSERT_EQ(widget->GetAttribute(index), value)
                << "attribute " << index << " in case " << i;
        changed += expected != before;
    }
    EXPECT_GT(changed, cases / 50);
}

AttrValue Blend8(std::int64_t blend)
{
    return static_cast<AttrValue>(((blend % 256) + 256) % 256);
}

TEST(TranslateModel, EqualsItsArithmetic)
{
    Compare<TranslateModifier>(
        {AttrPosX, AttrPosY, AttrPosZ}, [](const Attributes& m, Attributes& w) {
            for (const AttrIndex index : {AttrPosX, AttrPosY, AttrPosZ})
                w[index] = static_cast<AttrValue>(Cut16(std::int64_t{w[index]} + m.at(index)));
        });
}

TEST(MoveToModel, EqualsItsArithmetic)
{
    Compare<MoveToModifier>(
        {AttrPosX, AttrPosY, AttrPercentage}, [](const Attributes& m, Attributes& w) {
            for (const AttrIndex index : {AttrPosX, AttrPosY}) {
                const std::int64_t way = std::int64_t{m.at(index)} - w[index];
                const std::int64_t part = m.at(AttrPercentage);
                w[index] = static_cast<AttrValue>(
                    Cut16(w[index] + (part == 256 ? way : Shift8(Wrap32(part * way)))));
            }
        });
}

TEST(PerspectiveModel, EqualsItsArithmetic)
{
    const auto model = [](const Attributes& m, Attributes& w) {
        const std::int64_t focus = m.at(AttrFocus);
        const std::int64_t distance = focus - Cut16(std::int64_t{w[AttrPosZ]} - m.at(AttrPosZ));
        const bool scales = m.at(AttrScaleX) != 0 && m.at(AttrScaleY) != 0;
        for (const AttrIndex index : {AttrPosX, AttrPosY}) {
            const std::int64_t eye = m.at(index);
            w[index] = static_cast<AttrValue>(
                distance == 0 ? eye : Cut16(eye + Cut16(w[index] - eye) * focus / distance));
        }
        for (const AttrIndex index : {AttrScaleX, AttrScaleY}) {
            if (distance == 0 || !scales)
                continue;
            std::int64_t scale = focus * w[index] / distance;
            if (m.at(index) != 256)
                scale = Shift8(Wrap32(scale * m.at(index)));
            w[index] = static_cast<AttrValue>(CutUnsigned16(scale));
        }
    };
    Compare<PerspectiveModifier>({AttrPosX, AttrPosY, AttrPosZ, AttrScaleX, AttrScaleY, AttrFocus},
                                 model);
}

TEST(SpaceScaleModel, EqualsItsArithmetic)
{
    struct Axis
    {
        AttrIndex pos, span, origin, scale;
    };
    const auto model = [](const Attributes& m, Attributes& w) {
        for (const Axis& axis : {Axis{AttrPosX, AttrSpanX, AttrOriginX, AttrScaleX},
                                 Axis{AttrPosY, AttrSpanY, AttrOriginY, AttrScaleY}}) {
            const std::int64_t start = m.at(axis.pos);
            const std::int64_t span = m.at(axis.span);
            const std::int64_t origin = m.at(axis.origin);
            const std::int64_t scale = Cut16(m.at(axis.scale));
            if (span == 0)
                continue;
            const std::int64_t end = Cut16(start + span);
            std::int64_t a = start;
            std::int64_t b = end;
            if (m.at(axis.scale) != 256) {
                a = Cut16(start + origin - Shift8(origin * scale));
                b = Cut16(a + Shift8(scale * span));
            }
            const std::int64_t at = w[axis.pos];
            std::int64_t to = at + b - end;
            if (at <= start)
                to = at + a - start;
            else if (at < end)
                to = a + Wrap32((b - a) * (at - start)) / (end - start);
            w[axis.pos] = static_cast<AttrValue>(Cut16(to));
        }
    };
    Compare<SpaceScaleModifier>({AttrPosX, AttrPosY, AttrSpanX, AttrSpanY, AttrOriginX, AttrOriginY,
                                 AttrScaleX, AttrScaleY},
                                model);
}

TEST(FadingModel, EqualsItsArithmetic)
{
    const auto model = [](const Attributes& m, Attributes& w) {
        std::int64_t away[2];
        const AttrIndex pos[] = {AttrPosX, AttrPosY};
        const AttrIndex span[] = {AttrSpanX, AttrSpanY};
        for (int i = 0; i < 2; ++i)
            away[i] = Cut16(std::llabs(Cut16(std::int64_t{w[pos[i]]} - m.at(pos[i]))));
        if (m.at(AttrSpanX) < away[0] || m.at(AttrSpanY) < away[1])
            return;
        std::int64_t blend = w[AttrBlend];
        for (int i = 0; i < 2; ++i) {
            if (m.at(span[i]) <= 0)
                continue;
            const std::int64_t factor = CutUnsigned16(256 - away[i] * 256 / m.at(span[i]));
            if (factor != 256)
                blend = Shift8(Wrap32(factor * blend));
        }
        w[AttrBlend] = Blend8(blend);
    };
    Compare<FadingModifier>({AttrPosX, AttrPosY, AttrSpanX, AttrSpanY}, model);
}

// ---- Each kind on one widget ----

class ModifierKinds : public testing::Test
{
protected:
    /** Sets a modifier's attributes and runs it on the widget. */
    template <class Kind>
    void Run(const Attributes& own)
    {
        ZELObjPtr<Kind> modifier(new Kind);
        for (const auto& [index, value] : own)
            modifier->SetAttribute(index, value);
        modifier->Modify(&*widget);
    }

    void Place(int x, int y, int z = 0)
    {
        widget->SetAttribute(AttrPosX, x);
        widget->SetAttribute(AttrPosY, y);
        widget->SetAttribute(AttrPosZ, z);
    }

    void ExpectPlace(int x, int y)
    {
        EXPECT_EQ(widget->GetAttribute(AttrPosX), x);
        EXPECT_EQ(widget->GetAttribute(AttrPosY), y);
    }

    Held<Widget> widget;
};

TEST_F(ModifierKinds, MoveToAtFullPartLandsExactlyOnTheTarget)
{
    Place(-32768, 32767);
    Run<MoveToModifier>({{AttrPosX, 32767}, {AttrPosY, -32768}, {AttrPercentage, 256}});
    ExpectPlace(32767, -32768);
}

TEST_F(ModifierKinds, MoveToAtNoPartLeavesTheWidgetInPlace)
{
    Place(10, 20);
    Run<MoveToModifier>({{AttrPosX, 300}, {AttrPosY, 400}});
    ExpectPlace(10, 20);
}

TEST_F(ModifierKinds, MoveToHalfWayRoundsTowardMinusInfinity)
{
    Place(0, 0);
    Run<MoveToModifier>({{AttrPosX, 5}, {AttrPosY, -5}, {AttrPercentage, 128}});
    ExpectPlace(2, -3);
}

TEST_F(ModifierKinds, PerspectiveInTheEyesPlanePlacesAtThePointAndLeavesTheScale)
{
    Place(50, 60, 1010);
    widget->SetAttribute(AttrScaleX, 300);
    Run<PerspectiveModifier>(
        {{AttrPosX, 7}, {AttrPosY, 8}, {AttrPosZ, 10}, {AttrScaleX, 512}, {AttrScaleY, 512}});
    ExpectPlace(7, 8);
    EXPECT_EQ(widget->GetAttribute(AttrScaleX), 300);
    EXPECT_EQ(widget->GetAttribute(AttrPosZ), 1010);
}

TEST_F(ModifierKinds, PerspectiveFindsAnEyesPlaneThatWrapsAround)
{
    Place(50, 60, 32767 + 1000 - 65536);
    Run<PerspectiveModifier>({{AttrPosX, 7}, {AttrPosY, 8}, {AttrPosZ, 32767}});
    ExpectPlace(7, 8);
}

TEST_F(ModifierKinds, PerspectiveByDefaultChangesPositionsOnly)
{
    Place(100, -40, 500);
    Run<PerspectiveModifier>({});
    ExpectPlace(200, -80);
    EXPECT_EQ(widget->GetAttribute(AttrScaleX), 256);
    EXPECT_EQ(widget->GetAttribute(AttrScaleY), 256);
}

TEST_F(ModifierKinds, PerspectiveNeedsBothScalesToScale)
{
    Place(0, 0, 500);
    Run<PerspectiveModifier>({{AttrScaleX, 256}});
    EXPECT_EQ(widget->GetAttribute(AttrScaleX), 256);
    Run<PerspectiveModifier>({{AttrScaleX, 256}, {AttrScaleY, 128}});
    EXPECT_EQ(widget->GetAttribute(AttrScaleX), 512);
    EXPECT_EQ(widget->GetAttribute(AttrScaleY), 256);
}

TEST_F(ModifierKinds, SpaceScaleAtTheBandsStartShiftsWithTheStart)
{
    Place(100, 0);
    Run<SpaceScaleModifier>(
        {{AttrPosX, 100}, {AttrSpanX, 40}, {AttrOriginX, 20}, {AttrScaleX, 512}});
    ExpectPlace(80, 0); // the band grows from 100..140 to 80..160
}

TEST_F(ModifierKinds, SpaceScaleAtTheBandsEndShiftsWithTheEnd)
{
    Place(140, 0);
    Run<SpaceScaleModifier>(
        {{AttrPosX, 100}, {AttrSpanX, 40}, {AttrOriginX, 20}, {AttrScaleX, 512}});
    ExpectPlace(160, 0);
}

TEST_F(ModifierKinds, SpaceScaleInsideTheBandIsLinear)
{
    Place(110, 0);
    Run<SpaceScaleModifier>(
        {{AttrPosX, 100}, {AttrSpanX, 40}, {AttrOriginX, 20}, {AttrScaleX, 512}});
    ExpectPlace(100, 0);
}

TEST_F(ModifierKinds, SpaceScaleWithoutSpansDoesNothing)
{
    Place(110, 120);
    Run<SpaceScaleModifier>({{AttrPosX, 100}, {AttrScaleX, 512}, {AttrScaleY, 0}});
    ExpectPlace(110, 120);
}

TEST_F(ModifierKinds, FadingAtTheSpansEndLeavesNoOpacity)
{
    Place(140, 50);
    Run<FadingModifier>({{AttrPosX, 100}, {AttrPosY, 50}, {AttrSpanX, 40}, {AttrSpanY, 10}});
    EXPECT_EQ(widget->GetAttribute(AttrBlend), 0);
}

TEST_F(ModifierKinds, FadingBeyondTheSpanLeavesTheOpacityAlone)
{
    Place(141, 50);
    Run<FadingModifier>({{AttrPosX, 100}, {AttrPosY, 50}, {AttrSpanX, 40}, {AttrSpanY, 10}});
    EXPECT_EQ(widget->GetAttribute(AttrBlend), 255);
}

TEST_F(ModifierKinds, FadingWithoutSpansWritesTheCentreBackUnchanged)
{
    Place(5, 6);
    widget->SetAttribute(AttrBlend, 77);
    widget->DirtyState = 0;
    Run<FadingModifier>({{AttrPosX, 5}, {AttrPosY, 6}});
    EXPECT_EQ(widget->GetAttribute(AttrBlend), 77);
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateFaded);
}

/** A widget that notes what is written to it, and whether anything is read after that. */
class Recorder : public Widget
{
public:
    void SetAttribute(AttrIndex index, AttrValue value) override
    {
        writes.push_back(index);
        Widget::SetAttribute(index, value);
    }
    AttrValue GetAttribute(AttrIndex index) override
    {
        read_late = read_late || !writes.empty();
        return Widget::GetAttribute(index);
    }

    std::vector<AttrIndex> writes;
    bool read_late = false;
};

template <class Kind>
std::vector<AttrIndex> WritesOf(const Attributes& own)
{
    ZELObjPtr<Kind> modifier(new Kind);
    for (const auto& [index, value] : own)
        modifier->SetAttribute(index, value);
    Held<Recorder> recorder;
    modifier->Modify(&*recorder);
    EXPECT_FALSE(recorder->read_late);
    return recorder->writes;
}

TEST(ModifierWrites, FollowAllReadsAndComeInEachKindsOrder)
{
    using Writes = std::vector<AttrIndex>;
    EXPECT_EQ(WritesOf<TranslateModifier>({}), (Writes{AttrPosX, AttrPosY, AttrPosZ}));
    EXPECT_EQ(WritesOf<MoveToModifier>({}), (Writes{AttrPosX, AttrPosY}));
    const Writes projected = {AttrPosX, AttrPosY, AttrScaleX, AttrScaleY};
    EXPECT_EQ(WritesOf<PerspectiveModifier>({}), projected);
    EXPECT_EQ(WritesOf<PerspectiveModifier>({{AttrPosZ, -1000}}), projected) << "the eye's plane";
    EXPECT_EQ(WritesOf<SpaceScaleModifier>({}), Writes());
    EXPECT_EQ(WritesOf<SpaceScaleModifier>({{AttrSpanX, 1}}), Writes{AttrPosX});
    EXPECT_EQ(WritesOf<SpaceScaleModifier>({{AttrSpanY, 1}}), Writes{AttrPosY});
    EXPECT_EQ(WritesOf<SpaceScaleModifier>({{AttrSpanX, 1}, {AttrSpanY, 1}}),
              (Writes{AttrPosX, AttrPosY}));
    EXPECT_EQ(WritesOf<FadingModifier>({}), Writes{AttrBlend});
    EXPECT_EQ(WritesOf<FadingModifier>({{AttrPosX, 1}}), Writes());
}

TEST(ModifierWrites, OfTheBaseAreNone)
{
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    Held<Recorder> recorder;
    modifier->ModifierBase::Modify(&*recorder);
    EXPECT_EQ(recorder->writes, std::vector<AttrIndex>());
}

template <class Kind>
class EveryModifier : public testing::Test
{
};
using Kinds = testing::Types<TranslateModifier, PerspectiveModifier, SpaceScaleModifier,
                             MoveToModifier, FadingModifier>;
TYPED_TEST_SUITE(EveryModifier, Kinds);

TYPED_TEST(EveryModifier, DoesNothingWhileDisabled)
{
    ZELObjPtr<TypeParam> modifier(new TypeParam);
    Held<Recorder> widget;
    for (int index = AttrPosX; index <= AttrDstColorKey; ++index)
        modifier->SetAttribute(static_cast<AttrIndex>(index), 300);
    widget->PosX = 310; // within the bands and boxes
    widget->PosY = 320;
    modifier->Enable(false);
    modifier->Modify(&*widget);
    EXPECT_EQ(widget->writes, std::vector<AttrIndex>());
    modifier->Enable(true);
    modifier->Modify(&*widget);
    EXPECT_NE(widget->writes, std::vector<AttrIndex>());
}

TYPED_TEST(EveryModifier, CountStartsAtZero)
{
    IModifier* modifier = new TypeParam;
    EXPECT_EQ(modifier->Hold(), 1);
    EXPECT_EQ(modifier->Release(), 0);
}

/** Attributes, their values at first, and whether they are unsigned. */
template <class Kind>
void ExpectTable(const Attributes& table)
{
    ZELObjPtr<Kind> modifier(new Kind);
    for (int i = AttrNone; i <= AttrDstColorKey; ++i) {
        const auto index = static_cast<AttrIndex>(i);
        const auto own = table.find(index);
        EXPECT_EQ(modifier->GetAttribute(index), own == table.end() ? 0 : own->second) << i;
        modifier->SetAttribute(index, 0x1fffe);
        const AttrValue stored = IsUnsigned(index) ? 0xfffe : -2;
        EXPECT_EQ(modifier->GetAttribute(index), own == table.end() ? 0 : stored) << i;
    }
}

TEST(ModifierAttributes, AreThoseOfEachKindWithTheirFirstValues)
{
    ExpectTable<TranslateModifier>({{AttrPosX, 0}, {AttrPosY, 0}, {AttrPosZ, 0}});
    ExpectTable<PerspectiveModifier>({{AttrPosX, 0},
                                      {AttrPosY, 0},
                                      {AttrPosZ, 0},
                                      {AttrScaleX, 0},
                                      {AttrScaleY, 0},
                                      {AttrFocus, 1000}});
    ExpectTable<SpaceScaleModifier>({{AttrPosX, 0},
                                     {AttrPosY, 0},
                                     {AttrSpanX, 0},
                                     {AttrSpanY, 0},
                                     {AttrOriginX, 0},
                                     {AttrOriginY, 0},
                                     {AttrScaleX, 256},
                                     {AttrScaleY, 256}});
    ExpectTable<MoveToModifier>({{AttrPosX, 0}, {AttrPosY, 0}, {AttrPercentage, 0}});
    ExpectTable<FadingModifier>({{AttrPosX, 0}, {AttrPosY, 0}, {AttrSpanX, 0}, {AttrSpanY, 0}});
}

} // namespace
} // namespace zelxxx

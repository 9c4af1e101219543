/** The kinds of modifiers in a scene on the display: the picture follows them. */
#include "scene_test.h"
#include "seeded_random.h"
#include "test_modifier.h"
#include "vrel_kestrin_anim.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::kBlue;
using kestrin_test::kGreen;
using kestrin_test::kGrey;
using kestrin_test::kRed;
using kestrin_test::MakeLayer;
using kestrin_test::MakeRectangle;
using kestrin_test::SamePicture;
using kestrin_test::SceneTest;
using kestrin_test::SeededRandom;
using kestrin_test::Shown;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

class ModifierScene : public SceneTest
{
protected:
    ModifierScene()
    {
        layer->AddWidget(red);
        Repainted();
    }

    /** The display shows this colour in the middle of an 8 x 8 square at (x, y). */
    void ExpectSquare(int x, int y, std::uint32_t color)
    {
        EXPECT_EQ(engine.Shot().At(x + 4, y + 4), color) << x << ", " << y;
    }

    ZELObjPtr<IWidget> red = MakeRectangle(10, 10, 8, 8, kRed);
};

/** Every kind, with a probe on a widget that tells whether an update took place. */
template <class Kind>
class ModifierAsking : public SceneTest
{
protected:
    ModifierAsking()
    {
        layer->AddWidget(red);
        red->AddModifier(new TestModifier([this](IWidget*) { ++updates; }));
        modifier = new Kind;
    }

    /** Whether the next update does anything. */
    bool Asked()
    {
        updates = 0;
        scene->Update(false, true);
        return updates > 0;
    }

    int updates = 0;
    ZELObjPtr<IWidget> red = MakeRectangle(10, 10, 8, 8, kRed);
    ZELObjPtr<IModifier> modifier;
};
using Kinds = testing::Types<TranslateModifier, PerspectiveModifier, SpaceScaleModifier,
                             MoveToModifier, FadingModifier>;
TYPED_TEST_SUITE(ModifierAsking, Kinds);

TYPED_TEST(ModifierAsking, AttributeOfAnUnattachedOneIsStoredAndMarksNothing)
{
    this->Repainted();
    this->modifier->SetAttribute(AttrPosX, 7);
    this->modifier->Enable(false);
    EXPECT_EQ(this->modifier->GetAttribute(AttrPosX), 7);
    EXPECT_FALSE(this->Asked());
}

TYPED_TEST(ModifierAsking, EachOwnAttributeAsksForAnUpdateAlsoWithTheOldValue)
{
    this->red->AddModifier(this->modifier);
    this->Repainted();
    int own = 0;
    for (int i = AttrNone; i <= AttrDstColorKey; ++i) {
        const auto index = static_cast<AttrIndex>(i);
        this->modifier->SetAttribute(index, 3);
        const bool is_own = this->modifier->GetAttribute(index) == 3;
        EXPECT_EQ(this->Asked(), is_own) << i;
        this->modifier->SetAttribute(index, 3);
        EXPECT_EQ(this->Asked(), is_own) << i << " again";
        own += is_own;
    }
    EXPECT_GE(own, 3);
}

TYPED_TEST(ModifierAsking, EnableAsksOnlyForAChange)
{
    this->red->AddModifier(this->modifier);
    this->Repainted();
    this->modifier->Enable(true);
    EXPECT_FALSE(this->Asked());
    this->modifier->Enable(false);
    EXPECT_TRUE(this->Asked());
    this->modifier->Enable(false);
    EXPECT_FALSE(this->Asked());
    this->modifier->Enable(true);
    EXPECT_TRUE(this->Asked());
}

TYPED_TEST(ModifierAsking, OneOnALayerAsksToo)
{
    this->layer->AddModifier(this->modifier);
    this->Repainted();
    this->modifier->SetAttribute(AttrPosX, 0);
    EXPECT_TRUE(this->Asked());
}

TYPED_TEST(ModifierAsking, OneOnAWidgetOutsideOfScenesAsksNobody)
{
    ZELObjPtr<IWidget> outside = MakeRectangle(0, 0, 1, 1, kGreen);
    outside->AddModifier(this->modifier);
    this->Repainted();
    this->modifier->SetAttribute(AttrPosX, 0);
    EXPECT_FALSE(this->Asked());
}

TYPED_TEST(ModifierAsking, OneThatIsDetachedAsksNobody)
{
    this->red->AddModifier(this->modifier);
    this->red->RemoveModifier(this->modifier);
    this->Repainted();
    this->modifier->SetAttribute(AttrPosX, 0);
    this->modifier->Enable(false);
    EXPECT_FALSE(this->Asked());
}

TEST_F(ModifierScene, TranslatedWidgetLeavesItsOldPlaceAndShowsAtTheNew)
{
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    red->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 20);
    modifier->SetAttribute(AttrPosY, 5);
    Updated();
    ExpectSquare(10, 10, kGrey);
    ExpectSquare(30, 15, Shown(kRed));
    EXPECT_EQ(red->GetAttribute(AttrPosX), 10);

    modifier->SetAttribute(AttrPosX, 0);
    modifier->SetAttribute(AttrPosY, 0);
    Updated();
    ExpectSquare(30, 15, kGrey);
    ExpectSquare(10, 10, Shown(kRed));
}

TEST_F(ModifierScene, TranslationInDepthReorders)
{
    ZELObjPtr<IWidget> green = MakeRectangle(10, 10, 8, 8, kGreen);
    layer->AddWidget(green);
    Updated();
    ExpectSquare(10, 10, Shown(kGreen));
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    red->AddModifier(modifier);
    modifier->SetAttribute(AttrPosZ, 1);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
    modifier->SetAttribute(AttrPosZ, -1);
    Updated();
    ExpectSquare(10, 10, Shown(kGreen));
}

TEST_F(ModifierScene, DepthOfALayerThatIsModifiedReordersWhatItHolds)
{
    PLayer inner = MakeLayer();
    inner->AddWidget(MakeRectangle(10, 10, 8, 8, kGreen));
    layer->AddWidget(inner);
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    layer->AddModifier(modifier);
    Updated();
    ExpectSquare(10, 10, Shown(kGreen));
    red->SetAttribute(AttrPosZ, 1);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
    inner->SetAttribute(AttrPosZ, 2);
    Updated();
    ExpectSquare(10, 10, Shown(kGreen));
    modifier->SetAttribute(AttrPosX, 20);
    Updated();
    ExpectSquare(30, 10, Shown(kGreen));
}

TEST_F(ModifierScene, ModifierMayChangeTheTreeWhileItRuns)
{
    PLayer other = MakeLayer();
    scene->AddLayer(other);
    ZELObjPtr<IWidget> green = MakeRectangle(30, 10, 8, 8, kGreen);
    ZELObjPtr<IWidget> blue = MakeRectangle(30, 30, 8, 8, kBlue);
    other->AddWidget(blue);
    bool changed = false;
    ZELObjPtr<TestModifier> modifier(new TestModifier([&](IWidget*) {
        if (!changed) {
            other->AddWidget(green);
            other->InsertWidget(blue, green, InsertBehind);
            blue->AddModifier(new TranslateModifier);
        }
        changed = true;
    }));
    red->AddModifier(modifier);
    red->SetAttribute(AttrPosX, 12);
    Updated();
    EXPECT_TRUE(changed);
    ExpectSquare(12, 10, Shown(kRed));
    ExpectSquare(30, 10, Shown(kGreen));
    ExpectSquare(30, 30, Shown(kBlue));
}

TEST_F(ModifierScene, MoveToOnALayerGathersItsChildren)
{
    ZELObjPtr<IWidget> green = MakeRectangle(40, 30, 8, 8, kGreen);
    layer->AddWidget(green);
    ZELObjPtr<MoveToModifier> modifier(new MoveToModifier);
    layer->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 20);
    modifier->SetAttribute(AttrPosY, 20);
    modifier->SetAttribute(AttrPercentage, 128);
    Updated();
    ExpectSquare(15, 15, Shown(kRed));
    ExpectSquare(30, 25, Shown(kGreen));

    layer->RemoveModifier(modifier);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
    ExpectSquare(40, 30, Shown(kGreen));
    ExpectSquare(30, 22, kGrey);
}

TEST_F(ModifierScene, PerspectiveSpreadsWhatIsNearer)
{
    red->SetAttribute(AttrPosZ, 500);
    ZELObjPtr<PerspectiveModifier> modifier(new PerspectiveModifier);
    red->AddModifier(modifier);
    Updated();
    ExpectSquare(10, 10, kGrey);
    ExpectSquare(20, 20, Shown(kRed));
}

TEST_F(ModifierScene, SpaceScaleOpensAGapAndShiftsWhatLiesBeyond)
{
    ZELObjPtr<IWidget> green = MakeRectangle(30, 10, 8, 8, kGreen);
    layer->AddWidget(green);
    ZELObjPtr<SpaceScaleModifier> modifier(new SpaceScaleModifier);
    layer->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 20);
    modifier->SetAttribute(AttrSpanX, 10);
    modifier->SetAttribute(AttrScaleX, 512);
    Updated();
    ExpectSquare(10, 10, Shown(kRed)); // before the band
    ExpectSquare(40, 10, Shown(kGreen));
    ExpectSquare(30, 10, kGrey);
}

TEST_F(ModifierScene, FadingHidesAtItsRim)
{
    ZELObjPtr<FadingModifier> modifier(new FadingModifier);
    red->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 2);
    modifier->SetAttribute(AttrPosY, 10);
    modifier->SetAttribute(AttrSpanX, 8);
    modifier->SetAttribute(AttrSpanY, 8);
    Updated();
    ExpectSquare(10, 10, kGrey);
    modifier->Enable(false);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
}

TEST_F(ModifierScene, SeveralActInOrderOfAttachment)
{
    ZELObjPtr<TranslateModifier> by_twenty(new TranslateModifier);
    ZELObjPtr<MoveToModifier> half_way_to_zero(new MoveToModifier);
    red->AddModifier(by_twenty);
    red->AddModifier(half_way_to_zero);
    by_twenty->SetAttribute(AttrPosX, 20);
    half_way_to_zero->SetAttribute(AttrPosY, 10);
    half_way_to_zero->SetAttribute(AttrPercentage, 128);
    Updated();
    ExpectSquare(15, 10, Shown(kRed)); // (10 + 20) / 2
    red->AddModifier(by_twenty);       // now last
    red->SetAttribute(AttrPosX, 10);
    Updated();
    ExpectSquare(25, 10, Shown(kRed)); // 10 / 2 + 20
}

TEST_F(ModifierScene, OneThatMovesToAnotherOwnerLeavesTheFirst)
{
    ZELObjPtr<IWidget> green = MakeRectangle(10, 30, 8, 8, kGreen);
    layer->AddWidget(green);
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    modifier->SetAttribute(AttrPosX, 20);
    red->AddModifier(modifier);
    Updated();
    green->AddModifier(modifier);
    green->SetAttribute(AttrPosX, 10);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
    ExpectSquare(30, 30, Shown(kGreen));
}

TEST_F(ModifierScene, ModifierOfALayerMovesALayerWithItsChildren)
{
    PLayer inner = MakeLayer();
    ZELObjPtr<IWidget> blue = MakeRectangle(5, 30, 8, 8, kBlue);
    inner->AddWidget(blue);
    layer->AddWidget(inner);
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    layer->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 25);
    Updated();
    ExpectSquare(30, 30, Shown(kBlue));
    ExpectSquare(35, 10, Shown(kRed));
    ExpectSquare(5, 30, kGrey);
}

TEST_F(ModifierScene, PerspectiveScalesWhatIsInALayer)
{
    PLayer inner = MakeLayer();
    inner->SetAttribute(AttrPosX, 10);
    inner->SetAttribute(AttrPosY, 5);
    inner->SetAttribute(AttrPosZ, 500);
    ZELObjPtr<IWidget> blue = MakeRectangle(4, 4, 6, 8, kBlue);
    inner->AddWidget(blue);
    layer->RemoveWidget(red);
    layer->AddWidget(inner);
    Updated();
    ZELObjPtr<PerspectiveModifier> modifier(new PerspectiveModifier);
    layer->AddModifier(modifier);
    modifier->SetAttribute(AttrScaleX, 256);
    modifier->SetAttribute(AttrScaleY, 256);
    // Twice as far from the corner and twice as large: (20, 10) + 2 * (4, 4), 12 x 16.
    const auto shot = Updated();
    EXPECT_TRUE(kestrin_test::AreaHasColor(shot, 28, 18, 40, 34, Shown(kBlue)));
    EXPECT_EQ(std::count(shot.pixels.begin(), shot.pixels.end(), Shown(kBlue)), 12 * 16);
}

TEST_F(ModifierScene, FadingReachesWhatIsInALayer)
{
    PLayer inner = MakeLayer();
    inner->SetAttribute(AttrPosX, 20);
    ZELObjPtr<IWidget> blue = MakeRectangle(4, 4, 8, 8, kBlue);
    inner->AddWidget(blue);
    layer->AddWidget(inner);
    Repainted();
    ZELObjPtr<FadingModifier> modifier(new FadingModifier);
    layer->AddModifier(modifier);
    modifier->SetAttribute(AttrSpanX, 40);
    modifier->SetAttribute(AttrSpanY, 40);
    // Half way is half the opacity, and lets half of the grey through.
    EXPECT_NEAR(Updated().At(26, 6) >> 16 & 0xff, 0x40, 2);
    modifier->SetAttribute(AttrSpanX, 20); // at the rim
    EXPECT_EQ(Updated().At(26, 6), kGrey);
    modifier->SetAttribute(AttrPosX, 20); // in the middle
    EXPECT_EQ(Updated().At(26, 6), Shown(kBlue));
}

TEST_F(ModifierScene, ModifiersOfNestedLayersAndOfTheWidgetAddUp)
{
    PLayer inner = MakeLayer();
    ZELObjPtr<IWidget> blue = MakeRectangle(1, 1, 8, 8, kBlue);
    inner->AddWidget(blue);
    layer->AddWidget(inner);
    layer->RemoveWidget(red);
    std::vector<ZELObjPtr<IModifier>> shifts;
    for (IWidget* owner : {static_cast<IWidget*>(layer), static_cast<IWidget*>(inner),
                           static_cast<IWidget*>(blue)}) {
        shifts.emplace_back(new TranslateModifier);
        owner->AddModifier(shifts.back());
    }
    shifts[0]->SetAttribute(AttrPosX, 30);
    shifts[1]->SetAttribute(AttrPosX, 10);
    shifts[1]->SetAttribute(AttrPosY, 10);
    shifts[2]->SetAttribute(AttrPosY, 20);
    Updated();
    ExpectSquare(41, 31, Shown(kBlue));
    ExpectSquare(1, 1, kGrey);
    shifts[1]->Enable(false);
    inner->SetAttribute(AttrPosX, 0); // marks what is in it
    Updated();
    ExpectSquare(31, 21, Shown(kBlue));
    ExpectSquare(41, 31, kGrey);
}

TEST_F(ModifierScene, OneThatMovesFromALayerToAWidgetActsOnThatOnly)
{
    ZELObjPtr<IWidget> green = MakeRectangle(10, 30, 8, 8, kGreen);
    layer->AddWidget(green);
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    modifier->SetAttribute(AttrPosX, 20);
    layer->AddModifier(modifier);
    Updated();
    ExpectSquare(30, 10, Shown(kRed));
    ExpectSquare(30, 30, Shown(kGreen));
    green->AddModifier(modifier);
    modifier->SetAttribute(AttrPosX, 25);
    Updated();
    ExpectSquare(10, 10, Shown(kRed));
    ExpectSquare(35, 30, Shown(kGreen));
    ExpectSquare(30, 10, kGrey);
}

TEST_F(ModifierScene, ChildThatLeavesAModifiedLayerShowsItsOwnPlace)
{
    ZELObjPtr<TranslateModifier> modifier(new TranslateModifier);
    modifier->SetAttribute(AttrPosX, 20);
    layer->AddModifier(modifier);
    Updated();
    ExpectSquare(30, 10, Shown(kRed));
    PLayer plain = MakeLayer();
    scene->AddLayer(plain);
    plain->AddWidget(red);
    red->SetAttribute(AttrPosY, 20);
    Updated();
    ExpectSquare(10, 20, Shown(kRed));
    ExpectSquare(30, 10, kGrey);
}

TEST_F(ModifierScene, OneThatEndsWhileAttachedHasNoEffectAnyMore)
{
    auto* modifier = new TranslateModifier;
    modifier->SetAttribute(AttrPosX, 20);
    red->AddModifier(modifier);
    red->SetAttribute(AttrPosY, 11);
    Updated();
    ExpectSquare(30, 11, Shown(kRed));
    static_cast<IModifier*>(modifier)->Release(); // the widget's own reference
    red->SetAttribute(AttrPosY, 12);
    Updated();
    ExpectSquare(10, 12, Shown(kRed));
    ExpectSquare(30, 12, kGrey);
}

/** A modifier of some kind with some parameters that keep widgets near the scene. */
ZELObjPtr<IModifier> AnyModifier(SeededRandom& random)
{
    IModifier* kinds[] = {new TranslateModifier, new PerspectiveModifier, new SpaceScaleModifier,
                          new MoveToModifier, new FadingModifier};
    const auto chosen = static_cast<std::size_t>(random.Between(0, 4));
    ZELObjPtr<IModifier> modifier(kinds[chosen]);
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        if (i != chosen)
            delete kinds[i];
    }
    return modifier;
}

void Animate(IModifier* modifier, SeededRandom& random)
{
    for (const AttrIndex index :
         {AttrPosX, AttrPosY, AttrSpanX, AttrSpanY, AttrOriginX, AttrOriginY})
        modifier->SetAttribute(index, static_cast<AttrValue>(random.Between(-10, 30)));
    modifier->SetAttribute(AttrPosZ, static_cast<AttrValue>(random.Between(-2, 2)));
    modifier->SetAttribute(AttrScaleX, static_cast<AttrValue>(random.Between(1, 600)));
    modifier->SetAttribute(AttrScaleY, static_cast<AttrValue>(random.Between(1, 600)));
    modifier->SetAttribute(AttrPercentage, static_cast<AttrValue>(random.Between(0, 300)));
    modifier->SetAttribute(AttrFocus, static_cast<AttrValue>(random.Between(1, 60)));
}

TEST_F(ModifierScene, UpdatesShowWhatARepaintShowsWhileAllKindsChangeEveryFrame)
{
    SeededRandom random;
    PLayer inner = MakeLayer();
    std::vector<ZELObjPtr<IWidget>> widgets = {static_cast<ILayer*>(layer),
                                               static_cast<ILayer*>(inner), red};
    layer->AddWidget(inner);
    for (int i = 0; i < 6; ++i) {
        widgets.push_back(MakeRectangle(static_cast<int>(random.Between(0, 50)),
                                        static_cast<int>(random.Between(0, 40)), 9, 7,
                                        static_cast<ColorValue>(random.Between(0, 0xffffff))));
        widgets.back()->SetAttribute(AttrBlend, static_cast<AttrValue>(random.Between(60, 255)));
        (i % 2 ? inner : layer)->AddWidget(widgets.back());
    }
    std::vector<ZELObjPtr<IModifier>> modifiers;
    for (const auto& widget : widgets) {
        modifiers.push_back(AnyModifier(random));
        widget->AddModifier(modifiers.back());
    }

    const int frames = SeededRandom::Rounds(300);
    int changes = 0;
    auto before = Repainted();
    for (int frame = 0; frame < frames; ++frame) {
        for (const auto& modifier : modifiers)
            Animate(modifier, random);
        const auto updated = Updated();
        ASSERT_TRUE(SamePicture(updated, Repainted())) << "frame " << frame;
        changes += updated.pixels != before.pixels;
        before = updated;
    }
    EXPECT_GT(changes, frames / 3);
}

} // namespace
} // namespace zelxxx

#include "text_support.h"

#include "seeded_random.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// ---- The record stream ----

std::vector<int> BytesOf(const TextInfo& info)
{
    return {info.Bytes(), info.Bytes() + info.Length()};
}

TEST(TextInfo, StartsEmptyWithRoomFor100Bytes)
{
    const TextInfo info;
    EXPECT_EQ(info.Length(), 0U);
    EXPECT_EQ(info.Capacity(), 100U);
}

TEST(TextInfo, RecordsHaveTheHighByteFirst)
{
    TextInfo info;
    info.AddColorInfo(1, 2, 3, 4);
    EXPECT_THAT(BytesOf(info), ElementsAre(8, 0, 1, 2, 3, 4));
    info.Initialize();
    info.AddCursorInfo(0x0102, -2, 0x4e2d, 0x89abcdef);
    EXPECT_THAT(BytesOf(info),
                ElementsAre(8, 1, 1, 2, 0xff, 0xfe, 0x4e, 0x2d, 0x89, 0xab, 0xcd, 0xef));
    info.Initialize();
    info.AddCharInfo(-32768, 0x7fff, 99, 0xabcd);
    EXPECT_THAT(BytesOf(info), ElementsAre(8, 16, 0x80, 0, 0x7f, 0xff, 0xab, 0xcd));
}

TEST(TextInfo, ColourIndexSharesTheTypeOfTheColour)
{
    TextInfo info;
    info.AddColorIndex(77);
    EXPECT_THAT(BytesOf(info), ElementsAre(8, 0, 77));
}

TEST(TextInfo, SizeOfACharacterIsNotStored)
{
    TextInfo one;
    TextInfo other;
    one.AddCharInfo(1, 2, 10, 'A');
    other.AddCharInfo(1, 2, 200, 'A');
    EXPECT_EQ(BytesOf(one), BytesOf(other));
}

TEST(TextInfo, SixBytesAfter94GrowTo188)
{
    TextInfo info;
    for (int i = 0; i < 11; ++i)
        info.AddCharInfo(1, 2, 0, 'A');
    info.AddColorInfo(1, 2, 3, 4);
    ASSERT_EQ(info.Length(), 94U);
    EXPECT_EQ(info.Capacity(), 100U);
    info.AddColorInfo(5, 6, 7, 9);
    EXPECT_EQ(info.Length(), 100U);
    EXPECT_EQ(info.Capacity(), 188U);
    EXPECT_EQ(info.Bytes()[99], 9);
}

TEST(TextInfo, RecordThatLeavesAByteFreeDoesNotGrow)
{
    TextInfo info;
    for (int i = 0; i < 12; ++i)
        info.AddCharInfo(1, 2, 0, 'A');
    info.AddColorIndex(1);
    EXPECT_EQ(info.Length(), 99U);
    EXPECT_EQ(info.Capacity(), 100U);
}

TEST(TextInfo, InitializeEmptiesAndGivesUpTheGrownRoom)
{
    TextInfo info;
    for (int i = 0; i < 50; ++i)
        info.AddCharInfo(1, 2, 0, 'A');
    info.Initialize();
    EXPECT_EQ(info.Length(), 0U);
    EXPECT_EQ(info.Capacity(), 100U);
}

TEST(TextInfo, LongStreamsKeepEveryByteWhileTheyGrow)
{
    SeededRandom random;
    TextInfo info;
    std::vector<int> expected;
    UInt32 capacity = 100;
    const auto expect = [&](const std::vector<int>& record) {
        if (expected.size() + record.size() >= capacity)
            capacity = static_cast<UInt32>(expected.size() * 2);
        expected.insert(expected.end(), record.begin(), record.end());
    };
    for (int i = 0; i < 3000; ++i) {
        const int a = static_cast<int>(random.Between(0, 255));
        const int b = static_cast<int>(random.Between(0, 255));
        switch (random.Between(0, 3)) {
        case 0:
            info.AddColorInfo(static_cast<UInt8>(a), static_cast<UInt8>(b), 0, 255);
            expect({8, 0, a, b, 0, 255});
            break;
        case 1:
            info.AddCursorInfo(static_cast<Int16>(a << 8 | b), 1, 2, 3);
            expect({8, 1, a, b, 0, 1, 0, 2, 0, 0, 0, 3});
            break;
        case 2:
            info.AddCharInfo(1, 2, 3, static_cast<UInt16>(a << 8 | b));
            expect({8, 16, 0, 1, 0, 2, a, b});
            break;
        default:
            info.AddColorIndex(static_cast<UInt8>(a));
            expect({8, 0, a});
        }
        ASSERT_EQ(info.Capacity(), capacity);
    }
    EXPECT_EQ(BytesOf(info), expected);
}

// ---- Attributes ----

TEST(Text, NewWidgetHasItsInitialValues)
{
    const PText text = new Text(nullptr);
    EXPECT_EQ(text->GetAttribute(AttrFontIndex), 0);
    EXPECT_EQ(text->GetAttribute(AttrFontSize), 16);
    EXPECT_EQ(text->GetAttribute(AttrOrgFontSize), 16);
    EXPECT_EQ(text->GetAttribute(AttrFontScalerMolecule), 100);
    EXPECT_EQ(text->GetAttribute(AttrFontScalerDenominator), 100);
    EXPECT_EQ(text->GetAttribute(AttrLineHeight), 16);
    EXPECT_EQ(text->GetAttribute(AttrOrgLineHeight), 16);
    EXPECT_EQ(text->GetAttribute(AttrLetterSpace), 0);
    EXPECT_EQ(text->GetAttribute(AttrColor), 0x00ffffff);
    EXPECT_EQ(text->GetAttribute(AttrTextFormat), TextAlignCenter);
    EXPECT_EQ(text->GetAttribute(AttrCursorIndex), 0);
    EXPECT_EQ(text->GetAttribute(AttrOrgSpanX), 720);
    EXPECT_EQ(text->GetAttribute(AttrOrgSpanY), 576);
    EXPECT_EQ(text->GetAttribute(AttrBlend), 255);
    EXPECT_EQ(text->GetAttribute(AttrScaleX), 256);
    EXPECT_FALSE(text->IsEven);
    EXPECT_EQ(text->DirtyState, 0);
}

struct AttributeCase
{
    AttrIndex index;
    AttrValue set, got;
    int mark;
};

const AttributeCase kAttributes[] = {
    {AttrPosX, 0x12345, 0x2345, WidgetBase::StateMoved},
    {AttrPosY, 40000, 40000 - 65536, WidgetBase::StateMoved},
    {AttrPosZ, -5, -5, WidgetBase::StateReordered},
    {AttrSpanX, 33, 33, WidgetBase::StateMoved},
    {AttrOrgSpanX, 1280, 1280, WidgetBase::StateMoved},
    {AttrSpanY, 34, 34, WidgetBase::StateMoved},
    {AttrOrgSpanY, -70000, -70000 + 65536, WidgetBase::StateMoved},
    {AttrOriginX, 7, 7, WidgetBase::StateMoved},
    {AttrOriginY, 8, 8, WidgetBase::StateMoved},
    {AttrScaleX, 0x1ffff, 0xffff, WidgetBase::StateScaled},
    {AttrScaleY, 512, 512, WidgetBase::StateScaled},
    {AttrColor, -1, -1, WidgetBase::StateChanged},
    {AttrBlend, 0x1fe, 0xfe, WidgetBase::StateFaded},
    {AttrBlendMode, 257, 1, WidgetBase::StateFaded},
    {AttrFontIndex, 65537, 1, WidgetBase::StateChanged},
    {AttrFontSize, -1, 65535, WidgetBase::StateChanged},
    {AttrOrgFontSize, 22, 22, WidgetBase::StateChanged},
    {AttrFontScalerMolecule, 150, 150, WidgetBase::StateMoved},
    {AttrFontScalerDenominator, -3, -3, WidgetBase::StateMoved},
    {AttrLineHeight, 65540, 4, WidgetBase::StateChanged},
    {AttrOrgLineHeight, 30, 30, WidgetBase::StateChanged},
    {AttrTextFormat, TextWrap | TextAlignRight, TextWrap | TextAlignRight,
     WidgetBase::StateChanged},
    {AttrCursorIndex, 12, 12, WidgetBase::StateChanged},
    {AttrLetterSpace, -4, -4, WidgetBase::StateChanged},
};

TEST(Text, EachAttributeIsNarrowedAndMarksItsOwnState)
{
    for (const AttributeCase& attribute : kAttributes) {
        const PText text = new Text(nullptr);
        text->SetAttribute(attribute.index, attribute.set);
        EXPECT_EQ(text->GetAttribute(attribute.index), attribute.got) << attribute.index;
        EXPECT_EQ(text->DirtyState, attribute.mark) << attribute.index;
        text->DirtyState = 0;
        text->SetAttribute(attribute.index, attribute.set);
        EXPECT_EQ(text->DirtyState, attribute.mark) << attribute.index << " set to its own value";
        for (const AttributeCase& other : kAttributes) {
            if (other.index == attribute.index)
                continue;
            const PText fresh = new Text(nullptr);
            EXPECT_EQ(text->GetAttribute(other.index), fresh->GetAttribute(other.index))
                << attribute.index << " changes " << other.index;
        }
    }
}

TEST(Text, AllOtherIndicesAreIgnoredAndReadAsZero)
{
    for (int index = -1; index <= 99; ++index) {
        const bool answered =
            std::any_of(std::begin(kAttributes), std::end(kAttributes),
                        [index](const AttributeCase& a) { return a.index == index; });
        if (answered)
            continue;
        const PText text = new Text(nullptr);
        text->SetAttribute(static_cast<AttrIndex>(index), 77);
        EXPECT_EQ(text->GetAttribute(static_cast<AttrIndex>(index)), 0) << index;
        EXPECT_EQ(text->DirtyState, 0) << index;
    }
}

TEST(Text, FontStyleIsNotAnswered)
{
    const PText text = new Text(nullptr);
    text->SetAttribute(AttrFontStyle, FontBold);
    EXPECT_EQ(text->GetAttribute(AttrFontStyle), 0);
    EXPECT_EQ(text->DirtyState, 0);
}

// ---- Copies and resources ----

TEST(Text, CloneTakesFontSizesLineHeightColourAndFormatOnly)
{
    const PText text = new Text(nullptr);
    for (const AttributeCase& attribute : kAttributes)
        text->SetAttribute(attribute.index, attribute.set);
    const PText clone = static_cast<Text*>(text->Clone());
    const PText fresh = new Text(nullptr);
    for (const AttributeCase& attribute : kAttributes) {
        switch (attribute.index) {
        case AttrOrgSpanX:
        case AttrOrgSpanY:
        case AttrBlendMode:
        case AttrFontScalerMolecule:
        case AttrFontScalerDenominator:
        case AttrOrgLineHeight:
        case AttrCursorIndex:
        case AttrLetterSpace:
            EXPECT_EQ(clone->GetAttribute(attribute.index), fresh->GetAttribute(attribute.index))
                << attribute.index << " stays behind";
            break;
        default:
            EXPECT_EQ(clone->GetAttribute(attribute.index), attribute.got) << attribute.index;
        }
    }
}

int ReferencesOf(IZELObject& object)
{
    object.Hold();
    return object.Release();
}

TEST(Text, HoldsItsResourceAndSoDoesItsClone)
{
    const PResource resource(OpenSans());
    {
        const PText text = new Text(resource);
        EXPECT_EQ(ReferencesOf(*resource), 2);
        const PText clone = static_cast<Text*>(text->Clone());
        EXPECT_EQ(ReferencesOf(*resource), 3);
    }
    EXPECT_EQ(ReferencesOf(*resource), 1);
}

TEST(Text, SwitchResourceHoldsTheNewOneAndMarksNothing)
{
    const PResource first(OpenSans());
    const PResource second(OpenSans());
    const PText text = new Text(first);
    text->SwitchResource(second);
    EXPECT_EQ(ReferencesOf(*first), 1);
    EXPECT_EQ(ReferencesOf(*second), 2);
    EXPECT_EQ(text->DirtyState, 0);
    text->SwitchResource(nullptr);
    EXPECT_EQ(ReferencesOf(*second), 1);
}

TEST(Text, FactoryHandsItOutWithoutAReference)
{
    IText* text = zelCreateText(nullptr);
    EXPECT_EQ(text->Hold(), 1);
    EXPECT_EQ(text->Release(), 0);
}

/** Says which indices it was asked for. */
class AskedResource : public ZELObject<IResource, AskedResource>
{
public:
    IFont* OpenFont(ResIndex index, bool&) override
    {
        asked.push_back(index);
        return nullptr;
    }
    std::vector<int> asked;
};

/** Sets one attribute of the copy of what it is attached to. */
class SetModifier : public Modifier
{
public:
    SetModifier(AttrIndex index, AttrValue value) : _index(index), _value(value) {}
    void Modify(IWidget* widget) override { widget->SetAttribute(_index, _value); }
    void SetAttribute(AttrIndex, AttrValue) override {}
    AttrValue GetAttribute(AttrIndex) override { return 0; }

private:
    AttrIndex _index;
    AttrValue _value;
};

TEST(Text, FontIsTheOneOfTheModifiedCopy)
{
    const ZELObjPtr<AskedResource> resource(new AskedResource);
    const PText text = new Text(resource);
    text->SetAttribute(AttrFontIndex, 1);
    text->GetFont();
    static_cast<IText&>(*text).AddModifier(new SetModifier(AttrFontIndex, 2));
    text->Modify();
    text->GetFont();
    EXPECT_THAT(resource->asked, ElementsAre(1, 2));
}

TEST(Text, WithoutAResourceThereIsNoFont)
{
    const PText text = new Text(nullptr);
    EXPECT_EQ(text->GetFont(), nullptr);
}

// ---- Setting the text ----

/** A text in a scene whose painter records. */
class TextPaint : public testing::Test
{
protected:
    TextPaint() : _scene(0, 720, 576, Color32Bit, SceneUseSingleBuffer, BlendSrcOver)
    {
        _scene.CurrentPainter = &_painter;
        Attach(*_text);
    }
    ~TextPaint() override { _text->ParentScene = nullptr; }

    void Attach(Text& text)
    {
        text.ParentScene = &_scene;
        text.DirtyBound = {10, 20, 110, 60};
        text.SetAttribute(AttrFontIndex, 1);
        text.SetAttribute(AttrFontSize, 24);
        text.DirtyState = 0;
    }
    std::vector<WChar> FormattedUnits()
    {
        _text->Paint();
        return _formater.units;
    }
    void SetText(const std::string& bytes, TextEncoding encoding, ITextFormater* formater)
    {
        _text->SetText(bytes.data(), static_cast<UInt32>(bytes.size()), encoding, formater);
    }

    Scene _scene;
    RecordingPainter _painter{Color32Bit};
    TestFormater _formater;
    PText _text = new Text(PResource(OpenSans()));
};

TEST_F(TextPaint, UnicodeIsTakenAsHostUnitsAndAnOddByteIsDropped)
{
    const WChar units[] = {0x41, 0xd83d, 0xfeff};
    _text->SetText(units, 6, EncodingUnicode, &_formater);
    EXPECT_THAT(FormattedUnits(), ElementsAre(0x41, 0xd83d, 0xfeff));
    _text->SetText(units, 5, EncodingUnicode, &_formater);
    EXPECT_THAT(FormattedUnits(), ElementsAre(0x41, 0xd83d));
    _text->SetText(units, 1, EncodingUnicode, &_formater);
    EXPECT_THAT(FormattedUnits(), IsEmpty());
}

TEST_F(TextPaint, OtherEncodingsAreConverted)
{
    SetText("\xA4\xA4", EncodingBig5, &_formater);
    EXPECT_THAT(FormattedUnits(), ElementsAre(0x4e2d));
    SetText("\xC3\xA9t\xC3\xA9", EncodingUTF8, &_formater);
    EXPECT_THAT(FormattedUnits(), ElementsAre(0xe9, 't', 0xe9));
}

TEST_F(TextPaint, TextThatCannotBeDecodedIsEmpty)
{
    SetText("before", EncodingASCII, &_formater);
    SetText("\xFF\xFF", EncodingUTF8, &_formater);
    EXPECT_THAT(FormattedUnits(), IsEmpty());
}

TEST_F(TextPaint, TextsOfEveryLengthInAnyOrderFitTheirBuffer)
{
    SeededRandom random;
    for (int i = 0; i < 500; ++i) {
        const auto length = static_cast<std::size_t>(random.Between(0, 300));
        if (random.Between(0, 1) != 0) {
            SetText(std::string(length, 'x'), EncodingASCII, &_formater);
            EXPECT_EQ(FormattedUnits(), std::vector<WChar>(length, 'x'));
        } else {
            const std::vector<WChar> units(length, 0x3a9);
            _text->SetText(units.data(), static_cast<UInt32>(2 * length), EncodingUnicode,
                           &_formater);
            EXPECT_EQ(FormattedUnits(), units);
        }
    }
}

TEST_F(TextPaint, LengthBeyondASignedNumberIsNoText)
{
    SetText("before", EncodingASCII, &_formater);
    _text->SetText("x", 0x80000000U, EncodingUTF8, &_formater);
    EXPECT_THAT(FormattedUnits(), IsEmpty());
}

TEST_F(TextPaint, EmptyTextWithoutABufferIsSafe)
{
    _text->SetText("", 0, EncodingUTF8, &_formater);
    EXPECT_THAT(FormattedUnits(), IsEmpty());
    EXPECT_FALSE(_formater.had_text);
}

TEST_F(TextPaint, NoTextEmptiesMarksAndTakesTheFormater)
{
    SetText("before", EncodingASCII, nullptr);
    _text->DirtyState = 0;
    _text->SetText(nullptr, 6, EncodingASCII, &_formater);
    EXPECT_EQ(_text->DirtyState, WidgetBase::StateChanged);
    EXPECT_THAT(FormattedUnits(), IsEmpty());
    EXPECT_EQ(_formater.runs, 1);
    EXPECT_TRUE(_formater.had_text) << "the buffer stays";
}

TEST_F(TextPaint, NullFormaterKeepsTheOneBefore)
{
    SetText("one", EncodingASCII, &_formater);
    SetText("two", EncodingASCII, nullptr);
    EXPECT_THAT(FormattedUnits(), ElementsAre('t', 'w', 'o'));
    TestFormater other;
    SetText("six", EncodingASCII, &other);
    _text->Paint();
    EXPECT_EQ(other.runs, 1);
    EXPECT_EQ(_formater.runs, 1);
}

TEST_F(TextPaint, TextIsCopied)
{
    std::string bytes = "abc";
    SetText(bytes, EncodingASCII, &_formater);
    bytes = "xyz";
    EXPECT_THAT(FormattedUnits(), ElementsAre('a', 'b', 'c'));
}

TEST_F(TextPaint, SetTextMarksTheWidgetChanged)
{
    SetText("abc", EncodingASCII, nullptr);
    EXPECT_EQ(_text->DirtyState, WidgetBase::StateChanged);
}

// ---- When the formatter runs ----

TEST_F(TextPaint, FormaterRunsOnceUntilSomethingChanges)
{
    SetText("abc", EncodingASCII, &_formater);
    _text->Paint();
    _text->Paint();
    EXPECT_EQ(_formater.runs, 1);
    SetText("abc", EncodingASCII, nullptr);
    _text->Paint();
    _text->Paint();
    EXPECT_EQ(_formater.runs, 2);
}

TEST_F(TextPaint, EveryAttributeEvenOneThatIsIgnoredRunsTheFormaterAgain)
{
    SetText("abc", EncodingASCII, &_formater);
    _text->Paint();
    int runs = 1;
    for (const int index : {1, 18, 31, 99, 0}) {
        _text->SetAttribute(static_cast<AttrIndex>(index),
                            _text->GetAttribute(static_cast<AttrIndex>(index)));
        _text->Paint();
        _text->Paint();
        EXPECT_EQ(_formater.runs, ++runs) << index;
    }
}

TEST_F(TextPaint, RecordsAreReplayedAtEveryPaintAndRebuiltByTheFormater)
{
    _formater.layout = [](IText& text) { text.AddCharInfo(0, 0, 0, 'A'); };
    SetText("A", EncodingASCII, &_formater);
    _text->Paint();
    _text->Paint();
    EXPECT_EQ(_painter.drawn.size(), 2U);
    _text->SetAttribute(AttrColor, 1);
    _text->Paint();
    EXPECT_EQ(_painter.drawn.size(), 3U) << "the records of the layout before are gone";
}

TEST_F(TextPaint, WithoutAFormaterTextIsNeverDrawn)
{
    SetText("abc", EncodingASCII, nullptr);
    _text->Paint();
    _text->Paint();
    EXPECT_THAT(_painter.drawn, IsEmpty());
}

TEST_F(TextPaint, RecordsBeforeTheFirstFormaterAreDropped)
{
    _text->AddCharInfo(0, 0, 0, 'A');
    _text->AddCursorInfo(0, 0, 'A', 0xff000000);
    _text->AddColorInfo(1, 2, 3, 4);
    _text->AddColorIndex(5);
    SetText("abc", EncodingASCII, &_formater);
    _text->Paint();
    EXPECT_THAT(_painter.drawn, IsEmpty());
}

TEST_F(TextPaint, FontIndexWithoutAFontPaintsAMagentaBox)
{
    _text->SetAttribute(AttrFontIndex, 3);
    _text->SetAttribute(AttrBlendMode, BlendSrcCopy);
    _text->DirtyBlend = 90;
    SetText("abc", EncodingASCII, &_formater);
    _text->Paint();
    EXPECT_THAT(_painter.drawn,
                ElementsAre(Drawn{"rectangle",
                                  {10, 20, 100, 40, 0x00ff00ff, 90, BlendSrcCopy, NoBlit, 0}}));
    EXPECT_EQ(_formater.runs, 0);
    _text->SetAttribute(AttrFontIndex, 2);
    _text->Paint();
    EXPECT_EQ(_formater.runs, 1) << "the layout was still to be made";
}

TEST_F(TextPaint, WithoutAResourceNothingIsDrawnOrLaidOut)
{
    _text->SwitchResource(nullptr);
    SetText("abc", EncodingASCII, &_formater);
    _text->Paint();
    EXPECT_THAT(_painter.drawn, IsEmpty());
    EXPECT_EQ(_formater.runs, 0);
}

} // namespace

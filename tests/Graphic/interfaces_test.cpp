/**
 * The binary face of the public headers: clients are built against the order of virtual functions,
 * the numbers of the enumerations and the widths of the scalar types.
 */
#include "dirty.h"
#include "vrel_kestrin_anim.h"

#include "vtable_slot.h"

#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::ExpectSlots;

namespace zelxxx {
namespace {

// A destructor takes slots 0 and 1.
constexpr int kAfterDestructor = 2;
constexpr int kAfterObject = 4;
constexpr int kAfterDynamic = 6;
constexpr int kAfterWidget = 12;

TEST(InterfaceSlots, Object)
{
    ExpectSlots<IZELObject>(kAfterDestructor, &IZELObject::Hold, &IZELObject::Release);
}

TEST(InterfaceSlots, Dynamic)
{
    ExpectSlots<IDynamic>(kAfterObject, &IDynamic::SetAttribute, &IDynamic::GetAttribute);
}

TEST(InterfaceSlots, Widget)
{
    ExpectSlots<IWidget>(kAfterDynamic, &IWidget::GetLayer, &IWidget::SetVisibility,
                         &IWidget::SetRemoving, &IWidget::SetAnchors, &IWidget::AddModifier,
                         &IWidget::RemoveModifier);
}

TEST(InterfaceSlots, Layer)
{
    ExpectSlots<ILayer>(kAfterWidget, &ILayer::AddWidget, &ILayer::InsertWidget,
                        &ILayer::RemoveWidget, &ILayer::EnableAnchors, &ILayer::LayerToScene,
                        &ILayer::SceneToLayer);
}

TEST(InterfaceSlots, Text)
{
    ExpectSlots<IText>(kAfterWidget, &IText::SetText, &IText::AddCursorInfo, &IText::AddColorInfo,
                       &IText::AddCharInfo, &IText::AddColorIndex, &IText::GetFont,
                       &IText::SwitchResource);
}

TEST(InterfaceSlots, Sprite)
{
    ExpectSlots<ISprite>(kAfterWidget, &ISprite::SetImage, &ISprite::UpdateImage);
}

TEST(InterfaceSlots, Modifier)
{
    ExpectSlots<IModifier>(kAfterDynamic, &IModifier::Enable);
}

TEST(InterfaceSlots, ModifierBase)
{
    ExpectSlots<ModifierBase>(kAfterDestructor, &ModifierBase::Modify);
}

TEST(InterfaceSlots, Canvas)
{
    ExpectSlots<ICanvas>(kAfterObject, &ICanvas::GetColorMode, &ICanvas::GetWidth,
                         &ICanvas::GetHeight, &ICanvas::Clear, &ICanvas::Copy,
                         &ICanvas::SetBlendMode);
}

TEST(InterfaceSlots, View)
{
    using SetPalette = void (IView::*)(IPalette*);
    using SetScaledPalette = void (IView::*)(IPalette*, UInt16, UInt16, UInt16);
    ExpectSlots<IView>(10, &IView::Show, &IView::Hide, &IView::Flip,
                       static_cast<SetPalette>(&IView::SetPalette),
                       static_cast<SetScaledPalette>(&IView::SetPalette), &IView::SetPaletteEntry);
}

TEST(InterfaceSlots, Scene)
{
    ExpectSlots<IScene>(16, &IScene::SetBackgroundColor, &IScene::AddLayer, &IScene::RemoveLayer,
                        &IScene::Update, &IScene::Enable);
}

TEST(InterfaceSlots, Painter)
{
    ExpectSlots<IPainter>(kAfterObject, &IPainter::SetClipping, &IPainter::SetOrigin,
                          &IPainter::DrawFrame, &IPainter::DrawRectangle, &IPainter::DrawImage,
                          &IPainter::DrawTexture, &IPainter::DrawChar, &IPainter::DrawCharBitmap,
                          &IPainter::Draw32BitCharBitmap, &IPainter::GetColorMode,
                          &IPainter::SetBlendMode, &IPainter::DrawString);
}

TEST(InterfaceSlots, Font)
{
    ExpectSlots<IFont>(kAfterObject, &IFont::GetFTFontMetrics, &IFont::GetFTNoScaleCharMetricsX,
                       &IFont::GetFTKerning, &IFont::GetFTYOffsetTop, &IFont::GetFTYOffsetBottom,
                       &IFont::GetFTXOffsetLeft, &IFont::GetFTCharMetrics,
                       &IFont::NoScaleFontUnitsToPixelsInCalculate,
                       &IFont::NoScaleFontUnitsToPixelsInDrawText);
}

TEST(InterfaceSlots, Image)
{
    ExpectSlots<IImage>(kAfterObject, &IImage::GetWidth, &IImage::GetHeight, &IImage::GetFrameCount,
                        &IImage::GetImageType, &IImage::ImageClear, &IImage::SetImageData,
                        &IImage::GetImageBuffer, &IImage::SetFileSize, &IImage::GetFileSize,
                        &IImage::SetAttribute, &IImage::GetAttribute);
}

TEST(InterfaceSlots, Palette)
{
    ExpectSlots<IPalette>(kAfterObject, &IPalette::GetColorCount, &IPalette::GetColorRed,
                          &IPalette::GetColorGreen, &IPalette::GetColorBlue,
                          &IPalette::GetColorBlending);
}

TEST(InterfaceSlots, Resource)
{
    ExpectSlots<IResource>(kAfterObject, &IResource::OpenFont);
}

TEST(InterfaceSlots, TextFormater)
{
    ExpectSlots<ITextFormater>(kAfterDestructor, &ITextFormater::Format,
                               &ITextFormater::GetCharBuffer);
}

TEST(InterfaceSlots, DirtyRectHandler)
{
    ExpectSlots<IDirtyRectHandler>(kAfterDestructor, &IDirtyRectHandler::HandleRect);
}

TEST(InterfaceSlots, Error)
{
    ExpectSlots<Error>(kAfterDestructor, &Error::Output);
}

TEST(InterfaceTree, IsAsDocumented)
{
    EXPECT_TRUE((std::is_base_of<IZELObject, IDynamic>::value));
    EXPECT_TRUE((std::is_base_of<IDynamic, IWidget>::value));
    EXPECT_TRUE((std::is_base_of<IWidget, ILayer>::value));
    EXPECT_TRUE((std::is_base_of<IWidget, IText>::value));
    EXPECT_TRUE((std::is_base_of<IWidget, ISprite>::value));
    EXPECT_TRUE((std::is_base_of<IDynamic, IModifier>::value));
    EXPECT_TRUE((std::is_base_of<ICanvas, IView>::value));
    EXPECT_TRUE((std::is_base_of<IView, IScene>::value));
    EXPECT_FALSE((std::is_base_of<IDynamic, IImage>::value));
    EXPECT_FALSE((std::is_base_of<IDynamic, ICanvas>::value));
    EXPECT_FALSE((std::is_base_of<IZELObject, ITextFormater>::value));
    EXPECT_FALSE((std::is_base_of<IZELObject, IDirtyRectHandler>::value));
}

/** Expects enumerators to have these values, and their type 32 bits with a sign. */
template <class Enum>
void ExpectValues(const std::vector<std::pair<Enum, int>>& values)
{
    using Number = typename std::underlying_type<Enum>::type;
    EXPECT_EQ(sizeof(Enum), 4U);
    EXPECT_TRUE(std::is_signed<Number>::value);
    for (const auto& [enumerator, value] : values)
        EXPECT_EQ(static_cast<int>(enumerator), value);
}

/** Expects enumerators to count up from a first value. */
template <class Enum>
void ExpectCount(int first, const std::vector<Enum>& enumerators)
{
    std::vector<std::pair<Enum, int>> values;
    for (Enum enumerator : enumerators)
        values.emplace_back(enumerator, first++);
    ExpectValues(values);
}

TEST(EnumerationValues, ColorMode)
{
    ExpectValues<ColorMode>({{Color1Bit, 1},
                             {Color4Bit, 4},
                             {Color8Bit, 8},
                             {Color16Bit, 16},
                             {Color24Bit, 24},
                             {Color32Bit, 32}});
}

TEST(EnumerationValues, BlendModeAndBlitFlag)
{
    ExpectValues<BlendMode>({{BlendSrcOver, 0}, {BlendSrcCopy, 1}, {BlendSrcOver8BIT, 2}});
    ExpectValues<BlitFlag>({{NoBlit, 0}, {Blit_SRC_COLORKEY, 8}, {Blit_DST_COLORKEY, 16}});
}

TEST(EnumerationValues, SceneOption)
{
    ExpectValues<SceneOption>({{SceneUseDoubleBuffer, 0},
                               {SceneUseFlipping, 1},
                               {SceneUseDirtyRectangles, 2},
                               {SceneUseDirtyBuffer, 4},
                               {SceneUseSingleBuffer, 8}});
}

TEST(EnumerationValues, FontStyle)
{
    ExpectValues<FontStyle>({{FontRegular, 0},
                             {FontBold, 1},
                             {FontItalic, 2},
                             {FontBoldItalic, 3},
                             {FontUnderline, 4},
                             {FontStrikeout, 8}});
}

TEST(EnumerationValues, AttrIndex)
{
    ExpectCount<AttrIndex>(0, {AttrNone,
                               AttrPosX,
                               AttrPosY,
                               AttrPosZ,
                               AttrSpanX,
                               AttrOrgSpanX,
                               AttrSpanY,
                               AttrOrgSpanY,
                               AttrOriginX,
                               AttrOriginY,
                               AttrScaleX,
                               AttrScaleY,
                               AttrScrollX,
                               AttrScrollY,
                               AttrClipLeft,
                               AttrClipTop,
                               AttrClipRight,
                               AttrClipBottom,
                               AttrColor,
                               AttrBlend,
                               AttrBlendMode,
                               AttrBkgndColor,
                               AttrBkgndBlend,
                               AttrMiddleColor,
                               AttrImageIndex,
                               AttrImageFrame,
                               AttrFontIndex,
                               AttrFontSize,
                               AttrOrgFontSize,
                               AttrFontScalerMolecule,
                               AttrFontScalerDenominator,
                               AttrFontStyle,
                               AttrLineHeight,
                               AttrOrgLineHeight,
                               AttrTextFormat,
                               AttrImageFormat,
                               AttrVariable1,
                               AttrVariable2,
                               AttrVariable3,
                               AttrVariable4,
                               AttrVariable5,
                               AttrPercentage,
                               AttrFocus,
                               AttrBorderWidth,
                               AttrBorderColor,
                               AttrBorderBlend,
                               AttrBorderBlendMode,
                               AttrCursorIndex,
                               AttrLetterSpace,
                               AttrBlittingFlag,
                               AttrDstColorKey});
    EXPECT_EQ(AttrDstColorKey, 50);
}

TEST(EnumerationValues, TextEncoding)
{
    ExpectCount<TextEncoding>(
        0, {EncodingASCII,   EncodingUnicode, EncodingBig5,    EncodingGB2312,  EncodingEUC_KR,
            EncodingEUC_JP,  EncodingJIS,     Encoding8859_1,  Encoding8859_2,  Encoding8859_3,
            Encoding8859_4,  Encoding8859_5,  Encoding8859_6,  Encoding8859_7,  Encoding8859_8,
            Encoding8859_9,  Encoding8859_10, Encoding8859_11, Encoding8859_12, Encoding8859_13,
            Encoding8859_14, Encoding8859_15, Encoding8859_16, Encoding6937,    EncodingUTF8,
            EncodingARIB24});
    EXPECT_EQ(EncodingARIB24, 25);
}

TEST(EnumerationValues, TextFormat)
{
    ExpectValues<TextFormat>({{TextAlignCenter, 0},
                              {TextAlignLeft, 1},
                              {TextAlignRight, 2},
                              {TextAlignTop, 4},
                              {TextAlignBottom, 8},
                              {TextWrap, 16},
                              {TextEndEllipsis, 32},
                              {TextMarked, 64}});
}

TEST(EnumerationValues, Images)
{
    ExpectCount<ImageType>(0, {TypePNG, TypeJPG, TypeImg, TypeSurface});
    ExpectValues<ImageFormat>({{ImageAlignCenter, 0},
                               {ImageAlignLeft, 1},
                               {ImageAlignRight, 2},
                               {ImageAlignTop, 4},
                               {ImageAlignBottom, 8},
                               {ImageAlignTiling, 16}});
    ExpectCount<ImageBufferMode>(0, {UseFrameBuffer, UseSystemMemory});
}

TEST(EnumerationValues, AnchorsAndPositions)
{
    ExpectValues<WidgetAnchor>(
        {{AnchorLeft, 1}, {AnchorRight, 2}, {AnchorTop, 4}, {AnchorBottom, 8}});
    ExpectValues<WidgetInstertPosition>(
        {{InsertFirst, 1}, {InsertLast, 2}, {InsertBefore, 4}, {InsertBehind, 8}});
}

template <class T>
void ExpectInteger(std::size_t bytes, bool is_signed)
{
    EXPECT_TRUE(std::is_integral<T>::value);
    EXPECT_EQ(sizeof(T), bytes);
    EXPECT_EQ(std::is_signed<T>::value, is_signed);
}

TEST(ScalarTypes, HaveTheirWidthAndSign)
{
    ExpectInteger<Int8>(1, true);
    ExpectInteger<UInt8>(1, false);
    ExpectInteger<Int16>(2, true);
    ExpectInteger<UInt16>(2, false);
    ExpectInteger<Int32>(4, true);
    ExpectInteger<UInt32>(4, false);
    ExpectInteger<MetricValue>(2, true);
    ExpectInteger<RatioValue>(2, false);
    ExpectInteger<BlendValue>(1, false);
    ExpectInteger<ColorValue>(4, false);
    ExpectInteger<BlendModeValue>(1, false);
    ExpectInteger<AttrValue>(4, true);
    ExpectInteger<WChar>(2, false);
}

TEST(Records, AreLaidOutWithoutGaps)
{
    EXPECT_EQ(sizeof(DirtyRect), 8U);
    EXPECT_EQ(offsetof(DirtyRect, y1), 2U);
    EXPECT_EQ(offsetof(DirtyRect, x2), 4U);
    EXPECT_EQ(offsetof(DirtyRect, y2), 6U);
    EXPECT_EQ(sizeof(PaletteEntry), 4U);
    EXPECT_EQ(offsetof(PaletteEntry, blending), 3U);
}

} // namespace
} // namespace zelxxx

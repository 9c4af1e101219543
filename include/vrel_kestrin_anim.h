/**
 * Modifiers: objects attached to a widget or layer that rewrite attributes at each update.
 *
 * A modifier works on a copy of the widget's attributes that is made anew for every update, so the
 * client's own values stay as they are. Modifiers are not driven by time: a client animates by
 * changing a modifier's parameters between updates. Those of a layer act on the layer's children.
 *
 * Clients construct modifiers directly. The count starts at 0, so the widget a modifier is added to
 * takes the first reference, and detaching a modifier that nobody else holds destroys it.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

namespace zelxxx {

class Modifier;
class ModifierBase;
class WidgetBase;

/** The modifiers of a widget, in order of attachment; holds them. */
class ModifierCollection : public ZELCollection<ModifierCollection, ModifierBase, true>
{
};

/** What the scene graph knows of a modifier. */
class KESTRIN_EXPORT ModifierBase : public ZELElement<ModifierCollection, ModifierBase>
{
public:
    ModifierBase() : Enabled(true), Widget(nullptr) {}
    virtual ~ModifierBase();

    /** Rewrites the attributes of a widget's copy; the base does nothing. */
    virtual void Modify(IWidget* widget);

    /** References of the modifier object. */
    int Hold();
    int Release();
    /** Asks the scene of the widget it is attached to for a full update; nothing without one. */
    void SetDirty();

    bool Enabled;
    WidgetBase* Widget; /**< the widget or layer it is attached to, not held */
};

/** Base of all modifiers. */
class KESTRIN_EXPORT Modifier : public ModifierBase, public ZELObject<IModifier, Modifier>
{
public:
    // Both bases count the same references.
    using ZELObject<IModifier, Modifier>::Hold;
    using ZELObject<IModifier, Modifier>::Release;

    void Enable(bool enabled) override;
};

/** Moves a widget: AttrPosX, AttrPosY and AttrPosZ are added to its position and depth. */
class KESTRIN_EXPORT TranslateModifier : public Modifier
{
public:
    TranslateModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _dx, _dy, _dz;
};

/**
 * Projects a widget towards an eye that looks at the point (AttrPosX, AttrPosY) from the depth
 * AttrPosZ + AttrFocus: the nearer its depth is to the eye's, the farther it moves from the point.
 * The focus is 1000 at first. With AttrScaleX and AttrScaleY, both not 0, the widget's scales
 * follow, times these factors; with either 0, as at first, they stay. A widget in the plane of the
 * eye stands exactly at the point. The widget's depth stays.
 */
class KESTRIN_EXPORT PerspectiveModifier : public Modifier
{
public:
    PerspectiveModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _pos_x, _pos_y, _pos_z;
    RatioValue _scale_x, _scale_y;
    MetricValue _focus;
};

/**
 * Stretches or shrinks a band of space and shifts what lies beyond it, so that nothing overlaps:
 * like a lens over a row of icons. The band begins at AttrPosX and is AttrSpanX wide, and is scaled
 * by AttrScaleX about the point AttrOriginX inside it; likewise for y. A span of 0, as at first,
 * leaves its axis alone. Only positions change, not the widgets' spans and scales.
 */
class KESTRIN_EXPORT SpaceScaleModifier : public Modifier
{
public:
    SpaceScaleModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _x, _y;
    MetricValue _width, _height;
    MetricValue _origin_x, _origin_y;
    RatioValue _scale_x, _scale_y;
};

/**
 * Moves a widget a part of the way to the point (AttrPosX, AttrPosY): AttrPercentage is the part in
 * 8.8 fixed point, 0 at first, 128 half way, 256 the point itself.
 */
class KESTRIN_EXPORT MoveToModifier : public Modifier
{
public:
    MoveToModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _pos_x, _pos_y;
    RatioValue _percentage;
};

/**
 * Fades a widget with its distance from the point (AttrPosX, AttrPosY): its opacity falls in a
 * straight line to 0 at AttrSpanX sideways and at AttrSpanY up and down. Beyond, the opacity is
 * left as it is.
 */
class KESTRIN_EXPORT FadingModifier : public Modifier
{
public:
    FadingModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _x, _y;
    MetricValue _width, _height;
};

} // namespace zelxxx

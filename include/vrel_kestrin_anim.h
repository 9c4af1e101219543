/**
 * @file
 * Modifiers: objects attached to a widget or layer that rewrite attributes at each update.
 *
 * A modifier works on a copy of the widget's attributes that is made anew for every update, so the
 * client's own values stay as they are. Modifiers are not driven by time: a client animates by
 * changing a modifier's parameters between updates. Several run in order of attachment, each on
 * what the one before left. Those of a layer act on the layer's direct children, after the
 * children's own.
 *
 *     auto* slide = new MoveToModifier;
 *     box->AddModifier(slide); // holds it
 *     slide->SetAttribute(AttrPosX, 400);
 *     for (int part = 0; part <= 256; part += 8) {
 *         slide->SetAttribute(AttrPercentage, part);
 *         zelUpdateScreen(false, true);
 *     }
 *
 * Parameters are attributes, named as those of widgets: a MetricValue in pixels, or of depth, and 0
 * at first where nothing else is said. A modifier ignores indices its class does not name and reads
 * them as 0. Setting one marks the scene, if the modifier is attached in one.
 *
 * Ownership: clients construct modifiers directly, with new. The count starts at 0, so the widget a
 * modifier is added to takes the first reference, and detaching a modifier that nobody else holds
 * destroys it. A widget or layer that goes detaches its modifiers.
 *
 * Failures: none. Sums wrap to 16 bits. Threads: the engine's one.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

namespace zelxxx {

/**
 * @defgroup modifiers Modifiers
 * Movement, perspective, space, fading: what a client animates widgets with.
 * @{
 */

class Modifier;
class ModifierBase;
class WidgetBase;

/** The modifiers of a widget, in order of attachment; holds them. */
class ModifierCollection : public ZELCollection<ModifierCollection, ModifierBase, true>
{
};

/**
 * What the scene graph knows of a modifier. A client's own kind derives from Modifier and overrides
 * Modify, SetAttribute and GetAttribute.
 */
class KESTRIN_EXPORT ModifierBase : public ZELElement<ModifierCollection, ModifierBase>
{
public:
    /** Enabled, and attached to nothing. */
    ModifierBase() : Enabled(true), Widget(nullptr) {}
    virtual ~ModifierBase();

    /**
     * Rewrites attributes, by GetAttribute and SetAttribute of the widget given; called at each
     * update. The base does nothing, and so do the engine's own kinds while they are disabled.
     *
     * @param widget  the copy of a widget, or of a layer's child; not null, not to be kept
     */
    virtual void Modify(IWidget* widget);

    /** Takes a reference to the modifier. @return the new count */
    int Hold();
    /** Gives a reference back; at exactly 0 the modifier is destroyed. @return the new count */
    int Release();
    /** Marks the scene of the widget it is attached to as changed; nothing without one. */
    void SetDirty();

    bool Enabled;       /**< what Enable was told; true at first */
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

/**
 * Moves a widget.
 *
 *     AttrPosX, AttrPosY  added to its position
 *     AttrPosZ            added to its depth
 */
class KESTRIN_EXPORT TranslateModifier : public Modifier
{
public:
    /** Moves nothing. */
    TranslateModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _dx, _dy, _dz;
};

/**
 * Projects a widget towards an eye: the nearer its depth is to the eye's, the farther it moves from
 * the point looked at, by the factor focus / (focus - (its depth - AttrPosZ)). The widget's depth
 * stays. One in the plane of the eye stands exactly at the point, and one beyond it is mirrored.
 *
 *     AttrPosX, AttrPosY      the point the eye looks at
 *     AttrPosZ                depth that stays as it is
 *     AttrFocus               how far in front of that depth the eye stands; 1000 at first
 *     AttrScaleX, AttrScaleY  RatioValue: where both are not 0, the widget's scales are projected
 *                             too, times these; with either 0, as at first, they stay
 */
class KESTRIN_EXPORT PerspectiveModifier : public Modifier
{
public:
    /** A focus of 1000, and scales untouched. */
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
 * like a lens over a row of icons. Only positions change, not the widgets' spans and scales.
 *
 *     AttrPosX, AttrPosY        where the band begins; a widget exactly there counts as before it
 *     AttrSpanX, AttrSpanY      its width and height; 0, as at first, leaves the axis alone
 *     AttrOriginX, AttrOriginY  the point of the band, from its beginning, that stays in place
 *     AttrScaleX, AttrScaleY    RatioValue: what the band is scaled by; 256 at first. From 32768 on
 *                               it counts as negative
 */
class KESTRIN_EXPORT SpaceScaleModifier : public Modifier
{
public:
    /** Both axes off, scales of 256. */
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
 * Moves a widget a part of the way to a point.
 *
 *     AttrPosX, AttrPosY  the point, in the widget's layer
 *     AttrPercentage      RatioValue: the part in 8.8 fixed point, not in hundredths: 0 at first,
 *                         128 half way, 256 the point itself, more beyond it
 */
class KESTRIN_EXPORT MoveToModifier : public Modifier
{
public:
    /** Moves nothing. */
    MoveToModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _pos_x, _pos_y;
    RatioValue _percentage;
};

/**
 * Fades a widget with its distance from a point: its opacity falls in a straight line to 0 at the
 * span's end, in both directions. Beyond, it is left as it is, not 0.
 *
 *     AttrPosX, AttrPosY    the point, in the widget's layer
 *     AttrSpanX, AttrSpanY  distance, sideways and up and down, at which nothing is left; with 0
 *                           only widgets exactly beside, above or below the point are faded
 */
class KESTRIN_EXPORT FadingModifier : public Modifier
{
public:
    /** No span. */
    FadingModifier();
    void Modify(IWidget* widget) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

private:
    MetricValue _x, _y;
    MetricValue _width, _height;
};

/** @} */

} // namespace zelxxx

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

} // namespace zelxxx

/** What all widgets have in common. */
#pragma once

#include "dirty.h"
#include "tbase.h"
#include "vrel_kestrin_anim.h"

namespace zelxxx {

class Layer;
class Scene;
class WidgetBase;

/**
 * Counts what changes the shape of any tree: children that come, go or change places, depths,
 * modified copies that are made or given up. What an update derives from the shape it keeps until
 * the count differs, so that a frame costs by what changed and not by how many widgets there are.
 */
class TreeVersion
{
public:
    static void Raise() { ++_count; }

    /** A version older than every other. */
    TreeVersion() : _seen(_count - 1) {}
    bool IsCurrent() const { return _seen == _count; }
    void SetCurrent() { _seen = _count; }

private:
    inline static UInt32 _count = 0;
    UInt32 _seen;
};

/** The children of a layer, in paint order for equal depths; holds them. */
class WidgetCollection : public ZELCollection<WidgetCollection, WidgetBase, true>
{
    using Base = ZELCollection<WidgetCollection, WidgetBase, true>;

public:
    void AddElement(WidgetBase* element) { InsertElement(element, nullptr); }
    void InsertElement(WidgetBase* element, WidgetBase* successor)
    {
        TreeVersion::Raise();
        Base::InsertElement(element, successor);
    }
    void RemoveElement(WidgetBase* element)
    {
        TreeVersion::Raise();
        Base::RemoveElement(element);
    }
    bool UnlinkElement(ZELElement<WidgetCollection, WidgetBase>* element)
    {
        TreeVersion::Raise();
        return Base::UnlinkElement(element);
    }
    void ReleaseElements()
    {
        TreeVersion::Raise();
        Base::ReleaseElements();
    }
};

/**
 * The common part of every widget: attributes, place in the tree, change state, and the rectangles
 * it last occupied.
 *
 * A widget with modifiers, or in a layer with modifiers, has a modified copy: at each update the
 * copy takes the widget's attributes and the modifiers rewrite it. Everything after that reads the
 * copy, and the client's own values stay untouched.
 */
class WidgetBase : public ZELElement<WidgetCollection, WidgetBase>
{
public:
    /** Bits of DirtyState. */
    enum State
    {
        StateUnchanged = 0,
        StateSettled = 1,
        StateMoved = 2,
        StateReordered = 4,
        StateFaded = 8,
        StateScaled = 16,
        StateChanged = 32
    };

    WidgetBase();
    virtual ~WidgetBase();

    /** A new widget of the same class with this one's attributes, or null. */
    virtual WidgetBase* Clone();
    /** Takes over geometry, depth and opacity; not the blend mode, order or state. */
    virtual void Copy(WidgetBase* widget);
    /** Turns the pending change marks into dirty rectangles. */
    virtual void Dirty(DirtyManager* dirty);
    /** Draws the widget through the scene's current painter; magenta marks a class without one. */
    virtual void Paint();

    /** References of the widget's interface object. */
    int Hold();
    int Release();

    void SetSettled() { Mark(StateSettled); }
    void SetMoved() { Mark(StateMoved); }
    void SetReordered() { Mark(StateReordered); }
    void SetFaded() { Mark(StateFaded); }
    void SetScaled() { Mark(StateScaled); }
    void SetChanged() { Mark(StateChanged); }

    void AddModifier(ModifierBase* modifier);
    void RemoveModifier(ModifierBase* modifier);
    /** Makes the modified copy if there is none and the class can be cloned. */
    void CreateModified();
    /** Gives the copy up, unless modifiers are left. */
    void DestroyModified();

    /** Puts the widget, and a layer's children with it, into a scene's paint list, or into none. */
    void SetScene(Scene* scene);
    /** Takes a layer for the widget's own, or none. A layer that goes is taken back. */
    void SetParentLayer(Layer* layer);

    /** Stores an attribute that every widget answers, and marks the widget; ignores all others. */
    void SetCommonAttribute(AttrIndex index, AttrValue value);
    /** Reads an attribute that every widget answers; 0 for all others. */
    AttrValue GetCommonAttribute(AttrIndex index) const;

    /** Follows a change of the parent layer's span. The caller marks the widget. */
    void AnchorX(MetricValue delta);
    void AnchorY(MetricValue delta);

    /** Resets the modified copies and runs the modifiers. */
    void Modify();
    /** Runs this widget's modifiers, in order of attachment, on a copy. */
    void ApplyModifiers(WidgetBase* copy) const;
    /** Takes the depth and tree position of this update, and its place in the paint list. */
    void Sort();
    /** Whether the depth is still that of the layer, the attributes and the modifiers. */
    bool IsSorted() const;
    /** Removes what is ready to be removed; true when nothing in here waits any more. */
    bool Kill();

    /** The modified copy if there is one, else the widget. */
    WidgetBase* Effective() { return Modified ? Modified : this; }

    bool IsLayer;
    bool IsVisible;
    bool IsEven; /**< the widget has no scale of its own and shows the same wherever its bound is */
    UInt8 Existence; /**< 0 normal, 1 removal requested, 2 ready to be removed */
    Scene* ParentScene;
    Layer* ParentLayer;
    UInt8 Anchors;
    MetricValue PosX, PosY, PosZ;
    MetricValue SpanX, SpanY;
    MetricValue OriginX, OriginY;
    RatioValue ScaleX, ScaleY;
    BlendValue Blend;
    BlendModeValue BlendingMode;
    BlendValue BlendPainter;    /**< own opacity times the layer's */
    MetricValue ZOrder, TOrder; /**< scene-wide depth, and position in the tree */
    UInt8 DirtyState;
    DirtyRect DirtyBound; /**< last rectangle in scene coordinates */
    DirtyRect DirtyShown; /**< the same inside the layer's clip rectangle: what is on screen */
    RatioValue DirtyScaleX, DirtyScaleY;
    bool DirtyVisibility;
    BlendValue DirtyBlend; /**< opacity last shown */
    MetricValue DirtyZOrder, DirtyTOrder;
    WidgetBase* Next; /**< links of the scene's paint list */
    WidgetBase* Prev;
    WidgetBase* Modified;
    ModifierCollection Modifiers;

    static constexpr UInt32 kNoIndex = ~UInt32{0};
    UInt32 PaintIndex = kNoIndex;  /**< place in the scene's paint order */
    UInt32 MarkedIndex = kNoIndex; /**< place among the scene's marked widgets */

private:
    void ReleaseModified();
    void Mark(State state);
    void DirtyFaded();
    void DirtyScaled();
    void DirtyMoved(DirtyManager* dirty);
    bool DirtyReordered(DirtyManager* dirty);
};

/** Joins the common part to the interface object of a widget class. */
template <class I, class T>
class WidgetTemplate : public WidgetBase, public ZELObject<I, T>
{
public:
    ILayer* GetLayer() override;
    void SetVisibility(bool visible) override
    {
        if (visible == IsVisible)
            return;
        IsVisible = visible;
        SetFaded();
    }
    /** True requests removal and parks the widget; false completes it. */
    void SetRemoving(bool removing) override
    {
        if (removing)
            Existence = 1;
        else if (Existence == 1)
            Existence = 2;
    }
    void SetAnchors(UInt8 anchors) override { Anchors = anchors; }
    void AddModifier(IModifier* modifier) override
    {
        WidgetBase::AddModifier(SideOf<ModifierBase>(modifier));
    }
    void RemoveModifier(IModifier* modifier) override
    {
        WidgetBase::RemoveModifier(SideOf<ModifierBase>(modifier));
    }
};

/** The plain widget: the attributes that all widgets answer. */
class Widget : public WidgetTemplate<IWidget, Widget>
{
public:
    void SetAttribute(AttrIndex index, AttrValue value) override
    {
        SetCommonAttribute(index, value);
    }
    AttrValue GetAttribute(AttrIndex index) override { return GetCommonAttribute(index); }
};

/** The layer a widget is in, as its interface. */
ILayer* ToInterface(Layer* layer);

template <class I, class T>
ILayer* WidgetTemplate<I, T>::GetLayer()
{
    return ToInterface(ParentLayer);
}

} // namespace zelxxx

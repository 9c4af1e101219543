/** The container widget. */
#pragma once

#include "twidget.h"

#include <vector>

namespace zelxxx {

class Layer : public WidgetTemplate<ILayer, Layer>
{
public:
    Layer();
    ~Layer() override;

    WidgetBase* Clone() override;
    /** Also takes over clip edges, scroll and background; not the children. */
    void Copy(WidgetBase* source) override;
    void Paint() override;

    void SetVisibility(bool visible) override;
    /** The modifier acts on the children: each gets a modified copy. */
    void AddModifier(IModifier* modifier) override;
    void RemoveModifier(IModifier* modifier) override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

    void AddWidget(IWidget* widget) override;
    void InsertWidget(IWidget* widget, IWidget* widget_dest,
                      WidgetInstertPosition instert_position) override;
    void RemoveWidget(IWidget* widget) override;
    void EnableAnchors(bool enabled) override;
    void LayerToScene(MetricValue* x, MetricValue* y) override;
    void SceneToLayer(MetricValue* x, MetricValue* y) override;

    /** Computes offset, clip, opacity and scale of this layer and all layers in it. */
    void UpdateLayers();
    /** Modifies the children, each by its own modifiers and then its copy by this layer's. */
    void ModifyChildren();
    /** Passes a growth of the span on to the children anchored right or at the bottom. */
    void AnchorChildX(MetricValue delta);
    void AnchorChildY(MetricValue delta);
    /** Mark all descendants, depth first. Scaling marks them moved, too. */
    void SetChildMoved() { MarkChildren<&WidgetBase::SetMoved>(); }
    void SetChildReordered() { MarkChildren<&WidgetBase::SetReordered>(); }
    void SetChildFaded() { MarkChildren<&WidgetBase::SetFaded>(); }
    void SetChildScaled();

    // Effective values in scene coordinates, computed by UpdateLayers.
    MetricValue OffsetX, OffsetY; /**< origin of the content, scroll applied */
    MetricValue ClipLeft, ClipTop, ClipRight, ClipBottom;
    RatioValue LayerScaleX, LayerScaleY;
    BlendValue LayerBlend; /**< 0 when hidden */

    WidgetCollection Widgets;
    /**
     * Widgets that were inserted at no known position: they take this layer for theirs without
     * standing in its list. Not held; they come and go with the layer's scene.
     */
    std::vector<WidgetBase*> Strays;
    Layer* Original; /**< of a modified copy: the layer whose children are meant */

private:
    /** What an update asks of the children, kept while the tree is as it was. */
    struct Survey
    {
        TreeVersion version;
        std::vector<Layer*> layers;
        std::vector<WidgetBase*> modified; /**< with a copy, or layers that hold one that has */
    };

    const Survey& Surveyed();
    void ModifyChild(WidgetBase* child);
    WidgetBase* FirstChild() const;
    template <void (WidgetBase::*Mark)()>
    void MarkChildren();
    void Adopt(WidgetBase* widget);
    bool Place(WidgetBase* widget, WidgetBase* destination, WidgetInstertPosition position);
    void SetClipEdge(MetricValue& edge, AttrValue value);

    MetricValue _clip_left, _clip_top;     /**< relative to the left and top edge */
    MetricValue _clip_right, _clip_bottom; /**< relative to the scaled right and bottom edge */
    MetricValue _scroll_x, _scroll_y;
    ColorValue _bkgnd_color;
    BlendValue _bkgnd_blend; /**< multiplies with the layer's shown opacity */
    bool _enable_anchors;
    Survey _survey;
};

} // namespace zelxxx

#include "layer.h"

#include "tscene.h"

#include <algorithm>

namespace zelxxx {

namespace {

constexpr MetricValue kUnboundedSpan = 10000;

} // namespace

ILayer* zelCreateLayer(IResource*)
{
    return new Layer;
}

ILayer* ToInterface(Layer* layer)
{
    return layer;
}

Layer::Layer()
    : OffsetX(0), OffsetY(0), ClipLeft(0), ClipTop(0), ClipRight(0), ClipBottom(0),
      LayerScaleX(kRatioOne), LayerScaleY(kRatioOne), LayerBlend(255), Original(nullptr),
      _clip_left(0), _clip_top(0), _clip_right(0), _clip_bottom(0), _scroll_x(0), _scroll_y(0),
      _bkgnd_color(0), _bkgnd_blend(0), _enable_anchors(false)
{
    IsLayer = true;
    IsEven = true;
    SpanX = kUnboundedSpan;
    SpanY = kUnboundedSpan;
}

Layer::~Layer()
{
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement()) {
        child->DestroyModified();
        child->SetScene(nullptr);
        child->SetParentLayer(nullptr);
    }
    while (!Strays.empty()) {
        WidgetBase* stray = Strays.back();
        stray->SetScene(nullptr);
        stray->SetParentLayer(nullptr);
    }
    Widgets.ReleaseElements();
}

WidgetBase* Layer::Clone()
{
    Layer* clone = new Layer;
    clone->Copy(this);
    return clone;
}

void Layer::Copy(WidgetBase* source)
{
    WidgetBase::Copy(source);
    const Layer* layer = static_cast<const Layer*>(source);
    _clip_left = layer->_clip_left;
    _clip_top = layer->_clip_top;
    _clip_right = layer->_clip_right;
    _clip_bottom = layer->_clip_bottom;
    _scroll_x = layer->_scroll_x;
    _scroll_y = layer->_scroll_y;
    _bkgnd_color = layer->_bkgnd_color;
    _bkgnd_blend = layer->_bkgnd_blend;
}

void Layer::Paint()
{
    const Layer* source = static_cast<const Layer*>(Effective());
    ParentScene->CurrentPainter->DrawRectangle(
        DirtyShown.x1, DirtyShown.y1, Wrap(DirtyShown.x2 - DirtyShown.x1),
        Wrap(DirtyShown.y2 - DirtyShown.y1), source->_bkgnd_color,
        CombineBlends(DirtyBlend, source->_bkgnd_blend), static_cast<BlendMode>(BlendingMode),
        NoBlit, 0);
}

void Layer::SetVisibility(bool visible)
{
    if (visible == IsVisible)
        return;
    IsVisible = visible;
    SetFaded();
    SetChildFaded();
    // Nested layers follow; other children are hidden through the layer's opacity.
    for (WidgetBase* child = FirstChild(); child; child = child->GetNextElement()) {
        if (child->IsLayer)
            static_cast<Layer*>(child)->SetVisibility(visible);
    }
}

void Layer::AddModifier(IModifier* modifier)
{
    ModifierBase* base = SideOf<ModifierBase>(modifier);
    Modifiers.AddElement(base);
    base->Widget = this;
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement()) {
        child->CreateModified();
        child->SetMoved();
    }
}

void Layer::RemoveModifier(IModifier* modifier)
{
    ModifierBase* base = SideOf<ModifierBase>(modifier);
    if (!base || base->GetCollection() != &Modifiers)
        return;
    WidgetBase::RemoveModifier(base);
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement()) {
        if (!Modifiers.GetFirstElement())
            child->DestroyModified();
        child->SetMoved();
    }
}

void Layer::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
    case AttrPosY:
    case AttrOriginX:
    case AttrOriginY:
        SetCommonAttribute(index, value);
        SetChildMoved();
        break;
    case AttrPosZ:
        SetCommonAttribute(index, value);
        SetChildReordered();
        break;
    case AttrSpanX:
        if (_enable_anchors)
            AnchorChildX(Wrap(Wrap(value) - SpanX));
        SetCommonAttribute(index, value);
        SetChildMoved();
        break;
    case AttrSpanY:
        if (_enable_anchors)
            AnchorChildY(Wrap(Wrap(value) - SpanY));
        SetCommonAttribute(index, value);
        SetChildMoved();
        break;
    case AttrScaleX: // the layer itself is not marked: only its content is scaled
        SetChildScaled();
        ScaleX = static_cast<RatioValue>(value);
        break;
    case AttrScaleY:
        SetChildScaled();
        ScaleY = static_cast<RatioValue>(value);
        break;
    case AttrScrollX: // the layer itself stays where it is
        _scroll_x = Wrap(value);
        SetChildMoved();
        break;
    case AttrScrollY:
        _scroll_y = Wrap(value);
        SetChildMoved();
        break;
    case AttrClipLeft:
        SetClipEdge(_clip_left, value);
        break;
    case AttrClipTop:
        SetClipEdge(_clip_top, value);
        break;
    case AttrClipRight:
        SetClipEdge(_clip_right, value);
        break;
    case AttrClipBottom:
        SetClipEdge(_clip_bottom, value);
        break;
    case AttrBlend:
        SetCommonAttribute(index, value);
        SetChildFaded();
        break;
    case AttrBkgndColor:
        _bkgnd_color = static_cast<ColorValue>(value);
        SetChanged();
        break;
    case AttrBkgndBlend:
        _bkgnd_blend = static_cast<BlendValue>(value);
        SetChanged();
        break;
    default:
        SetCommonAttribute(index, value);
        break;
    }
}

AttrValue Layer::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrScrollX:
        return _scroll_x;
    case AttrScrollY:
        return _scroll_y;
    case AttrBkgndColor:
        return static_cast<AttrValue>(_bkgnd_color);
    case AttrBkgndBlend:
        return _bkgnd_blend;
    default: // the clip edges are not readable
        return GetCommonAttribute(index);
    }
}

void Layer::AddWidget(IWidget* widget)
{
    WidgetBase* base = SideOf<WidgetBase>(widget);
    Widgets.AddElement(base);
    Adopt(base);
}

void Layer::InsertWidget(IWidget* widget, IWidget* widget_dest,
                         WidgetInstertPosition instert_position)
{
    if (widget == widget_dest)
        return;
    WidgetBase* base = SideOf<WidgetBase>(widget);
    WidgetBase* destination = SideOf<WidgetBase>(widget_dest);
    if (!Place(base, destination, instert_position))
        return;
    if (base)
        base->SetChanged();
    if (destination)
        destination->SetChanged();
    // Also when the position is none of the known ones: the widget then takes itself for a child.
    if (base)
        Adopt(base);
}

/** Links a widget at its place in the list; false when nothing at all is to happen. */
bool Layer::Place(WidgetBase* widget, WidgetBase* destination, WidgetInstertPosition position)
{
    WidgetBase* const head = Widgets.GetFirstElement();
    switch (position) {
    case InsertFirst:
        if (!widget)
            return head != nullptr;
        if (widget != head)
            Widgets.InsertElement(widget, head);
        break;
    case InsertLast:
        if (widget)
            Widgets.AddElement(widget);
        break;
    case InsertBefore:
        if (!destination)
            return false;
        if (widget)
            Widgets.InsertElement(widget, destination);
        break;
    case InsertBehind:
        if (!destination)
            return false;
        if (widget) {
            const bool is_child = destination->GetCollection() == &Widgets;
            WidgetBase* successor = is_child ? destination->GetNextElement() : nullptr;
            if (successor != widget)
                Widgets.InsertElement(widget, successor);
        }
        break;
    default:
        break;
    }
    return true;
}

void Layer::Adopt(WidgetBase* widget)
{
    widget->Existence = 0;
    widget->SetParentLayer(this);
    widget->SetScene(ParentScene);
    if (Modifiers.GetFirstElement())
        widget->CreateModified();
}

void Layer::RemoveWidget(IWidget* widget)
{
    WidgetBase* base = SideOf<WidgetBase>(widget);
    if (base && base->Existence == 0)
        base->Existence = 2;
    if (ParentScene) {
        ParentScene->SetWidgetDying();
        return;
    }
    if (!base || base->GetCollection() != &Widgets)
        return;
    base->SetParentLayer(nullptr);
    Widgets.RemoveElement(base);
}

void Layer::EnableAnchors(bool enabled)
{
    _enable_anchors = enabled;
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement()) {
        if (child->IsLayer)
            static_cast<Layer*>(child)->EnableAnchors(enabled);
    }
}

void Layer::LayerToScene(MetricValue* x, MetricValue* y)
{
    for (const Layer* layer = this; layer; layer = layer->ParentLayer) {
        *x = Wrap(*x + layer->PosX - layer->_scroll_x - layer->OriginX);
        *y = Wrap(*y + layer->PosY - layer->_scroll_y - layer->OriginY);
    }
}

void Layer::SceneToLayer(MetricValue* x, MetricValue* y)
{
    // Origins are left out, so this does not undo LayerToScene; callers count on both as they are.
    for (const Layer* layer = this; layer; layer = layer->ParentLayer) {
        *x = Wrap(*x + layer->_scroll_x - layer->PosX);
        *y = Wrap(*y + layer->_scroll_y - layer->PosY);
    }
}

void Layer::UpdateLayers()
{
    // The root layer keeps what its scene set.
    if (const Layer* parent = ParentLayer) {
        const Layer& source = *static_cast<const Layer*>(Effective());
        OffsetX = Wrap(parent->OffsetX + source.PosX - Scale(source.OriginX, source.ScaleX));
        OffsetY = Wrap(parent->OffsetY + source.PosY - Scale(source.OriginY, source.ScaleY));

        ClipLeft = Wrap(OffsetX + source._clip_left);
        ClipTop = Wrap(OffsetY + source._clip_top);
        ClipRight = Wrap(OffsetX + source._clip_right + Scale(source.SpanX, source.ScaleX));
        ClipBottom = Wrap(OffsetY + source._clip_bottom + Scale(source.SpanY, source.ScaleY));
        ClipLeft = std::max(ClipLeft, parent->ClipLeft);
        ClipTop = std::max(ClipTop, parent->ClipTop);
        ClipRight = std::min(ClipRight, parent->ClipRight);
        ClipBottom = std::min(ClipBottom, parent->ClipBottom);

        // Scrolling moves the content, not the clip rectangle.
        OffsetX = Wrap(OffsetX - source._scroll_x);
        OffsetY = Wrap(OffsetY - source._scroll_y);

        LayerBlend = IsVisible ? CombineBlends(source.Blend, parent->LayerBlend) : 0;
        LayerScaleX = source.ScaleX == kRatioOne
                          ? parent->LayerScaleX
                          : CombineRatios(source.ScaleX, parent->LayerScaleX);
        LayerScaleY = source.ScaleY == kRatioOne
                          ? parent->LayerScaleY
                          : CombineRatios(source.ScaleY, parent->LayerScaleY);
    }
    for (Layer* layer : Surveyed().layers)
        layer->UpdateLayers();
}

const Layer::Survey& Layer::Surveyed()
{
    if (_survey.version.IsCurrent())
        return _survey;
    _survey.layers.clear();
    _survey.modified.clear();
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement()) {
        bool is_modified = child->Modified != nullptr;
        if (child->IsLayer) {
            auto* layer = static_cast<Layer*>(child);
            _survey.layers.push_back(layer);
            is_modified = is_modified || !layer->Surveyed().modified.empty();
        }
        if (is_modified)
            _survey.modified.push_back(child);
    }
    _survey.version.SetCurrent();
    return _survey;
}

void Layer::ModifyChildren()
{
    const Survey& survey = Surveyed();
    const TreeVersion version = survey.version;
    for (std::size_t i = 0; i < survey.modified.size(); ++i) {
        WidgetBase* child = survey.modified[i];
        ModifyChild(child);
        if (version.IsCurrent())
            continue;
        // A modifier is a client's and may do anything: what it did counts from the next child on.
        while ((child = child->GetNextElement()))
            ModifyChild(child);
        return;
    }
}

void Layer::ModifyChild(WidgetBase* child)
{
    child->Modify();
    // A layer's own modifiers act on its children's copies, not on its own copy.
    if (child->Modified)
        ApplyModifiers(child->Modified);
}

void Layer::AnchorChildX(MetricValue delta)
{
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement())
        child->AnchorX(delta);
}

void Layer::AnchorChildY(MetricValue delta)
{
    for (WidgetBase* child = Widgets.GetFirstElement(); child; child = child->GetNextElement())
        child->AnchorY(delta);
}

void Layer::SetClipEdge(MetricValue& edge, AttrValue value)
{
    edge = Wrap(value);
    SetMoved();
    SetChildMoved();
}

void Layer::SetChildScaled()
{
    for (WidgetBase* child = FirstChild(); child; child = child->GetNextElement()) {
        child->SetScaled();
        child->SetMoved();
        if (child->IsLayer)
            static_cast<Layer*>(child)->SetChildScaled();
    }
}

/** First of the children that are meant: a modified copy has none of its own. */
WidgetBase* Layer::FirstChild() const
{
    return (Original ? Original : this)->Widgets.GetFirstElement();
}

template <void (WidgetBase::*Mark)()>
void Layer::MarkChildren()
{
    for (WidgetBase* child = FirstChild(); child; child = child->GetNextElement()) {
        (child->*Mark)();
        if (child->IsLayer)
            static_cast<Layer*>(child)->MarkChildren<Mark>();
    }
}

} // namespace zelxxx

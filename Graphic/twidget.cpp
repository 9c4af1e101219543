#include "twidget.h"

#include "layer.h"
#include "tscene.h"

#include <algorithm>

namespace zelxxx {

namespace {

bool operator==(const DirtyRect& a, const DirtyRect& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

} // namespace

WidgetBase::WidgetBase()
    : IsLayer(false), IsVisible(true), IsEven(false), Existence(0), ParentScene(nullptr),
      ParentLayer(nullptr), Anchors(AnchorLeft | AnchorTop), PosX(0), PosY(0), PosZ(0), SpanX(0),
      SpanY(0), OriginX(0), OriginY(0), ScaleX(kRatioOne), ScaleY(kRatioOne), Blend(255),
      BlendingMode(BlendSrcOver), BlendPainter(255), ZOrder(32767), TOrder(32767),
      DirtyState(StateUnchanged), DirtyBound(), DirtyShown(), DirtyScaleX(kRatioOne),
      DirtyScaleY(kRatioOne), DirtyVisibility(true), DirtyBlend(255), DirtyZOrder(32767),
      DirtyTOrder(32767), Next(nullptr), Prev(nullptr), Modified(nullptr)
{
}

WidgetBase::~WidgetBase()
{
    if (ParentScene)
        ParentScene->RemoveWidget(this);
    SetParentLayer(nullptr);
    ReleaseModified();
    for (ModifierBase* modifier = Modifiers.GetFirstElement(); modifier;
         modifier = modifier->GetNextElement())
        modifier->Widget = nullptr;
    Modifiers.ReleaseElements();
}

WidgetBase* WidgetBase::Clone()
{
    return nullptr;
}

void WidgetBase::Copy(WidgetBase* widget)
{
    PosX = widget->PosX;
    PosY = widget->PosY;
    PosZ = widget->PosZ;
    OriginX = widget->OriginX;
    OriginY = widget->OriginY;
    ScaleX = widget->ScaleX;
    ScaleY = widget->ScaleY;
    SpanX = widget->SpanX;
    SpanY = widget->SpanY;
    Blend = widget->Blend;
}

void WidgetBase::Dirty(DirtyManager* dirty)
{
    if (DirtyState == StateUnchanged)
        return;
    if (DirtyState & StateFaded)
        DirtyFaded();
    if (DirtyState & StateScaled)
        DirtyScaled();
    if (DirtyState & (StateScaled | StateMoved))
        DirtyMoved(dirty);
    if ((DirtyState & StateReordered) && DirtyReordered(dirty))
        return;
    if (DirtyState != StateUnchanged)
        dirty->Add(DirtyShown);
}

/** Keeps the mark only if opacity or visibility differs from what was last shown. */
void WidgetBase::DirtyFaded()
{
    BlendPainter = CombineBlends(ParentLayer->LayerBlend, Effective()->Blend);
    if (BlendPainter == DirtyBlend && IsVisible == DirtyVisibility) {
        DirtyState &= ~StateFaded;
        return;
    }
    // What was invisible may have moved meanwhile.
    if (DirtyBlend == 0)
        DirtyState |= StateMoved;
    DirtyVisibility = IsVisible;
    DirtyBlend = BlendPainter;
}

/** Keeps the mark only if the scale differs from what was last shown. */
void WidgetBase::DirtyScaled()
{
    if (!IsEven) {
        const WidgetBase* source = Effective();
        RatioValue scale_x = source->ScaleX;
        RatioValue scale_y = source->ScaleY;
        if (ParentLayer->LayerScaleX != kRatioOne)
            scale_x = CombineRatios(scale_x, ParentLayer->LayerScaleX);
        if (ParentLayer->LayerScaleY != kRatioOne)
            scale_y = CombineRatios(scale_y, ParentLayer->LayerScaleY);
        if (scale_x != DirtyScaleX || scale_y != DirtyScaleY) {
            DirtyScaleX = scale_x;
            DirtyScaleY = scale_y;
            return;
        }
    }
    DirtyState &= ~StateScaled;
}

/** Places the widget. If what is on screen differs, its old area becomes dirty. */
void WidgetBase::DirtyMoved(DirtyManager* dirty)
{
    const WidgetBase* source = Effective();
    const Layer& layer = *ParentLayer;
    DirtyRect bound;
    bound.x1 = Wrap(layer.OffsetX + Scale(Wrap(source->PosX - source->OriginX), layer.LayerScaleX));
    bound.y1 = Wrap(layer.OffsetY + Scale(Wrap(source->PosY - source->OriginY), layer.LayerScaleY));
    bound.x2 = Wrap(bound.x1 + Scale(source->SpanX, layer.LayerScaleX));
    bound.y2 = Wrap(bound.y1 + Scale(source->SpanY, layer.LayerScaleY));
    const DirtyRect shown = {std::max(bound.x1, layer.ClipLeft), std::max(bound.y1, layer.ClipTop),
                             std::min(bound.x2, layer.ClipRight),
                             std::min(bound.y2, layer.ClipBottom)};

    if (shown == DirtyShown) {
        DirtyState &= ~StateMoved;
        if (!IsEven && !(bound == DirtyBound))
            DirtyState |= StateChanged;
    } else {
        dirty->Add(DirtyShown);
        DirtyShown = shown;
    }
    DirtyBound = bound;
}

/** Keeps the mark only if the order differs from what was last shown; true when it does. */
bool WidgetBase::DirtyReordered(DirtyManager* dirty)
{
    if (ZOrder == DirtyZOrder && TOrder == DirtyTOrder) {
        DirtyState &= ~StateReordered;
        return false;
    }
    DirtyZOrder = ZOrder;
    DirtyTOrder = TOrder;
    dirty->Add(DirtyShown);
    return true;
}

void WidgetBase::Paint()
{
    ParentScene->CurrentPainter->DrawRectangle(
        DirtyShown.x1, DirtyShown.y1, Wrap(DirtyShown.x2 - DirtyShown.x1),
        Wrap(DirtyShown.y2 - DirtyShown.y1), 0xFF00FF, DirtyBlend,
        static_cast<BlendMode>(BlendingMode), NoBlit, 0);
}

int WidgetBase::Hold()
{
    return SideOf<IZELObject>(this)->Hold();
}

int WidgetBase::Release()
{
    return SideOf<IZELObject>(this)->Release();
}

void WidgetBase::Mark(State state)
{
    DirtyState |= state;
    if (!ParentScene)
        return;
    ParentScene->SetDirty();
    ParentScene->AddMarked(this);
    if (state == StateReordered)
        TreeVersion::Raise();
}

void WidgetBase::AddModifier(ModifierBase* modifier)
{
    Modifiers.AddElement(modifier);
    CreateModified();
    modifier->Widget = this;
}

void WidgetBase::RemoveModifier(ModifierBase* modifier)
{
    if (!modifier || modifier->GetCollection() != &Modifiers)
        return;
    modifier->Widget = nullptr;
    Modifiers.RemoveElement(modifier);
}

void WidgetBase::CreateModified()
{
    if (Modified)
        return;
    Modified = Clone();
    if (!Modified)
        return;
    TreeVersion::Raise();
    Modified->Hold();
    if (IsLayer)
        static_cast<Layer*>(Modified)->Original = static_cast<Layer*>(this);
}

void WidgetBase::DestroyModified()
{
    if (!Modifiers.GetFirstElement())
        ReleaseModified();
}

void WidgetBase::ReleaseModified()
{
    if (!Modified)
        return;
    // A modifier may have held the copy; it must not look for this widget's children any more.
    if (Modified->IsLayer)
        static_cast<Layer*>(Modified)->Original = nullptr;
    TreeVersion::Raise();
    Modified->Release();
    Modified = nullptr;
}

void WidgetBase::SetScene(Scene* scene)
{
    if (scene != ParentScene) {
        if (ParentScene)
            ParentScene->RemoveWidget(this);
        ParentScene = scene;
        if (scene) {
            scene->AddWidget(this);
            SetSettled();
        }
    }
    if (!IsLayer)
        return;
    const Layer* layer = static_cast<Layer*>(this);
    for (WidgetBase* child = layer->Widgets.GetFirstElement(); child;
         child = child->GetNextElement())
        child->SetScene(scene);
    for (WidgetBase* stray : layer->Strays)
        stray->SetScene(scene);
}

void WidgetBase::SetParentLayer(Layer* layer)
{
    if (ParentLayer) {
        auto& strays = ParentLayer->Strays;
        strays.erase(std::remove(strays.begin(), strays.end(), this), strays.end());
    }
    ParentLayer = layer;
    if (layer && GetCollection() != &layer->Widgets)
        layer->Strays.push_back(this);
}

void WidgetBase::AnchorX(MetricValue delta)
{
    if (!(Anchors & AnchorRight))
        return;
    if (!(Anchors & AnchorLeft)) {
        PosX = Wrap(PosX + delta);
        return;
    }
    SpanX = Wrap(SpanX + delta);
    if (IsLayer)
        static_cast<Layer*>(this)->AnchorChildX(delta);
}

void WidgetBase::AnchorY(MetricValue delta)
{
    if (!(Anchors & AnchorBottom))
        return;
    if (!(Anchors & AnchorTop)) {
        PosY = Wrap(PosY + delta);
        return;
    }
    SpanY = Wrap(SpanY + delta);
    // A layer that grows downwards passes the growth on as a horizontal one: clients' layouts
    // depend on it.
    if (IsLayer)
        static_cast<Layer*>(this)->AnchorChildX(delta);
}

void WidgetBase::Modify()
{
    if (IsLayer) {
        static_cast<Layer*>(this)->ModifyChildren();
        if (Modified)
            Modified->Copy(this);
    } else if (Modified) {
        Modified->Copy(this);
        ApplyModifiers(Modified);
    }
}

void WidgetBase::ApplyModifiers(WidgetBase* copy) const
{
    ModifierBase* modifier = Modifiers.GetFirstElement();
    if (!modifier)
        return;
    IWidget* widget = SideOf<IWidget>(copy);
    for (; modifier; modifier = modifier->GetNextElement())
        modifier->Modify(widget);
}

void WidgetBase::Sort()
{
    // The root has no layer; a child that takes another layer for its own may have no scene.
    if (ParentLayer && ParentScene) {
        const MetricValue depth = Wrap(ParentLayer->ZOrder + Effective()->PosZ);
        const MetricValue sequence = ParentScene->CurrentTOrder;
        ParentScene->CurrentTOrder = Wrap(sequence + 1);
        if (ZOrder != depth || TOrder != sequence) {
            ZOrder = depth;
            TOrder = sequence;
            ParentScene->SortWidget(this);
        }
    }
    if (!IsLayer)
        return;
    for (WidgetBase* child = static_cast<Layer*>(this)->Widgets.GetFirstElement(); child;
         child = child->GetNextElement())
        child->Sort();
}

bool WidgetBase::IsSorted() const
{
    const WidgetBase* source = Modified ? Modified : this;
    return !ParentLayer || ZOrder == Wrap(ParentLayer->ZOrder + source->PosZ);
}

bool WidgetBase::Kill()
{
    if (Existence == 1)
        return false;
    bool finished = true;
    if (IsLayer) {
        WidgetBase* next = nullptr;
        for (WidgetBase* child = static_cast<Layer*>(this)->Widgets.GetFirstElement(); child;
             child = next) {
            next = child->GetNextElement();
            if (!child->Kill())
                finished = false;
        }
    }
    if (!finished)
        return false;
    if (Existence != 2 || !ParentLayer)
        return true;

    Hold();
    ParentLayer->Widgets.RemoveElement(this);
    DestroyModified();
    SetScene(nullptr);
    SetParentLayer(nullptr);
    Release();
    return true;
}

void WidgetBase::SetCommonAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        PosX = Wrap(value);
        SetMoved();
        break;
    case AttrPosY:
        PosY = Wrap(value);
        SetMoved();
        break;
    case AttrPosZ:
        PosZ = Wrap(value);
        SetReordered();
        break;
    case AttrSpanX:
        SpanX = Wrap(value);
        SetMoved();
        break;
    case AttrSpanY:
        SpanY = Wrap(value);
        SetMoved();
        break;
    case AttrOriginX:
        OriginX = Wrap(value);
        SetMoved();
        break;
    case AttrOriginY:
        OriginY = Wrap(value);
        SetMoved();
        break;
    case AttrScaleX:
        ScaleX = static_cast<RatioValue>(value);
        SetScaled();
        break;
    case AttrScaleY:
        ScaleY = static_cast<RatioValue>(value);
        SetScaled();
        break;
    case AttrBlend:
        Blend = static_cast<BlendValue>(value);
        SetFaded();
        break;
    case AttrBlendMode:
        BlendingMode = static_cast<BlendModeValue>(value);
        SetFaded();
        break;
    default:
        break;
    }
}

AttrValue WidgetBase::GetCommonAttribute(AttrIndex index) const
{
    switch (index) {
    case AttrPosX:
        return PosX;
    case AttrPosY:
        return PosY;
    case AttrPosZ:
        return PosZ;
    case AttrSpanX:
        return SpanX;
    case AttrSpanY:
        return SpanY;
    case AttrOriginX:
        return OriginX;
    case AttrOriginY:
        return OriginY;
    case AttrScaleX:
        return ScaleX;
    case AttrScaleY:
        return ScaleY;
    case AttrBlend:
        return Blend;
    case AttrBlendMode:
        return BlendingMode;
    default:
        return 0;
    }
}

} // namespace zelxxx

#include "tscene.h"
#include "twidget.h"
#include "vrel_kestrin_anim.h"

#include <cstdlib>

namespace zelxxx {

namespace {

MetricValue ReadMetric(IWidget* widget, AttrIndex index)
{
    return Wrap(widget->GetAttribute(index));
}

/** A point of one axis, a part of the way to a target. */
MetricValue MoveTo(MetricValue from, MetricValue target, RatioValue part)
{
    const Int32 way = target - from;
    return Wrap(from + (part == kRatioOne ? way : Multiply88(part, way)));
}

/** A band of one axis, before and after it is scaled. */
struct Band
{
    Band(MetricValue at, MetricValue span, MetricValue origin, RatioValue ratio)
        : start(at), end(Wrap(at + span)), new_start(start), new_end(end)
    {
        if (ratio == kRatioOne)
            return;
        const Int32 scale = Wrap(ratio);
        new_start = Wrap(start + origin - Multiply88(origin, scale));
        new_end = Wrap(new_start + Multiply88(scale, span));
    }

    /** Scaled inside the band; beyond it, shifted with its nearer end. */
    MetricValue Map(MetricValue at) const
    {
        if (at <= start)
            return Wrap(at + new_start - start);
        if (at < end)
            return Wrap(new_start + Multiply(new_end - new_start, at - start) / (end - start));
        return Wrap(at + new_end - end);
    }

    MetricValue start, end;
    MetricValue new_start, new_end;
};

/** A scale as seen from the eye, times a factor. */
UInt16 Project(UInt16 scale, MetricValue focus, Int32 distance, RatioValue ratio)
{
    Int32 projected = focus * scale / distance;
    if (ratio != kRatioOne)
        projected = Multiply88(projected, ratio);
    return static_cast<UInt16>(projected);
}

/** The opacity factor at a distance: 1.0 in the middle, 0 at the span's end. */
RatioValue FadeRatio(MetricValue distance, MetricValue span)
{
    return static_cast<RatioValue>(256 - distance * 256 / span);
}

} // namespace

ModifierBase::~ModifierBase() = default;

void ModifierBase::Modify(IWidget*) {}

int ModifierBase::Hold()
{
    return static_cast<Modifier*>(this)->ZELObject<IModifier, Modifier>::Hold();
}

int ModifierBase::Release()
{
    return static_cast<Modifier*>(this)->ZELObject<IModifier, Modifier>::Release();
}

void ModifierBase::SetDirty()
{
    if (Widget && Widget->ParentScene)
        Widget->ParentScene->SetDirty();
}

void Modifier::Enable(bool enabled)
{
    if (enabled == Enabled)
        return;
    Enabled = enabled;
    SetDirty();
}

TranslateModifier::TranslateModifier() : _dx(0), _dy(0), _dz(0) {}

void TranslateModifier::Modify(IWidget* widget)
{
    if (!Enabled)
        return;
    const MetricValue x = ReadMetric(widget, AttrPosX);
    const MetricValue y = ReadMetric(widget, AttrPosY);
    const MetricValue z = ReadMetric(widget, AttrPosZ);
    widget->SetAttribute(AttrPosX, Wrap(x + _dx));
    widget->SetAttribute(AttrPosY, Wrap(y + _dy));
    widget->SetAttribute(AttrPosZ, Wrap(z + _dz));
}

void TranslateModifier::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        _dx = Wrap(value);
        break;
    case AttrPosY:
        _dy = Wrap(value);
        break;
    case AttrPosZ:
        _dz = Wrap(value);
        break;
    default:
        return;
    }
    SetDirty();
}

AttrValue TranslateModifier::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrPosX:
        return _dx;
    case AttrPosY:
        return _dy;
    case AttrPosZ:
        return _dz;
    default:
        return 0;
    }
}

PerspectiveModifier::PerspectiveModifier()
    : _pos_x(0), _pos_y(0), _pos_z(0), _scale_x(0), _scale_y(0), _focus(1000)
{
}

void PerspectiveModifier::Modify(IWidget* widget)
{
    if (!Enabled)
        return;
    const MetricValue x = ReadMetric(widget, AttrPosX);
    const MetricValue y = ReadMetric(widget, AttrPosY);
    const MetricValue z = ReadMetric(widget, AttrPosZ);
    auto scale_x = static_cast<UInt16>(widget->GetAttribute(AttrScaleX));
    auto scale_y = static_cast<UInt16>(widget->GetAttribute(AttrScaleY));
    MetricValue new_x = _pos_x;
    MetricValue new_y = _pos_y;

    // In the plane of the eye there is no projection, and nothing is divided by.
    if (z != Wrap(_pos_z + _focus)) {
        const Int32 distance = _focus - Wrap(z - _pos_z);
        new_x = Wrap(_pos_x + Wrap(x - _pos_x) * _focus / distance);
        new_y = Wrap(_pos_y + Wrap(y - _pos_y) * _focus / distance);
        if (_scale_x != 0 && _scale_y != 0) {
            scale_x = Project(scale_x, _focus, distance, _scale_x);
            scale_y = Project(scale_y, _focus, distance, _scale_y);
        }
    }
    widget->SetAttribute(AttrPosX, new_x);
    widget->SetAttribute(AttrPosY, new_y);
    widget->SetAttribute(AttrScaleX, scale_x);
    widget->SetAttribute(AttrScaleY, scale_y);
}

void PerspectiveModifier::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        _pos_x = Wrap(value);
        break;
    case AttrPosY:
        _pos_y = Wrap(value);
        break;
    case AttrPosZ:
        _pos_z = Wrap(value);
        break;
    case AttrScaleX:
        _scale_x = static_cast<RatioValue>(value);
        break;
    case AttrScaleY:
        _scale_y = static_cast<RatioValue>(value);
        break;
    case AttrFocus:
        _focus = Wrap(value);
        break;
    default:
        return;
    }
    SetDirty();
}

AttrValue PerspectiveModifier::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrPosX:
        return _pos_x;
    case AttrPosY:
        return _pos_y;
    case AttrPosZ:
        return _pos_z;
    case AttrScaleX:
        return _scale_x;
    case AttrScaleY:
        return _scale_y;
    case AttrFocus:
        return _focus;
    default:
        return 0;
    }
}

SpaceScaleModifier::SpaceScaleModifier()
    : _x(0), _y(0), _width(0), _height(0), _origin_x(0), _origin_y(0), _scale_x(kRatioOne),
      _scale_y(kRatioOne)
{
}

void SpaceScaleModifier::Modify(IWidget* widget)
{
    if (!Enabled)
        return;
    const MetricValue x = ReadMetric(widget, AttrPosX);
    const MetricValue y = ReadMetric(widget, AttrPosY);
    if (_width != 0)
        widget->SetAttribute(AttrPosX, Band(_x, _width, _origin_x, _scale_x).Map(x));
    if (_height != 0)
        widget->SetAttribute(AttrPosY, Band(_y, _height, _origin_y, _scale_y).Map(y));
}

void SpaceScaleModifier::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        _x = Wrap(value);
        break;
    case AttrPosY:
        _y = Wrap(value);
        break;
    case AttrSpanX:
        _width = Wrap(value);
        break;
    case AttrSpanY:
        _height = Wrap(value);
        break;
    case AttrOriginX:
        _origin_x = Wrap(value);
        break;
    case AttrOriginY:
        _origin_y = Wrap(value);
        break;
    case AttrScaleX:
        _scale_x = static_cast<RatioValue>(value);
        break;
    case AttrScaleY:
        _scale_y = static_cast<RatioValue>(value);
        break;
    default:
        return;
    }
    SetDirty();
}

AttrValue SpaceScaleModifier::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrPosX:
        return _x;
    case AttrPosY:
        return _y;
    case AttrSpanX:
        return _width;
    case AttrSpanY:
        return _height;
    case AttrOriginX:
        return _origin_x;
    case AttrOriginY:
        return _origin_y;
    case AttrScaleX:
        return _scale_x;
    case AttrScaleY:
        return _scale_y;
    default:
        return 0;
    }
}

MoveToModifier::MoveToModifier() : _pos_x(0), _pos_y(0), _percentage(0) {}

void MoveToModifier::Modify(IWidget* widget)
{
    if (!Enabled)
        return;
    const MetricValue x = ReadMetric(widget, AttrPosX);
    const MetricValue y = ReadMetric(widget, AttrPosY);
    widget->SetAttribute(AttrPosX, MoveTo(x, _pos_x, _percentage));
    widget->SetAttribute(AttrPosY, MoveTo(y, _pos_y, _percentage));
}

void MoveToModifier::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        _pos_x = Wrap(value);
        break;
    case AttrPosY:
        _pos_y = Wrap(value);
        break;
    case AttrPercentage:
        _percentage = static_cast<RatioValue>(value);
        break;
    default:
        return;
    }
    SetDirty();
}

AttrValue MoveToModifier::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrPosX:
        return _pos_x;
    case AttrPosY:
        return _pos_y;
    case AttrPercentage:
        return _percentage;
    default:
        return 0;
    }
}

FadingModifier::FadingModifier() : _x(0), _y(0), _width(0), _height(0) {}

void FadingModifier::Modify(IWidget* widget)
{
    if (!Enabled)
        return;
    const MetricValue x = ReadMetric(widget, AttrPosX);
    const MetricValue y = ReadMetric(widget, AttrPosY);
    const MetricValue away_x = Wrap(std::abs(Wrap(x - _x)));
    const MetricValue away_y = Wrap(std::abs(Wrap(y - _y)));
    // Outside of the box the opacity is left alone, and not made 0: several may share a layer.
    if (_width < away_x || _height < away_y)
        return;
    Int32 blend = static_cast<UInt16>(widget->GetAttribute(AttrBlend));
    if (_width > 0) {
        const RatioValue ratio = FadeRatio(away_x, _width);
        if (ratio != kRatioOne)
            blend = Multiply88(ratio, blend);
    }
    if (_height > 0) {
        const RatioValue ratio = FadeRatio(away_y, _height);
        if (ratio != kRatioOne)
            blend = Multiply88(ratio, blend);
    }
    widget->SetAttribute(AttrBlend, blend);
}

void FadingModifier::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrPosX:
        _x = Wrap(value);
        break;
    case AttrPosY:
        _y = Wrap(value);
        break;
    case AttrSpanX:
        _width = Wrap(value);
        break;
    case AttrSpanY:
        _height = Wrap(value);
        break;
    default:
        return;
    }
    SetDirty();
}

AttrValue FadingModifier::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrPosX:
        return _x;
    case AttrPosY:
        return _y;
    case AttrSpanX:
        return _width;
    case AttrSpanY:
        return _height;
    default:
        return 0;
    }
}

} // namespace zelxxx

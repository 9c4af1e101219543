#include "trectangle.h"

#include "layer.h"
#include "tscene.h"

#include <algorithm>

namespace zelxxx {

IWidget* zelCreateRectangle(IResource*)
{
    return new Rectangle;
}

Rectangle::Rectangle()
    : _color(0), _color_border(0), _border_width(0), _border_blend(255), _blend_mode(BlendSrcOver),
      _blit_flag(NoBlit), _dst_color(0)
{
    IsEven = true;
}

WidgetBase* Rectangle::Clone()
{
    Rectangle* clone = new Rectangle;
    clone->Copy(this);
    return clone;
}

void Rectangle::Copy(WidgetBase* source)
{
    WidgetBase::Copy(source);
    _color = static_cast<const Rectangle*>(source)->_color;
}

void Rectangle::Paint()
{
    MetricValue x = Wrap(GetAttribute(AttrPosX) - GetAttribute(AttrOriginX));
    MetricValue y = Wrap(GetAttribute(AttrPosY) - GetAttribute(AttrOriginY));
    const MetricValue w = Wrap(GetAttribute(AttrSpanX));
    const MetricValue h = Wrap(GetAttribute(AttrSpanY));
    if (ILayer* layer = GetLayer())
        layer->LayerToScene(&x, &y);

    const MetricValue bw = _border_width;
    if (bw > 0 && bw <= w && _border_blend != 0 && bw <= h) {
        PaintBorder(x, y, w, h);
        // Also when nothing is left inside the border: the painter decides.
        PaintFill(std::max(DirtyShown.x1, Wrap(x + bw)), std::max(DirtyShown.y1, Wrap(y + bw)),
                  std::min(Wrap(x + w - bw), DirtyShown.x2),
                  std::min(Wrap(y + h - bw), DirtyShown.y2));
    } else {
        PaintFill(DirtyShown.x1, DirtyShown.y1, DirtyShown.x2, DirtyShown.y2);
    }
}

/**
 * The left and right bands over the full height, the top and bottom bands between them, so that no
 * pixel is painted twice.
 */
void Rectangle::PaintBorder(MetricValue x, MetricValue y, MetricValue w, MetricValue h) const
{
    const MetricValue bw = _border_width;
    IPainter* painter = ParentScene->CurrentPainter;
    const auto band = [&](Int32 left, Int32 top, Int32 width, Int32 height) {
        painter->DrawRectangle(Wrap(left), Wrap(top), Wrap(width), Wrap(height), _color_border,
                               _border_blend, static_cast<BlendMode>(_blend_mode), NoBlit, 0);
    };
    band(x, y, bw, h);
    band(x + w - bw, y, bw, h);
    band(x + bw, y, w - 2 * bw, bw);
    band(x + bw, y + h - bw, w - 2 * bw, bw);
}

void Rectangle::PaintFill(MetricValue x1, MetricValue y1, MetricValue x2, MetricValue y2) const
{
    ParentScene->CurrentPainter->DrawRectangle(x1, y1, Wrap(x2 - x1), Wrap(y2 - y1), _color,
                                               DirtyBlend, static_cast<BlendMode>(BlendingMode),
                                               _blit_flag, _dst_color);
}

void Rectangle::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrColor:
        _color = static_cast<ColorValue>(value);
        SetChanged();
        break;
    case AttrBorderWidth:
        _border_width = Wrap(value);
        SetChanged();
        break;
    case AttrBorderColor:
        _color_border = static_cast<ColorValue>(value);
        SetChanged();
        break;
    case AttrBorderBlend:
        _border_blend = static_cast<BlendValue>(value);
        SetFaded();
        break;
    case AttrBorderBlendMode:
        _blend_mode = static_cast<BlendModeValue>(value);
        SetFaded();
        break;
    case AttrBlittingFlag:
        _blit_flag = static_cast<BlitFlag>(value);
        SetFaded();
        break;
    case AttrDstColorKey:
        _dst_color = static_cast<ColorValue>(value);
        SetFaded();
        break;
    default:
        Widget::SetAttribute(index, value);
        break;
    }
}

AttrValue Rectangle::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrColor:
        return static_cast<AttrValue>(_color);
    case AttrBorderWidth:
        return _border_width;
    case AttrBorderColor:
        return static_cast<AttrValue>(_color_border);
    case AttrBorderBlend:
        return _border_blend;
    case AttrBorderBlendMode:
        return _blend_mode;
    default:
        return Widget::GetAttribute(index);
    }
}

} // namespace zelxxx

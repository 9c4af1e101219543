/** A filled rectangle with an optional border. */
#pragma once

#include "twidget.h"

namespace zelxxx {

class Rectangle : public Widget
{
public:
    Rectangle();

    WidgetBase* Clone() override;
    /** Takes over the fill colour, and neither border nor colour key. */
    void Copy(WidgetBase* source) override;
    void Paint() override;
    void SetAttribute(AttrIndex index, AttrValue value) override;
    /** The colour-key pair is write-only. */
    AttrValue GetAttribute(AttrIndex index) override;

private:
    void PaintBorder(MetricValue x, MetricValue y, MetricValue w, MetricValue h) const;
    void PaintFill(MetricValue x1, MetricValue y1, MetricValue x2, MetricValue y2) const;

    ColorValue _color;
    ColorValue _color_border;
    MetricValue _border_width; /**< in pixels, inside the span; 0 or less: no border */
    BlendValue _border_blend;
    BlendModeValue _blend_mode; /**< of the border; the fill has the widget's own */
    BlitFlag _blit_flag;
    ColorValue _dst_color;
};

} // namespace zelxxx

/** The sprite widget. */
#pragma once

#include "twidget.h"

namespace zelxxx {

/** Shows one frame of an image, placed in its bound or tiled over it. */
class Sprite : public WidgetTemplate<ISprite, Sprite>
{
public:
    explicit Sprite(IResource* resource);

    WidgetBase* Clone() override;
    /** Also takes over image number and frame; neither the image nor its format. */
    void Copy(WidgetBase* other) override;
    void Paint() override;

    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

    void SetImage(IImage* image) override;
    void UpdateImage() override { SetChanged(); }

private:
    PResource _resource;
    PImage _image;
    ResIndex _image_index;
    UInt32 _frame;
    ImageFormat _image_format;
};

} // namespace zelxxx

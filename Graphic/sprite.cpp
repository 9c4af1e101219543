#include "sprite.h"

#include "tscene.h"

#include <algorithm>

namespace zelxxx {

namespace {

/** Shown by a sprite of a resource until it has an image. */
constexpr ColorValue kNoImageColor = 0x00ff00ff;

/** One direction of an image in its bound. */
struct Placement
{
    MetricValue first, last; /**< what is shown, half open */
    MetricValue src, length; /**< which part of the image that is, in its own pixels */
};

/** A length on screen in pixels of the image. */
MetricValue Unscale(MetricValue length, RatioValue scale)
{
    if (scale == kRatioOne)
        return length;
    return scale == 0 ? MetricValue{0} : Wrap(length * 256 / scale);
}

/**
 * Places an image in one direction.
 *
 * @param size     of the image as shown
 * @param to_low   it stands at the bound's lower edge; goes before `to_high`
 * @param to_high  it stands at the upper edge; with neither, in the middle
 */
Placement Place(MetricValue low, MetricValue high, MetricValue size, bool to_low, bool to_high,
                RatioValue scale)
{
    MetricValue first = low;
    if (!to_low)
        first = to_high ? Wrap(high - size) : Wrap(low + (high - low - size) / 2);
    const MetricValue last = Wrap(first + size);
    Placement placement;
    placement.first = std::max(first, low);
    placement.last = std::min(last, high);
    placement.src = Unscale(Wrap(placement.first - first), scale);
    placement.length = Unscale(Wrap(placement.last - placement.first), scale);
    return placement;
}

} // namespace

Sprite::Sprite(IResource* resource)
    : _resource(resource), _image_index(0), _frame(0), _image_format(ImageAlignCenter)
{
}

WidgetBase* Sprite::Clone()
{
    Sprite* clone = new Sprite(_resource);
    clone->Copy(this);
    return clone;
}

void Sprite::Copy(WidgetBase* other)
{
    WidgetBase::Copy(other);
    const Sprite* sprite = static_cast<Sprite*>(other);
    _image_index = sprite->_image_index;
    _frame = sprite->_frame;
}

void Sprite::Paint()
{
    IPainter* painter = ParentScene->CurrentPainter;
    const auto blend_mode = static_cast<BlendMode>(BlendingMode);
    if (!_image) {
        if (_resource)
            painter->DrawRectangle(DirtyShown.x1, DirtyShown.y1,
                                   Wrap(DirtyShown.x2 - DirtyShown.x1),
                                   Wrap(DirtyShown.y2 - DirtyShown.y1), kNoImageColor, DirtyBlend,
                                   blend_mode, NoBlit, 0);
        return;
    }
    const auto frame = static_cast<UInt16>(static_cast<Sprite*>(Effective())->_frame);
    if (_image_format & ImageAlignTiling) {
        painter->DrawTexture(_image, frame, DirtyBound.x1, DirtyBound.y1,
                             Wrap(DirtyBound.x2 - DirtyBound.x1),
                             Wrap(DirtyBound.y2 - DirtyBound.y1), 0, 0, DirtyBlend, blend_mode);
        return;
    }
    const Placement h =
        Place(DirtyBound.x1, DirtyBound.x2, Scale(Wrap(_image->GetWidth()), DirtyScaleX),
              _image_format & ImageAlignLeft, _image_format & ImageAlignRight, DirtyScaleX);
    const Placement v =
        Place(DirtyBound.y1, DirtyBound.y2, Scale(Wrap(_image->GetHeight()), DirtyScaleY),
              _image_format & ImageAlignTop, _image_format & ImageAlignBottom, DirtyScaleY);
    painter->DrawImage(_image, frame, h.first, v.first, Wrap(h.last - h.first),
                       Wrap(v.last - v.first), h.src, v.src, h.length, v.length, DirtyBlend,
                       blend_mode);
}

void Sprite::SetAttribute(AttrIndex index, AttrValue value)
{
    switch (index) {
    case AttrImageIndex:
        _image_index = static_cast<ResIndex>(value);
        SetChanged();
        break;
    case AttrImageFrame:
        _frame = static_cast<UInt32>(value);
        SetChanged();
        break;
    case AttrImageFormat:
        _image_format = static_cast<ImageFormat>(value);
        SetChanged();
        break;
    default:
        SetCommonAttribute(index, value);
        break;
    }
}

AttrValue Sprite::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrImageIndex:
        return _image_index;
    case AttrImageFrame:
        return static_cast<AttrValue>(_frame);
    case AttrImageFormat:
        return _image_format;
    default:
        return GetCommonAttribute(index);
    }
}

void Sprite::SetImage(IImage* image)
{
    _image = image;
    SetChanged();
}

ISprite* zelCreateSprite(IResource* resource)
{
    return new Sprite(resource);
}

} // namespace zelxxx

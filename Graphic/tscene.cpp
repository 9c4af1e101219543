#include "tscene.h"

#include "DFB/painter.h"

#include <algorithm>

namespace zelxxx {

namespace {

constexpr UInt32 kFrameTicks = 20; // shortest time between two flips, in milliseconds

/** The rectangle around two; also one that is empty has its say. */
DirtyRect Around(const DirtyRect& a, const DirtyRect& b)
{
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

/** The rectangle around all rectangles it is given. */
class Enclosure : public IDirtyRectHandler
{
public:
    void HandleRect(const DirtyRect& rect) override
    {
        _box = IsEmpty() ? rect : Around(_box, rect);
    }
    bool IsEmpty() const { return _box.x1 >= _box.x2 || _box.y1 >= _box.y2; }
    const DirtyRect& Box() const { return _box; }

private:
    DirtyRect _box = {};
};

/** Whether a widget paints before another: by depth, then by place in the tree. */
bool PaintsBefore(const WidgetBase* a, const WidgetBase* b)
{
    return a->ZOrder < b->ZOrder || (a->ZOrder == b->ZOrder && a->TOrder < b->TOrder);
}

} // namespace

Scene* Scene::_all_scenes = nullptr;
Int32 Scene::_back_buffer_col_count = 1;
Int32 Scene::_back_buffer_row_count = 1;
UInt32 Scene::_tick_start = 0;
UInt32 Scene::_tick_stop = 0;

IScene* zelCreateScene(UInt8 window_index, MetricValue width, MetricValue height,
                       ColorMode color_mode, SceneOption options, BlendMode blend_mode)
{
    return new Scene(window_index, width, height, color_mode, options, blend_mode);
}

void zelUpdateScreen(bool force, bool wait)
{
    Scene::UpdateAllScenes(force, wait);
}

void zelSetBackBufferSize(int row_count, int col_count)
{
    Scene::SetBackBufferSize(row_count, col_count);
}

Scene::Scene(UInt8 window_index, MetricValue width, MetricValue height, ColorMode color_mode,
             SceneOption options, BlendMode blend_mode)
    : CurrentTOrder(0), CurrentPainter(nullptr), _root(zelCreateLayer(nullptr)), _width(width),
      _height(height), _options(options), _back_color(0), _back_blend(0), _blend_mode(blend_mode),
      _back_rect(), _widget_dying(false), _dirty(true), _enabled(true), _update_phase(UpdateClear),
      _widget_list_head(nullptr), _widget_list_tail(nullptr), _current_widget(nullptr),
      _prev_scene(nullptr), _next_scene(nullptr)
{
    MakeSurfaces(window_index, color_mode);
    _dirty_manager.reset(new DirtyManager(static_cast<UInt16>(width), static_cast<UInt16>(height)));

    _next_scene = _all_scenes;
    if (_all_scenes)
        _all_scenes->_prev_scene = this;
    _all_scenes = this;

    PrepareRoot();
}

Scene::~Scene()
{
    (_prev_scene ? _prev_scene->_next_scene : _all_scenes) = _next_scene;
    if (_next_scene)
        _next_scene->_prev_scene = _prev_scene;

    // The widgets leave while the dirty manager still takes their reports, and nobody who holds the
    // root or a widget is left with a pointer to this scene.
    // The root is in no paint list, so it does not leave one.
    Layer* root = Root();
    root->ParentScene = nullptr;
    root->SetScene(nullptr);
    _root = nullptr;
}

/** Makes the view, and the canvas: the view itself or a back buffer of one tile. */
void Scene::MakeSurfaces(UInt8 window_index, ColorMode color_mode)
{
    const bool flipping = (_options & SceneUseFlipping) != 0;
    if (!flipping) {
        if (_back_buffer_col_count <= 0 || _width % _back_buffer_col_count != 0)
            _back_buffer_col_count = 1;
        if (_back_buffer_row_count <= 0 || _height % _back_buffer_row_count != 0)
            _back_buffer_row_count = 1;
    }
    _view = zelCreateView(window_index, _width, _height, color_mode, flipping);
    _view->SetBlendMode(_blend_mode);
    if (flipping) {
        _canvas = static_cast<IView*>(_view);
    } else if (_options & SceneUseSingleBuffer) {
        _back_buffer_col_count = 1;
        _back_buffer_row_count = 1;
        _canvas = static_cast<IView*>(_view);
    } else {
        _canvas =
            zelCreateCanvas(static_cast<MetricValue>(_width / _back_buffer_col_count),
                            static_cast<MetricValue>(_height / _back_buffer_row_count), color_mode);
        _canvas->SetBlendMode(_blend_mode);
    }
}

/** The root layer covers the scene and is not painted itself. */
void Scene::PrepareRoot()
{
    Layer* root = Root();
    root->ParentScene = this;
    root->SpanX = _width;
    root->SpanY = _height;
    root->ClipRight = _width;
    root->ClipBottom = _height;
    root->ZOrder = 0;
    root->TOrder = 0;
}

void Scene::Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
                  BlendValue blend)
{
    _view->Clear(x, y, w, h, color, blend);
}

void Scene::Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x,
                 MetricValue src_y, MetricValue src_w, MetricValue src_h)
{
    _view->Copy(x, y, canvas, src_x, src_y, src_w, src_h);
}

void Scene::Show(MetricValue left, MetricValue top, MetricValue width, MetricValue height)
{
    _view->Show(left, top, width, height);
}

void Scene::SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                       UInt16 blend_transparent)
{
    _view->SetPalette(palette, brightness, blend_opaque, blend_transparent);
}

void Scene::SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                            BlendValue blending)
{
    _view->SetPaletteEntry(color_index, red, green, blue, blending);
}

void Scene::SetBackgroundColor(ColorValue color, BlendValue blending)
{
    _back_color = color;
    _back_blend = blending;
}

void Scene::UpdateAllScenes(bool force, bool wait)
{
    for (Scene* scene = _all_scenes; scene; scene = scene->_next_scene)
        scene->Update(force, wait);
}

void Scene::SetBackBufferSize(int row_count, int col_count)
{
    _back_buffer_row_count = row_count;
    _back_buffer_col_count = col_count;
}

void Scene::AddWidget(WidgetBase* widget)
{
    widget->ZOrder = 32767;
    widget->TOrder = 32767;
    widget->DirtyState |=
        WidgetBase::StateMoved | WidgetBase::StateReordered | WidgetBase::StateFaded;
    // Shown with no opacity so far, so that its first Dirty takes it for appearing.
    widget->DirtyBlend = 0;
    LinkWidgetAfter(widget, _widget_list_tail);
    AddMarked(widget);
    TreeVersion::Raise();
}

void Scene::RemoveWidget(WidgetBase* widget)
{
    _dirty_manager->Add(widget->DirtyShown);
    UnlinkWidget(widget);
    if (widget->MarkedIndex != WidgetBase::kNoIndex)
        _marked[widget->MarkedIndex] = nullptr;
    widget->MarkedIndex = WidgetBase::kNoIndex;
    widget->PaintIndex = WidgetBase::kNoIndex;
    TreeVersion::Raise();
}

void Scene::SortWidget(WidgetBase* widget)
{
    WidgetBase* before = widget->Prev;
    while (before && !PaintsBefore(before, widget))
        before = before->Prev;
    if (before != widget->Prev) {
        UnlinkWidget(widget);
        LinkWidgetAfter(widget, before);
        return;
    }
    WidgetBase* last = widget;
    while (last->Next && !PaintsBefore(widget, last->Next))
        last = last->Next;
    if (last != widget) {
        UnlinkWidget(widget);
        LinkWidgetAfter(widget, last);
    }
}

void Scene::Update(bool force, bool wait)
{
    if (!_enabled)
        return;
    const bool flipping = (_options & SceneUseFlipping) != 0;
    if (flipping && !IsFrameDue(wait))
        return;
    if (force) {
        _dirty_manager->Fill();
    } else {
        if (!_dirty && !_widget_dying)
            return;
        if (flipping)
            _dirty_manager->Fill();
    }

    Layer* root = Root();
    if (_widget_dying && root->Kill())
        _widget_dying = false;
    root->Modify();
    root->UpdateLayers();
    if (force || !IsSorted())
        Sort();
    CurrentTOrder = _sequence_end;
    CollectDirtyRects();
    Paint();
    _dirty_manager->Clear();
}

/**
 * Paces a flipping scene to a frame per 20 ms: waits, busily, or says no. By difference, so that a
 * tick count that started anew in between counts as long ago.
 */
bool Scene::IsFrameDue(bool wait) const
{
    do {
        _tick_stop = zelGetTickCount();
        if (_tick_stop - _tick_start >= kFrameTicks)
            return true;
    } while (wait);
    return false;
}

/** Whether the paint list is still in order: no tree has changed, and no modifier a depth. */
bool Scene::IsSorted() const
{
    return _sorted.IsCurrent() &&
           std::all_of(_modified.begin(), _modified.end(),
                       [](const WidgetBase* widget) { return widget->IsSorted(); });
}

void Scene::Sort()
{
    CurrentTOrder = 0;
    Root()->Sort();
    _shown.clear();
    _modified.clear();
    for (WidgetBase* widget = _widget_list_head; widget; widget = widget->Next) {
        widget->PaintIndex = static_cast<UInt32>(_shown.size());
        _shown.push_back({widget->DirtyShown, widget});
        if (widget->Modified)
            _modified.push_back(widget);
    }
    _groups.resize((_shown.size() + kGroup - 1) / kGroup);
    for (std::size_t group = 0; group < _groups.size(); ++group)
        EncloseGroup(group);
    _sequence_end = CurrentTOrder;
    _sorted.SetCurrent();
}

/** Turns the marks into dirty rectangles, in paint order. */
void Scene::CollectDirtyRects()
{
    for (WidgetBase* widget : _modified) {
        // What modifiers did to the copy counts as done to the widget.
        widget->DirtyState |= widget->Modified->DirtyState;
        if (widget->DirtyState != WidgetBase::StateUnchanged)
            AddMarked(widget);
    }
    std::size_t count = 0;
    for (WidgetBase* widget : _marked) {
        if (!widget)
            continue;
        if (widget->PaintIndex != WidgetBase::kNoIndex)
            _marked[count++] = widget;
        else // the root, which is not painted
            widget->MarkedIndex = WidgetBase::kNoIndex;
    }
    _marked.resize(count);
    if (_marked.size() < _shown.size() / 8) {
        std::sort(_marked.begin(), _marked.end(), [](const WidgetBase* a, const WidgetBase* b) {
            return a->PaintIndex < b->PaintIndex;
        });
    } else {
        _marked.clear();
        for (const Shown& shown : _shown) {
            if (shown.widget->MarkedIndex != WidgetBase::kNoIndex)
                _marked.push_back(shown.widget);
        }
    }
    constexpr std::size_t none = ~std::size_t{0};
    std::size_t group = none;
    for (WidgetBase* widget : _marked) {
        const std::size_t next = widget->PaintIndex / kGroup;
        if (group != next && group != none)
            EncloseGroup(group);
        group = next;
        CollectDirtyRects(_shown[widget->PaintIndex]);
    }
    if (group != none)
        EncloseGroup(group);
    _marked.clear();
}

void Scene::CollectDirtyRects(Shown& shown)
{
    WidgetBase* widget = shown.widget;
    widget->Dirty(_dirty_manager.get());
    widget->DirtyState = WidgetBase::StateUnchanged;
    widget->MarkedIndex = WidgetBase::kNoIndex;
    shown.rect = widget->DirtyShown;
}

void Scene::Paint()
{
    CurrentPainter = zelCreatePainter(_canvas);
    CurrentPainter->Hold();
    CurrentPainter->SetBlendMode(_blend_mode);
    if (_options & SceneUseSingleBuffer)
        PaintSingleBuffer();
    else
        PaintTiles();
    CurrentPainter->Release();
    CurrentPainter = nullptr;
}

/** Clears and repaints the view, each dirty piece of each widget on its own. */
void Scene::PaintSingleBuffer()
{
    const DirtyRect whole = {0, 0, _width, _height};
    HandlePhase(UpdateClear, whole);
    VisitTouched([this](WidgetBase* widget) {
        if (!widget->IsVisible)
            return;
        _current_widget = widget;
        if (widget->ParentLayer)
            HandlePhase(UpdatePaint, widget->DirtyShown);
    });
    _current_widget = nullptr;
    _dirty = false;
    // The time of this flip is not taken: only tiled frames are paced.
    if (_options & SceneUseFlipping)
        _view->Flip();
}

/** Paints the scene through its canvas, tile by tile. */
void Scene::PaintTiles()
{
    // Tiles are as large as the canvas made for this scene, whatever counts were set since.
    const MetricValue tile_width = _canvas->GetWidth();
    const MetricValue tile_height = _canvas->GetHeight();
    _back_rect = {0, 0, tile_width, tile_height};
    HandlePhase(UpdateClear, _back_rect);
    for (int y = 0; y < _height; y += tile_height) {
        for (int x = 0; x < _width; x += tile_width) {
            _back_rect = {Wrap(x), Wrap(y), Wrap(x + tile_width), Wrap(y + tile_height)};
            PaintTile();
        }
    }
}

/** The first widget from `i` on that may show something dirty, by its place in the paint list. */
std::size_t Scene::NextTouched(std::size_t i) const
{
    const std::size_t count = _shown.size();
    while (i < count) {
        if (i % kGroup == 0 && !_dirty_manager->MayTouch(_groups[i / kGroup]))
            i = std::min(i + kGroup, count);
        else if (_dirty_manager->MayTouch(_shown[i].rect))
            break;
        else
            ++i;
    }
    return i;
}

/** Encloses anew what a group of widgets shows. */
void Scene::EncloseGroup(std::size_t group)
{
    const std::size_t first = group * kGroup;
    const std::size_t end = std::min(first + kGroup, _shown.size());
    DirtyRect box = _shown[first].rect;
    for (std::size_t i = first + 1; i < end; ++i)
        box = Around(box, _shown[i].rect);
    _groups[group] = box;
}

/** Visits the widgets of the paint list in order, but for those that show nothing dirty. */
template <class Visit>
void Scene::VisitTouched(Visit visit)
{
    WidgetBase* rest = _widget_list_head;
    // Until a formatter changes the tree while it is painted.
    for (std::size_t i = 0; _sorted.IsCurrent(); ++i) {
        i = NextTouched(i);
        if (i == _shown.size())
            return;
        visit(_shown[i].widget);
        rest = _shown[i].widget->Next;
    }
    for (; rest; rest = rest->Next)
        visit(rest);
}

void Scene::PaintTile()
{
    const MetricValue tile_width = Wrap(_back_rect.x2 - _back_rect.x1);
    const MetricValue tile_height = Wrap(_back_rect.y2 - _back_rect.y1);
    // The clear fills under the clip rectangle, which is still that of the last widget painted.
    CurrentPainter->SetClipping(0, 0, tile_width, tile_height);
    HandlePhase(UpdateClear, _back_rect);
    CurrentPainter->SetOrigin(_back_rect.x1, _back_rect.y1);

    VisitTouched([this](WidgetBase* widget) {
        if (!widget->ParentLayer || !widget->ParentLayer->IsVisible || !widget->IsVisible)
            return;
        if (!_dirty_manager->Check(widget->DirtyShown, _back_rect))
            return;
        auto* painter = static_cast<Painter*>(CurrentPainter);
        DirtyRect seen;
        CurrentSeen = FindSeenPart(widget->DirtyShown, &seen) ? &seen : nullptr;
        painter->SetSceneClipping(widget->DirtyShown, CurrentSeen);
        widget->Paint();
        CurrentSeen = nullptr;
        _clear_blends = _clear_blends || painter->HasLeftBlending();
    });

    _dirty = false;
    if (_options & SceneUseFlipping) {
        _view->Flip();
        _tick_start = zelGetTickCount();
    } else {
        HandlePhase(UpdateCopy, _back_rect);
    }
}

/**
 * Finds what of a widget in the current tile will be copied to the view, with the row and column
 * beyond that a clip rectangle takes in. The rest of it need not be painted: it is cleared before
 * it is ever copied. False where that is not so: clears that blend leave the pixels beneath to be
 * seen.
 */
bool Scene::FindSeenPart(const DirtyRect& shown, DirtyRect* seen) const
{
    if (_clear_blends)
        return false;
    const auto beyond = [](MetricValue edge) {
        return static_cast<MetricValue>(std::min<int>(edge + 1, INT16_MAX));
    };
    Enclosure dirty;
    _dirty_manager->Handle({std::max(shown.x1, _back_rect.x1), std::max(shown.y1, _back_rect.y1),
                            std::min(beyond(shown.x2), _back_rect.x2),
                            std::min(beyond(shown.y2), _back_rect.y2)},
                           &dirty);
    *seen = dirty.Box();
    return !dirty.IsEmpty();
}

void Scene::HandlePhase(UpdatePhase phase, const DirtyRect& bound)
{
    _update_phase = phase;
    _dirty_manager->Handle(bound, this);
}

void Scene::HandleRect(const DirtyRect& dirty_rect)
{
    const bool single_buffer = (_options & SceneUseSingleBuffer) != 0;
    switch (_update_phase) {
    case UpdateClear: {
        const DirtyRect rect = single_buffer ? dirty_rect : InTile(dirty_rect);
        _canvas->Clear(rect.x1, rect.y1, Wrap(rect.x2 - rect.x1), Wrap(rect.y2 - rect.y1),
                       _back_color, _back_blend);
        break;
    }
    case UpdateCopy: {
        const DirtyRect rect = InTile(dirty_rect);
        _view->Copy(Wrap(rect.x1 + _back_rect.x1), Wrap(rect.y1 + _back_rect.y1), _canvas, rect.x1,
                    rect.y1, Wrap(rect.x2 - rect.x1), Wrap(rect.y2 - rect.y1));
        break;
    }
    case UpdatePaint:
        if (!single_buffer)
            break;
        CurrentPainter->SetClipping(dirty_rect.x1, dirty_rect.y1, dirty_rect.x2, dirty_rect.y2);
        _current_widget->Paint();
        break;
    }
}

/** A scene rectangle's part inside the current tile, in the tile's own coordinates. */
DirtyRect Scene::InTile(const DirtyRect& rect) const
{
    return {Wrap(std::max(rect.x1, _back_rect.x1) - _back_rect.x1),
            Wrap(std::max(rect.y1, _back_rect.y1) - _back_rect.y1),
            Wrap(std::min(rect.x2, _back_rect.x2) - _back_rect.x1),
            Wrap(std::min(rect.y2, _back_rect.y2) - _back_rect.y1)};
}

void Scene::LinkWidgetAfter(WidgetBase* widget, WidgetBase* previous)
{
    widget->Prev = previous;
    widget->Next = previous ? previous->Next : _widget_list_head;
    (previous ? previous->Next : _widget_list_head) = widget;
    (widget->Next ? widget->Next->Prev : _widget_list_tail) = widget;
}

void Scene::UnlinkWidget(WidgetBase* widget)
{
    (widget->Prev ? widget->Prev->Next : _widget_list_head) = widget->Next;
    (widget->Next ? widget->Next->Prev : _widget_list_tail) = widget->Prev;
    widget->Prev = nullptr;
    widget->Next = nullptr;
}

} // namespace zelxxx

/** The client's drawing area and its update cycle. */
#pragma once

#include "dirty.h"
#include "layer.h"

#include <memory>
#include <vector>

namespace zelxxx {

/**
 * A scene owns a view, the canvas it paints into, a root layer, a dirty manager and the paint list:
 * all its widgets in stacking order, ascending by (ZOrder, TOrder), first painted first.
 *
 * The canvas is the view itself (flipping, single buffer) or a back buffer the size of one tile of
 * the scene, through which larger scenes are painted tile by tile.
 */
class Scene : public ZELObject<IScene, Scene>, public IDirtyRectHandler
{
public:
    Scene(UInt8 window_index, MetricValue width, MetricValue height, ColorMode color_mode,
          SceneOption options, BlendMode blend_mode);
    ~Scene() override;

    ColorMode GetColorMode() override { return _view->GetColorMode(); }
    MetricValue GetWidth() override { return _width; }
    MetricValue GetHeight() override { return _height; }
    void Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
               BlendValue blend) override;
    void Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x, MetricValue src_y,
              MetricValue src_w, MetricValue src_h) override;
    /** Takes effect at the next update. */
    void SetBlendMode(BlendMode blend_mode) override { _blend_mode = blend_mode; }

    void Show(MetricValue left, MetricValue top, MetricValue width, MetricValue height) override;
    void Hide() override { _view->Hide(); }
    void Flip() override { _view->Flip(); }
    void SetPalette(IPalette* palette) override { _view->SetPalette(palette); }
    void SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                    UInt16 blend_transparent) override;
    void SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                         BlendValue blending) override;

    void SetBackgroundColor(ColorValue color, BlendValue blending) override;
    void AddLayer(ILayer* layer) override { _root->AddWidget(layer); }
    void RemoveLayer(ILayer* layer) override { _root->RemoveWidget(layer); }
    void Update(bool force, bool wait) override;
    void Enable(bool enabled) override { _enabled = enabled; }

    void HandleRect(const DirtyRect& dirty_rect) override;

    /** Takes a widget into the paint list, as appearing. */
    void AddWidget(WidgetBase* widget);
    /** Takes a widget out of the paint list and makes its area dirty. */
    void RemoveWidget(WidgetBase* widget);
    /** Moves a widget whose key has changed to its place in the paint list. */
    void SortWidget(WidgetBase* widget);
    /** Takes down that a widget of this scene is marked. */
    void AddMarked(WidgetBase* widget)
    {
        if (widget->MarkedIndex != WidgetBase::kNoIndex)
            return;
        widget->MarkedIndex = static_cast<UInt32>(_marked.size());
        _marked.push_back(widget);
    }

    void SetWidgetDying() { _widget_dying = true; }
    void SetDirty() { _dirty = true; }
    void AddDirty(const DirtyRect& rect) { _dirty_manager->Add(rect); }
    void EnumDirtyRects(const DirtyRect& bound, IDirtyRectHandler* handler)
    {
        _dirty_manager->Handle(bound, handler);
    }
    /** The surface painted into: the view or the back buffer. */
    ICanvas* GetCanvas() const { return _canvas; }

    static void UpdateAllScenes(bool force, bool wait);
    static void SetBackBufferSize(int row_count, int col_count);

    MetricValue CurrentTOrder; /**< sequence number of the widget sorted next */
    IPainter* CurrentPainter;  /**< of the update in progress, else null */
    /** What of the widget that is being painted will be seen; null where all of it may be. */
    const DirtyRect* CurrentSeen = nullptr;

private:
    /** What HandleRect does with the rectangles it receives. */
    enum UpdatePhase
    {
        UpdateClear = 0,
        UpdateCopy = 1,
        UpdatePaint = 2
    };

    void MakeSurfaces(UInt8 window_index, ColorMode color_mode);
    void PrepareRoot();
    /** A widget of the paint list and what it shows. */
    struct Shown
    {
        DirtyRect rect;
        WidgetBase* widget;
    };

    /** So many neighbours of the paint list are passed over together where nothing is dirty. */
    static constexpr std::size_t kGroup = 32;

    bool IsFrameDue(bool wait) const;
    void Sort();
    bool IsSorted() const;
    void CollectDirtyRects();
    void CollectDirtyRects(Shown& shown);
    std::size_t NextTouched(std::size_t i) const;
    void EncloseGroup(std::size_t group);
    template <class Visit>
    void VisitTouched(Visit visit);
    void Paint();
    void PaintSingleBuffer();
    void PaintTiles();
    void PaintTile();
    void HandlePhase(UpdatePhase phase, const DirtyRect& bound);
    DirtyRect InTile(const DirtyRect& rect) const;
    bool FindSeenPart(const DirtyRect& shown, DirtyRect* seen) const;
    void LinkWidgetAfter(WidgetBase* widget, WidgetBase* previous);
    void UnlinkWidget(WidgetBase* widget);
    Layer* Root() const { return SideOf<Layer>(static_cast<ILayer*>(_root)); }

    PView _view;
    PCanvas _canvas;
    PLayer _root;
    MetricValue _width, _height;
    SceneOption _options;
    ColorValue _back_color;
    BlendValue _back_blend;
    BlendMode _blend_mode;
    DirtyRect _back_rect; /**< the scene area of the tile being processed */
    bool _widget_dying;
    bool _dirty;
    bool _enabled;
    bool _clear_blends = false; /**< clears may add to what they find; once so, taken to stay so */
    std::unique_ptr<DirtyManager> _dirty_manager;
    UpdatePhase _update_phase;
    WidgetBase* _widget_list_head;
    WidgetBase* _widget_list_tail;
    WidgetBase* _current_widget;
    // Side by side, so that a frame with few changes passes over many widgets quickly.
    std::vector<Shown> _shown;          /**< the paint list as of `_sorted` */
    std::vector<DirtyRect> _groups;     /**< around what each kGroup of `_shown` show */
    std::vector<WidgetBase*> _modified; /**< those in it with a modified copy */
    std::vector<WidgetBase*> _marked;   /**< with marks to be looked at; null where one has left */
    TreeVersion _sorted;
    MetricValue _sequence_end = 0; /**< where CurrentTOrder stood after sorting */
    Scene* _prev_scene;
    Scene* _next_scene;

    static Scene* _all_scenes; /**< newest first */
    static Int32 _back_buffer_col_count;
    static Int32 _back_buffer_row_count;
    static UInt32 _tick_start; /**< when a frame was last flipped, in ticks */
    static UInt32 _tick_stop;
};

} // namespace zelxxx

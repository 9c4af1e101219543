// EFL's buffer engine: a canvas that keeps its objects and finds out what has changed.
#include "frame_scenes.h"

#include <algorithm>
#include <stdexcept>

#include <Ecore_Evas.h>
#include <Evas.h>

namespace kestrin_bench {

namespace {

class EflFrames final : public FramePainter
{
public:
    EflFrames()
    {
        if (!ecore_evas_init())
            throw std::runtime_error("EFL does not start");
    }
    ~EflFrames() override
    {
        Free();
        ecore_evas_shutdown();
    }
    EflFrames(const EflFrames&) = delete;
    EflFrames& operator=(const EflFrames&) = delete;

    void Prepare(const Scene& scene) override
    {
        Free();
        _scene = &scene;
        _window = ecore_evas_buffer_new(scene.width, scene.height);
        if (!_window)
            throw std::runtime_error("EFL has no buffer engine");
        ecore_evas_manual_render_set(_window, EINA_TRUE);
        ecore_evas_show(_window);
        _canvas = ecore_evas_get(_window);
        Item background;
        background.box = {0, 0, scene.width, scene.height};
        background.argb = kBackground;
        AddRectangle(background);
        _objects.clear(); // the background is not one of the items
        for (const Item& item : scene.items) {
            if (item.kind == Kind::Rectangle)
                AddRectangle(item);
            else if (item.kind == Kind::Picture)
                AddPicture(item);
            else
                AddLines(item);
        }
        if (!scene.steps.empty())
            Change(scene.steps.back());
        ecore_evas_manual_render(_window);
    }

    void Show(const Step& step) override
    {
        Change(step);
        ecore_evas_manual_render(_window);
    }

    void Idle() override { ecore_evas_manual_render(_window); }

    std::vector<std::uint32_t> Screen() const override
    {
        const auto* words =
            static_cast<const std::uint32_t*>(ecore_evas_buffer_pixels_get(_window));
        return {words, words + static_cast<std::ptrdiff_t>(_scene->width) * _scene->height};
    }

private:
    void Change(const Step& step)
    {
        if (step.opacity != _opacity) {
            for (std::size_t i = 0; i < _objects.size(); ++i)
                SetColour(_objects[i], _scene->items[i].argb, step.opacity);
            _opacity = step.opacity;
            return;
        }
        const TextGrid& grid = _scene->items.back().text;
        for (std::size_t row = 0; row < _lines.size(); ++row) {
            // The letters are ASCII.
            const auto columns = static_cast<std::size_t>(grid.columns);
            const std::u16string line = step.text.substr(row * columns, columns);
            evas_object_text_text_set(_lines[row], std::string(line.begin(), line.end()).c_str());
        }
        if (_lines.empty())
            evas_object_move(_objects.back(), step.x, step.y);
    }

    void Place(Evas_Object* object, const Rect& box)
    {
        evas_object_move(object, box.x, box.y);
        evas_object_resize(object, box.w, box.h);
        evas_object_show(object);
        _objects.push_back(object);
    }

    /** EFL takes colours multiplied by their opacity. */
    static void SetColour(Evas_Object* object, std::uint32_t argb, std::uint32_t opacity)
    {
        const std::uint32_t word =
            Premultiplied((argb >> 24) * opacity / 255 << 24 | (argb & 0xffffff));
        evas_object_color_set(object, static_cast<int>(word >> 16 & 0xff),
                              static_cast<int>(word >> 8 & 0xff), static_cast<int>(word & 0xff),
                              static_cast<int>(word >> 24));
    }

    void AddRectangle(const Item& item)
    {
        Evas_Object* object = evas_object_rectangle_add(_canvas);
        SetColour(object, item.argb, 255);
        Place(object, item.box);
    }

    void AddPicture(const Item& item)
    {
        const Picture& picture = item.picture;
        Evas_Object* object = evas_object_image_filled_add(_canvas);
        evas_object_image_size_set(object, picture.width, picture.height);
        evas_object_image_alpha_set(object, picture.opaque ? EINA_FALSE : EINA_TRUE);
        auto* words = static_cast<std::uint32_t*>(evas_object_image_data_get(object, EINA_TRUE));
        std::transform(picture.words.begin(), picture.words.end(), words, Premultiplied);
        evas_object_image_data_set(object, words);
        evas_object_image_data_update_add(object, 0, 0, picture.width, picture.height);
        Place(object, item.box);
    }

    /**
     * A line of text is an object; characters stand as far apart as the font has them, and what
     * passes the box is cut off.
     */
    void AddLines(const Item& item)
    {
        AddRectangle(item);
        Evas_Object* box = _objects.back();
        _objects.clear();
        for (int row = 0; row < item.text.rows; ++row) {
            Evas_Object* line = evas_object_text_add(_canvas);
            evas_object_text_font_set(line, item.text.font, item.text.size);
            evas_object_color_set(line, 255, 255, 255, 255);
            evas_object_move(line, item.box.x, item.box.y + row * item.text.line_height);
            evas_object_clip_set(line, box);
            evas_object_show(line);
            _lines.push_back(line);
        }
    }

    void Free()
    {
        _objects.clear();
        _lines.clear();
        _opacity = 255;
        if (_window)
            ecore_evas_free(_window);
        _window = nullptr;
    }

    const Scene* _scene = nullptr;
    Ecore_Evas* _window = nullptr;
    Evas* _canvas = nullptr;
    std::vector<Evas_Object*> _objects; // of items other than text
    std::vector<Evas_Object*> _lines;
    std::uint8_t _opacity = 255;
};

} // namespace

std::unique_ptr<FramePainter> MakeEflFrames()
{
    return std::make_unique<EflFrames>();
}

} // namespace kestrin_bench

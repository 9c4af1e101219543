/**
 * What the examples share: a screen of their own, with pictures of it, and a line of text.
 *
 *     void Show(Screen& screen)
 *     {
 *         // make a scene of screen.width x screen.height pixels
 *         screen.Picture("1-before");
 *     }
 *     int main(int argc, char** argv) { return RunExample(argc, argv, Show); }
 */
#pragma once

#include "argb_image.h"
#include "vrel_kestrin_graphic.h"

#include <string>

namespace kestrin_examples {

/** A display in a file, with the engine on it in true colour; one in a process. Sizes in pixels. */
class Screen
{
public:
    /** Makes the folder if needed; the display's file is in it until the screen ends. */
    Screen(std::string picture_folder, zelxxx::MetricValue screen_width,
           zelxxx::MetricValue screen_height);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /** DejaVu Sans, for text widgets. */
    zelxxx::IResource* Fonts() const { return _fonts; }

    /** Brings the screen up to date, and returns what the display then shows, with its opacity. */
    kestrin_display::ArgbImage Update();
    /** Writes the same to NAME.png in the folder. */
    void Picture(const std::string& name);

    const zelxxx::MetricValue width;
    const zelxxx::MetricValue height;
    const std::string folder;

private:
    const std::string _file;
    std::string _font;
    zelxxx::PResource _fonts; // of the bytes in _font
    bool _complete = false;   // whether the whole screen has been painted once
};

/**
 * Runs an example on a screen and gives the program's exit status.
 *
 * The pictures go to the folder named on the command line, or to one named after the program.
 */
int RunExample(int argc, char** argv, void (*show)(Screen& screen),
               zelxxx::MetricValue width = 1280, zelxxx::MetricValue height = 720);

/** Places characters side by side in the middle of a text widget, or from its left edge on. */
class OneLine : public zelxxx::ITextFormater
{
public:
    enum Side
    {
        Left,
        Centre
    };

    explicit OneLine(Side side = Left, zelxxx::ColorValue color = 0xffffff)
        : _side(side), _color(color)
    {
    }

    /** Glyphs have an opacity of their own, which neither layers nor modifiers change. */
    void SetOpacity(zelxxx::BlendValue opacity) { _opacity = opacity; }
    /** Width of the line in which the text is centred; the widget's span if never called. */
    void SetWidth(int width) { _width = width; }

    void Format(zelxxx::IText* text, zelxxx::PtrWChar units, zelxxx::UInt32 length) override;
    /** Never called: these screens are not 8-bit displays. */
    void GetCharBuffer(const zelxxx::CharMetrics*, zelxxx::ColorValue, zelxxx::BlendValue,
                       zelxxx::PtrSChar) override
    {
    }

private:
    const Side _side;
    const zelxxx::ColorValue _color;
    zelxxx::BlendValue _opacity = 255;
    int _width = 0;
};

/** Gives a widget its position and span. */
void Place(zelxxx::IWidget* widget, int x, int y, int width, int height);

/** A rectangle in a layer; red is the color's lowest byte. */
zelxxx::ZELObjPtr<zelxxx::IWidget> AddBox(zelxxx::ILayer* layer, int x, int y, int width,
                                          int height, zelxxx::ColorValue color, int opacity = 255);

/** A line of UTF-8 in a layer; its box is a half higher than its font. */
zelxxx::ZELObjPtr<zelxxx::IText> AddLine(Screen& screen, zelxxx::ILayer* layer, int x, int y,
                                         int width, int font_size, const std::string& utf8,
                                         OneLine& formatter);

} // namespace kestrin_examples

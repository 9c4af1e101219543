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
#include "vrel_kestrin_flow.h"

#include <memory>
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
    /** Lays out all text of the screen, which is to be gone when the screen ends. */
    zelxxx::FlowFormatter& Formatter() const { return *_formatter; }

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
    std::unique_ptr<zelxxx::FlowFormatter> _formatter;
    bool _complete = false; // whether the whole screen has been painted once
};

/**
 * Runs an example on a screen and gives the program's exit status.
 *
 * The pictures go to the folder named on the command line, or to one named after the program.
 */
int RunExample(int argc, char** argv, void (*show)(Screen& screen),
               zelxxx::MetricValue width = 1280, zelxxx::MetricValue height = 720);

/** Gives a widget its position and span. */
void Place(zelxxx::IWidget* widget, int x, int y, int width, int height);

/** A rectangle in a layer; red is the color's lowest byte. */
zelxxx::ZELObjPtr<zelxxx::IWidget> AddBox(zelxxx::ILayer* layer, int x, int y, int width,
                                          int height, zelxxx::ColorValue color, int opacity = 255);

/**
 * A line of UTF-8 in a layer, in the middle of a box that is a half higher than its font.
 *
 * @param format  from the left edge on, in the middle with 0, or any other TextFormat bits
 */
zelxxx::ZELObjPtr<zelxxx::IText> AddLine(Screen& screen, zelxxx::ILayer* layer, int x, int y,
                                         int width, int font_size, const std::string& utf8,
                                         zelxxx::ColorValue color = 0xffffff,
                                         zelxxx::AttrValue format = zelxxx::TextAlignLeft);

/** Changes such a line. */
void SetLine(Screen& screen, zelxxx::IText* text, const std::string& utf8);

} // namespace kestrin_examples

/**
 * Plays a programme: updates the screen when cues begin and end, and keeps pictures of it.
 */
#pragma once

#include "programme.h"
#include "report.h"
#include "stage.h"

#include "screen_reader.h"

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

namespace kestrin_play {

struct PlayOptions
{
    ScreenFormat format;
    bool realtime;
    std::string pictures; ///< path and start of the pictures' names; empty keeps none
};

/** What playing came to. */
struct PlayResult
{
    Statistics costs;
    int pictures;      ///< written, one for each cue that was begun
    std::string sheet; ///< the file that shows them all; empty if there are none
};

class Player
{
public:
    /**
     * The engine is initialised for options.format.
     *
     * @param programme   at least one caption
     * @param screen      where the screen can be read; null without pictures and dirty shares
     * @param background  what pictures show the screen over, of the screen's size
     */
    Player(const PlayOptions& options, const Programme& programme, Report& report,
           kestrin_display::ScreenReader* screen, ArgbImage background);

    /**
     * Plays to the end, or until `stop` is set.
     *
     * @throws std::runtime_error if a picture cannot be written or the screen not be read
     */
    PlayResult Run(const volatile std::sig_atomic_t& stop);

private:
    using Clock = std::chrono::steady_clock;

    void ShowMoment(std::int64_t time);
    void Update(bool first);
    void TellProgress(std::int64_t time);
    void WritePictures(int count);

    const PlayOptions _options;
    const Programme& _programme;
    Report& _report;
    kestrin_display::ScreenReader* _screen;
    const ArgbImage _background;
    Stage _stage;

    std::int64_t _end = 0;                ///< of the programme, in milliseconds
    std::vector<const Caption*> _current; ///< on the screen now
    std::size_t _begun = 0;               ///< captions that have begun
    std::optional<kestrin_display::LayerSnapshot> _seen;
    std::optional<ContactSheet> _sheet;
    PlayResult _result = {};
    Clock::time_point _told;
};

} // namespace kestrin_play

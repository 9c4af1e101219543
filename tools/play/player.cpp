#include "player.h"

#include "srt.h"

#include "lay_over.h"
#include "png_file.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <set>
#include <thread>

namespace kestrin_play {
namespace {

using kestrin_display::LayerSnapshot;

/** The engine's layer. */
constexpr int display_layer = 1;

/** In real time the bar moves between cues too, this often. */
constexpr std::int64_t tick_ms = 1000;

/** Playing that takes longer than this says how far it is, this often. */
constexpr std::chrono::seconds progress_interval(2);

std::set<std::int64_t> Moments(const Programme& programme, bool with_ticks)
{
    std::set<std::int64_t> moments;
    for (const Caption& caption : programme) {
        moments.insert(caption.start);
        moments.insert(caption.end);
    }
    for (std::int64_t tick = 0; with_ticks && tick < *moments.rbegin(); tick += tick_ms)
        moments.insert(tick);
    return moments;
}

/** Sleeps in short pieces, so that an interrupt is noticed. False if there was one. */
bool SleepUntil(std::chrono::steady_clock::time_point when, const volatile std::sig_atomic_t& stop)
{
    constexpr std::chrono::milliseconds piece(50);
    for (auto now = std::chrono::steady_clock::now(); now < when && !stop;
         now = std::chrono::steady_clock::now())
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(piece, when - now));
    return !stop;
}

} // namespace

Player::Player(const PlayOptions& options, const Programme& programme, Report& report,
               kestrin_display::ScreenReader* screen, ArgbImage background)
    : _options(options), _programme(programme), _report(report), _screen(screen),
      _background(std::move(background)), _stage(options.format)
{
    for (const Caption& caption : programme)
        _end = std::max(_end, caption.end);
    if (!_options.pictures.empty())
        _sheet.emplace(programme.size(), options.format.width, options.format.height);
}

PlayResult Player::Run(const volatile std::sig_atomic_t& stop)
{
    const Clock::time_point began = Clock::now();
    _told = began;
    _stage.Show({}, 0);
    Update(true);
    for (const std::int64_t moment : Moments(_programme, _options.realtime)) {
        if (_options.realtime && !SleepUntil(began + std::chrono::milliseconds(moment), stop))
            break;
        if (stop)
            break;
        ShowMoment(moment);
        TellProgress(moment);
    }
    if (_result.pictures > 0) {
        _result.sheet = _options.pictures + "-sheet.png";
        kestrin_tools::WritePng(_result.sheet, _sheet->Image());
    }
    return _result;
}

void Player::ShowMoment(std::int64_t time)
{
    const auto over = [&](const Caption* caption) { return caption->end <= time; };
    _current.erase(std::remove_if(_current.begin(), _current.end(), over), _current.end());
    int begins = 0;
    for (; _begun < _programme.size() && _programme[_begun].start <= time; ++_begun, ++begins)
        _current.push_back(&_programme[_begun]);

    const int dropped =
        _stage.Show(_current, static_cast<double>(time) / static_cast<double>(_end));
    if (dropped > 0 && begins > 0)
        _report.Warn(
            {_current.back()->line,
             std::to_string(dropped) + " lines do not fit on the screen at " + FormatTime(time),
             "shorten the text, or let fewer cues overlap"});
    Update(false);
    if (_sheet)
        WritePictures(begins);
}

void Player::Update(bool first)
{
    const Clock::time_point began = Clock::now();
    // A forced first update paints the background too.
    zelxxx::zelUpdateScreen(first, false);
    const std::chrono::duration<double, std::micro> took = Clock::now() - began;
    if (!_screen) {
        if (!first)
            _result.costs.Add(took.count());
        return;
    }
    LayerSnapshot now = _screen->Snapshot(display_layer);
    if (!first)
        _result.costs.Add(took.count(), Compare(_seen->image, now.image));
    _seen = std::move(now);
}

void Player::TellProgress(std::int64_t time)
{
    const Clock::time_point now = Clock::now();
    if (now - _told < progress_interval)
        return;
    _told = now;
    std::cerr << FormatTime(time) << " of " << FormatTime(_end) << ", cue " << _begun << " of "
              << _programme.size() << '\n';
}

void Player::WritePictures(int count)
{
    if (count == 0)
        return;
    ArgbImage picture = _seen->image;
    kestrin_tools::Fade(picture, _seen->facts.opacity);
    kestrin_tools::LayOver(picture, _background);
    for (; count > 0; --count) {
        char number[24];
        std::snprintf(number, sizeof number, "-%03d.png", ++_result.pictures);
        kestrin_tools::WritePng(_options.pictures + number, picture);
        _sheet->Add(picture);
    }
}

} // namespace kestrin_play

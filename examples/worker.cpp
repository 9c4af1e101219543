/**
 * Threads beside the scene: a channel scan whose results appear on the screen as they come.
 *
 * A tuner thread produces frequencies, a decoder thread consumes them and finds out what is there.
 * The engine belongs to the main thread: the decoder posts what is to be shown, the main thread
 * takes it from the post box and changes the text.
 *
 * Takes the number of channels to scan (1 to 48, or 5) and a font file (or DejaVu Sans).
 */
#include "vrel_kestrin_condition.h"
#include "vrel_kestrin_flow.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

using namespace zelxxx;

/** Frequencies in MHz on their way from the tuner to the decoder; only so many wait in it. */
class FrequencyQueue
{
public:
    void Put(int frequency)
    {
        _mutex.Lock(0); // 0 waits without limit; a positive timeout would not wait at all
        while (_waiting.size() == kRoom) {
            _changed.Wait(0);
            _mutex.Lock(0); // Wait comes back without the lock
        }
        _waiting.push_back(frequency);
        _changed.Broadcast();
        _mutex.Unlock();
    }
    int Take()
    {
        _mutex.Lock(0);
        while (_waiting.empty()) {
            _changed.Wait(0);
            _mutex.Lock(0);
        }
        const int frequency = _waiting.front();
        _waiting.pop_front();
        _changed.Broadcast();
        _mutex.Unlock();
        return frequency;
    }

private:
    static constexpr std::size_t kRoom = 2;

    Vrel_Mutex _mutex{Vrel_MUTEX_NORMAL};
    Vrel_Condition _changed{_mutex};
    std::deque<int> _waiting;
};

/** Work for the thread that owns the scene, put in by any other thread. */
class PostBox
{
public:
    using Work = std::function<void()>;

    void Put(Work work)
    {
        _mutex.Lock(0);
        _work.push_back(std::move(work));
        _mutex.Unlock();
        _filled.Post(1);
    }
    /** Waits for work. */
    Work Take()
    {
        while (_filled.Wait(0) != 0) {
            // A signal came in between.
        }
        _mutex.Lock(0);
        Work work = std::move(_work.front());
        _work.pop_front();
        _mutex.Unlock();
        return work;
    }

private:
    Vrel_Mutex _mutex{Vrel_MUTEX_NORMAL};
    Vrel_Semaphore _filled;
    std::deque<Work> _work;
};

constexpr int kFirstFrequency = 474; // channel 21, the first of the UHF band
constexpr int kChannelWidth = 8;
constexpr int kEndOfBand = 0;

/** Steps through the band. */
class Tuner : public Vrel_Thread
{
public:
    Tuner(FrequencyQueue& found, int channels)
        : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, 0), _found(found), _channels(channels)
    {
    }
    ~Tuner() override { Wait(0); } // here, while the members that Task uses are there

    HRESULT Task(void*) override
    {
        char name[] = "tuner";
        SetThreadName(name); // names the thread it is called on
        for (int i = 0; i < _channels; ++i) {
            Vrel_Sleep(10); // until the tuner has locked
            _found.Put(kFirstFrequency + i * kChannelWidth);
        }
        _found.Put(kEndOfBand);
        return 0;
    }

private:
    FrequencyQueue& _found;
    const int _channels;
};

/** Finds out what is on a frequency, and has it shown. */
class Decoder : public Vrel_Thread
{
public:
    using Show = std::function<void(const std::string&)>;

    /** @param show  called on the thread that empties the post box; with nothing at the end */
    Decoder(FrequencyQueue& found, PostBox& scene_thread, Show show)
        : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, 0), _found(found), _scene_thread(scene_thread),
          _show(std::move(show))
    {
    }
    ~Decoder() override { Wait(0); }

    HRESULT Task(void*) override
    {
        char name[] = "decoder";
        SetThreadName(name);
        for (;;) {
            const int frequency = _found.Take();
            if (frequency == kEndOfBand)
                break;
            const int channel = 21 + (frequency - kFirstFrequency) / kChannelWidth;
            Post("Channel " + std::to_string(channel) + ": " + std::to_string(frequency) + " MHz");
        }
        Post("");
        return 0;
    }

private:
    void Post(const std::string& caption)
    {
        _scene_thread.Put([this, caption] { _show(caption); });
    }

    FrequencyQueue& _found;
    PostBox& _scene_thread;
    const Show _show;
};

void Place(IDynamic* widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

/** Runs the scan: two threads work, this one shows what they post. */
bool Scan(int channels, const std::function<void(const std::string&)>& show)
{
    bool scanning = true;
    FrequencyQueue found;
    PostBox scene_thread;
    Tuner tuner(found, channels);
    Decoder decoder(found, scene_thread, [&](const std::string& caption) {
        scanning = !caption.empty();
        if (scanning)
            show(caption);
    });
    if (decoder.Start(nullptr) != 0)
        return false;
    if (tuner.Start(nullptr) != 0) {
        found.Put(kEndOfBand);
        return false;
    }
    while (scanning)
        scene_thread.Take()();
    return true; // the threads are waited for as they go, which writes lines on standard output
}

int main(int argc, char** argv)
{
    const int channels = argc > 1 ? std::atoi(argv[1]) : 5;
    if (channels < 1 || channels > 48) {
        std::fprintf(stderr, "usage: worker [CHANNELS] [FONT]\nCHANNELS is 1 to 48\n");
        return 2;
    }
    const char* font = argc > 2 ? argv[2] : "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    const char index[] = "worker-fonts";
    std::ofstream(index) << "1\nfnt:" << font << '\n';

    bool scanned = false;
    zelInitialize(1280, 720, Color32Bit);
    {
        FlowFormatter formatter(Color32Bit);
        ZELObjPtr<IScene> scene(
            zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
        scene->AddLayer(layer);

        ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
        Place(box, 320, 560, 640, 90);
        box->SetAttribute(AttrColor, 0x402010); // red is the lowest byte
        box->SetAttribute(AttrBlend, 200);
        layer->AddWidget(box);

        ZELObjPtr<IText> text(zelCreateText(PResource(zelOpenResource(index))));
        Place(text, 350, 575, 600, 60);
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, 44);
        text->SetAttribute(AttrTextFormat, TextAlignLeft);
        text->SetAttribute(AttrColor, 0x78dcff);
        layer->AddWidget(text);
        zelUpdateScreen(true, false);

        scanned = Scan(channels, [&](const std::string& caption) {
            std::puts(caption.c_str());
            text->SetText(caption.data(), static_cast<UInt32>(caption.size()), EncodingASCII,
                          &formatter);
            zelUpdateScreen(false, false);
        });
    }
    zelUninitialize();
    std::remove(index);
    return scanned ? 0 : 1;
}

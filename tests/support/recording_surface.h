/**
 * Records what is drawn on a DirectFB surface, as calls in order:
 *
 *     RecordingSurface recording(surface);
 *     painter->DrawRectangle(...);
 *     EXPECT_THAT(recording.Calls(), ElementsAre("SetDrawingFlags(BLEND)", ...));
 */
#pragma once

#include "call_recorder.h"

namespace kestrin_test {

class RecordingSurface
{
public:
    /** Records into a log of its own. */
    explicit RecordingSurface(IDirectFBSurface* surface);
    /** Records into a log shared with others, each line prefixed. */
    RecordingSurface(IDirectFBSurface* surface, CallLog& log, const std::string& prefix);

    const CallLog& Calls() const { return _log; }
    /** Returns the calls so far and forgets them. */
    CallLog Take();

private:
    void WatchAll();

    CallLog _own;
    CallLog& _log;
    CallRecorder<IDirectFBSurface> _recorder;
};

} // namespace kestrin_test

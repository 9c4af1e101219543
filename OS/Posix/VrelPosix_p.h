/** What the operating-system classes share: results and deadlines. */
#pragma once

#include "vrel_kestrin_scalar.h"

#include <ctime>

constexpr HRESULT kVrelSuccess = 0;
constexpr HRESULT kVrelFailure = static_cast<HRESULT>(0x80004005U);

/** The result of a POSIX call: success for 0 only. */
inline HRESULT VrelResult(int posix_result)
{
    return posix_result == 0 ? kVrelSuccess : kVrelFailure;
}

/** Whether a timeout waits for ever. */
inline bool VrelWaitsForEver(INT timeout)
{
    return timeout < 1;
}

/** When a timeout from 1 ends: so many seconds after the epoch, not after now. */
inline timespec VrelDeadline(INT timeout)
{
    timespec deadline = {};
    deadline.tv_sec = timeout;
    return deadline;
}

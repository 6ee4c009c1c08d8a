// SPDX-License-Identifier: Apache-2.0
// WaitTimeout.h - the time-out value of the timed waits that means "none".
//
// Every timed wait of the library (ILock, ISemaphore, the events) takes a
// relative time-out in milliseconds as an unsigned 32-bit value; this one
// value turns it into a wait without a time-out:
//
// Example:
//   SmartPtr<ILock> lock(Platform::GetInstance()->CreateLock());
//   _Result result = ResultFail;
//   lock->Lock();
//   lock->Wait(WaitForever, result);   // the same as lock->Wait(result)
//   lock->Unlock();
#ifndef KIVPLR_WAITTIMEOUT_H
#define KIVPLR_WAITTIMEOUT_H

#include <cstdint>

namespace KivPlr {

/// 0xFFFFFFFF: wait without a time-out. Every other value is a time-out in
/// milliseconds, 0xFFFFFFFE (about 49.7 days) being the longest.
constexpr std::uint32_t WaitForever = 0xFFFFFFFFu;

} // namespace KivPlr

#endif

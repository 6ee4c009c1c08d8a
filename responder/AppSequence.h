// SPDX-License-Identifier: Apache-2.0
// AppSequence.h - the AppSequence header block: which run of the sender
// (InstanceId, rises at every start) and which of its messages
// (MessageNumber, rises with every message sent), so that receivers can
// order announcements and notice a restart.
//
// A plain value; any thread.
//
// Example:
//   std::uint64_t startCount = 7;     // from the state file
//   std::uint64_t sentMessages = 0;
//   KivWsd::AppSequence sequence;
//   sequence.instanceId = startCount;
//   sequence.messageNumber = ++sentMessages;
#ifndef KIV_WSD_APPSEQUENCE_H
#define KIV_WSD_APPSEQUENCE_H

#include <cstdint>

namespace KivWsd {

struct AppSequence
{
    std::uint64_t instanceId = 0;
    std::uint64_t messageNumber = 0;
};

} // namespace KivWsd

#endif

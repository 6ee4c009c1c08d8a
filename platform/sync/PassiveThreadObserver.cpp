// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PassiveThreadObserver.h>

namespace KivPlr {

void PassiveThreadObserver::BodyStarting(IThread&) {}

void PassiveThreadObserver::BodyFinished(IThread&) {}

} // namespace KivPlr

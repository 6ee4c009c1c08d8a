// SPDX-License-Identifier: Apache-2.0
#include "PassiveThreadObserver.h"

namespace KivPlr {

void PassiveThreadObserver::BodyStarting(IThread&) {}

void PassiveThreadObserver::BodyFinished(IThread&) {}

} // namespace KivPlr

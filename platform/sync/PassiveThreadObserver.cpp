#include "PassiveThreadObserver.h"

namespace KivPlr {

void PassiveThreadObserver::BodyStarting(IThread&) {}

void PassiveThreadObserver::BodyFinished(IThread&) {}

} // namespace KivPlr

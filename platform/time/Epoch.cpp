// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Epoch.h>

namespace KivPlr {

Epoch::Epoch() : Date()
{
}

Epoch::~Epoch() = default;

} // namespace KivPlr

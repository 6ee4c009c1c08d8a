#include "Epoch.h"

namespace KivPlr {

Epoch::Epoch() : Date()
{
}

Epoch::~Epoch() = default;

} // namespace KivPlr

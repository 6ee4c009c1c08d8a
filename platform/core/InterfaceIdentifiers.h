// SPDX-License-Identifier: Apache-2.0
// InterfaceIdentifiers.h - the fixed identifiers of the library's interface
// families, the values that QueryInterface takes to name a view of an object.
//
// Constants made once when the library is loaded, before any other static
// object of the library or of a program using it, and destroyed after them;
// read-only, so any thread may read them.
//
// Example:
//   const Uuid* interfaceId = &PlatformInterfaceId;   // what QueryInterface was asked for
//   bool platformView = *interfaceId == PlatformInterfaceId;
#ifndef KIVPLR_INTERFACEIDENTIFIERS_H
#define KIVPLR_INTERFACEIDENTIFIERS_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Uuid.h>

namespace KivPlr {

/// The object model's root interfaces (IObject, Object):
/// 76b55f90-3d41-4fc3-9cb1-73ab2e7e2f59.
extern KIVPLR_API const Uuid ObjectInterfaceId;
/// The clock classes (IClock, ISystemClock and their implementations):
/// d168b7a4-1727-40eb-ac9a-e1f2829365f0.
extern KIVPLR_API const Uuid ClockInterfaceId;
/// The platform factory (IPlatform, Platform):
/// d168b7a5-1727-40eb-ac9a-e1f2829365f0. One family's identifiers are handed
/// out consecutively, so it differs from ClockInterfaceId in byte 3 only.
extern KIVPLR_API const Uuid PlatformInterfaceId;

} // namespace KivPlr

#endif

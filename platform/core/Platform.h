// SPDX-License-Identifier: Apache-2.0
// Platform.h - the portable base of the platform factory, and the
// process-wide platform instance.
//
// Platform implements the atomic counters; the factory operations are left to
// the system's own class (LinuxPlatform). The entry routine installs one
// platform at start-up; everything else finds it through GetInstance:
//
// Example:
//   Platform::SetInstance(new LinuxPlatform);          // count 1 from now on
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//
// SetInstance and ClearInstance are not synchronised: call them at start-up
// and shut-down, before other threads run. The counters are atomic.
#ifndef KIVPLR_PLATFORM_H
#define KIVPLR_PLATFORM_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IPlatform.h>
#include <KivPlr/core/Object.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API Platform : protected Object, public IPlatform
{
public:
    std::int32_t AtomicIncrement(std::int32_t& value) override;
    std::int32_t AtomicDecrement(std::int32_t& value) override;

    /// Installs \p platform as the process-wide instance. The same instance
    /// again does nothing; otherwise the new one is referenced, the old one
    /// released, and the new one stored. Null uninstalls.
    static void SetInstance(IPlatform* platform);
    /// The installed instance (null before the first SetInstance), without
    /// touching its count.
    static IPlatform* GetInstance();
    /// Releases the installed instance, if any, and stores null.
    static void ClearInstance();

protected:
    ~Platform() override = default;
};

} // namespace KivPlr

#endif

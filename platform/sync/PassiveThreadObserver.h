// SPDX-License-Identifier: Apache-2.0
// PassiveThreadObserver.h - the thread observer that does nothing.
//
// The platform factory gives one, newly made, to every thread it creates.
// Stateless: any thread may call it.
//
// Example:
//   SmartPtr<IThreadObserver> observer(new PassiveThreadObserver);
#ifndef KIVPLR_PASSIVETHREADOBSERVER_H
#define KIVPLR_PASSIVETHREADOBSERVER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/sync/IThreadObserver.h>

namespace KivPlr {

class KIVPLR_API PassiveThreadObserver : private Object, public IThreadObserver
{
public:
    /// Does nothing.
    void BodyStarting(IThread& thread) override;
    /// Does nothing.
    void BodyFinished(IThread& thread) override;

private:
    ~PassiveThreadObserver() override = default;
};

} // namespace KivPlr

#endif

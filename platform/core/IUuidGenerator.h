// SPDX-License-Identifier: Apache-2.0
// IUuidGenerator.h - makes fresh random (version 4) identifiers.
//
// Generators are constructed directly by their users (the platform factory
// does not make them) and owned through SmartPtr. Generate keeps no state
// between calls, so one generator may serve several threads at once.
//
// Example:
//   SmartPtr<IUuidGenerator> generator(new UuidGenerator);
//   Uuid identifier;
//   _Result result = ResultFail;
//   generator->Generate(identifier, result);   // 200, 16 fresh bytes
#ifndef KIVPLR_IUUIDGENERATOR_H
#define KIVPLR_IUUIDGENERATOR_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/core/Uuid.h>

namespace KivPlr {

class KIVPLR_API IUuidGenerator : public virtual IObject
{
public:
    /// Draws one random identifier. On success \p uuid holds exactly 16
    /// bytes (a longer vector is cut, a shorter one extended) with version 4
    /// and the RFC 4122 variant, and \p result is 200. A draw of nothing but
    /// zero bytes gives 500 and leaves \p uuid unchanged. A null \p uuid or
    /// \p result reference ends the process (fatal error).
    virtual void Generate(Uuid& uuid, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IUuidGenerator() override = default;
};

} // namespace KivPlr

#endif

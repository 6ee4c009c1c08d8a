// SPDX-License-Identifier: Apache-2.0
// UuidGenerator.h - the random (version 4) identifier generator.
//
// Users construct it directly with new (the platform factory does not make
// it) and own it through SmartPtr. Every Generate call seeds a fresh random
// engine of its own and keeps nothing afterwards, so one generator may serve
// any number of threads at once.
//
// Example:
//   SmartPtr<IUuidGenerator> generator(new UuidGenerator);   // count 0 -> 1
//   Uuid identifier;
//   _Result result = ResultFail;
//   generator->Generate(identifier, result);
#ifndef KIVPLR_UUIDGENERATOR_H
#define KIVPLR_UUIDGENERATOR_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IUuidGenerator.h>
#include <KivPlr/core/Object.h>

namespace KivPlr {

class KIVPLR_API UuidGenerator : private Object, public IUuidGenerator
{
public:
    UuidGenerator();

    /// Draws once (see Draw). Nothing but zero bytes gives 500 and leaves
    /// \p uuid as it was; otherwise \p uuid.bytes becomes exactly the 16
    /// drawn bytes and \p result 200. A null \p result reference is fatal
    /// ("UuidGenerator: result NULL reference."), so is a null \p uuid
    /// reference ("UuidGenerator: uuid NULL reference."). When the system's
    /// random source cannot seed the engine, the exception of the random
    /// library passes through uncaught.
    void Generate(Uuid& uuid, _Result& result) override;

protected:
    ~UuidGenerator() override;

    /// One draw from a random UUID generator made for this call alone: a new
    /// Mersenne Twister engine seeded from the kernel's random source, which
    /// sets the version nibble (4) and the variant bits (binary 10). A class
    /// built on UuidGenerator may draw from elsewhere.
    virtual void Draw(unsigned char (&value)[Uuid::Size]);
};

} // namespace KivPlr

#endif

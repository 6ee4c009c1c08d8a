// SPDX-License-Identifier: Apache-2.0
// Uuid.h - the library's 16-byte identifier value.
//
// A plain value: made on the stack or as a constant, copied freely; one Uuid
// must not be changed in one thread while another reads it. The destructor is
// virtual so that classes built on Uuid may be used through it. Fresh
// identifiers come from an IUuidGenerator; the library has no text form.
//
// Example:
//   SmartPtr<IUuidGenerator> generator(new UuidGenerator);
//   _Result result = ResultFail;
//   Uuid identifier;                      // no bytes yet
//   generator->Generate(identifier, result);
//   bool complete = Succeeded(result) && identifier.bytes.size() == Uuid::Size;
#ifndef KIVPLR_UUID_H
#define KIVPLR_UUID_H

#include <KivPlr/core/Export.h>

#include <cstddef>
#include <vector>

namespace KivPlr {

class KIVPLR_API Uuid
{
public:
    /// How many bytes a generated or constant identifier holds.
    static constexpr std::size_t Size = 16;

    /// An identifier without bytes.
    Uuid();
    /// An identifier holding exactly the 16 bytes of \p value, in RFC 4122
    /// byte order.
    explicit Uuid(const unsigned char (&value)[Size]);
    Uuid(const Uuid& other);
    Uuid(Uuid&& other) noexcept;
    Uuid& operator=(const Uuid& other);
    Uuid& operator=(Uuid&& other) noexcept;
    virtual ~Uuid();

    /// True when both hold the same bytes (two empty identifiers are equal).
    bool operator==(const Uuid& other) const;
    bool operator!=(const Uuid& other) const;

    /// The identifier in RFC 4122 byte order.
    std::vector<unsigned char> bytes;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Uuid.h>

namespace KivPlr {

Uuid::Uuid() = default;

Uuid::Uuid(const unsigned char (&value)[Size]) : bytes(value, value + Size) {}

Uuid::Uuid(const Uuid& other) = default;

Uuid::Uuid(Uuid&& other) noexcept = default;

Uuid& Uuid::operator=(const Uuid& other) = default;

Uuid& Uuid::operator=(Uuid&& other) noexcept = default;

Uuid::~Uuid() = default;

bool Uuid::operator==(const Uuid& other) const
{
    return bytes == other.bytes;
}

bool Uuid::operator!=(const Uuid& other) const
{
    return bytes != other.bytes;
}

} // namespace KivPlr

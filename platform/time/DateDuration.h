// SPDX-License-Identifier: Apache-2.0
// DateDuration.h - a span of whole days (signed 32-bit), the difference of
// two Dates, or +infinity / -infinity.
//
// A plain value class: copy it freely; it is not a platform object and one
// object is not synchronised.
//
// Example:
//   DateDuration week(7);
//   Date next = Date(2024, 2, 26) + week;      // 2024-03-04
//   DateDuration gap = next - Date(2024, 1, 1); // 63 days
#ifndef KIVPLR_DATEDURATION_H
#define KIVPLR_DATEDURATION_H

#include <KivPlr/core/Export.h>
#include <KivPlr/time/ValueKind.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API DateDuration : public KindOrdered<DateDuration>
{
public:
    /// A finite span of \p days (negative spans are allowed).
    DateDuration(std::int32_t days);
    /// The given kind with 0 days (KindPositiveInfinity, ...).
    explicit DateDuration(ValueKind kind);
    virtual ~DateDuration();

    DateDuration(const DateDuration&) = default;
    DateDuration& operator=(const DateDuration&) = default;

    ValueKind GetKind() const;
    std::int32_t GetDays() const;

    /// Equal kinds and, for finite spans, equal day counts.
    bool operator==(const DateDuration& other) const;
    /// Ordered by the kind rules of ValueKind.h, finite spans by days;
    /// !=, >, <= and >= follow from == and < (KindOrdered).
    bool operator<(const DateDuration& other) const;

private:
    ValueKind kind;
    std::int32_t days;
};

} // namespace KivPlr

#endif

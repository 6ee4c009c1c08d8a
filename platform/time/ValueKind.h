// SPDX-License-Identifier: Apache-2.0
// ValueKind.h - the kind tag that every time value carries, and the
// comparison rules that the tag decides.
//
// TimeDuration, DateDuration, Date and TimePoint are finite values or one of
// the special values +infinity, -infinity and (for TimeDuration only) "not a
// value". Their operators compare through KindEqual and KindLess:
//
// Example:
//   bool less = KindLess(KindNegativeInfinity, 0, KindFinite, -5);            // true
//   bool equal = KindEqual(KindPositiveInfinity, 1, KindPositiveInfinity, 2);  // true
//
// Plain functions without state; usable from any thread.
#ifndef KIVPLR_VALUEKIND_H
#define KIVPLR_VALUEKIND_H

#include <KivPlr/core/Export.h>

#include <cstdint>

namespace KivPlr {

/// The kind tag: a 32-bit value in front of every time value's payload.
enum ValueKind : std::int32_t
{
    KindFinite = 0,           ///< an ordinary value; the payload counts
    KindPositiveInfinity = 1, ///< greater than every other value
    KindNegativeInfinity = 2, ///< less than every other value
    KindNotAValue = 3,        ///< a default-constructed TimeDuration
};

/// Equal when the kinds are equal and, for two finite values, the payloads
/// are equal. Two special values of one kind are equal whatever their payload.
template <typename Payload>
bool KindEqual(ValueKind leftKind, Payload left, ValueKind rightKind, Payload right)
{
    if (leftKind != rightKind)
        return false;
    return leftKind != KindFinite || left == right;
}

/// Less-than under the kind rules: -infinity is less than everything except
/// -infinity; +infinity is less than nothing; everything else is less than
/// +infinity. Two finite values compare by payload. "Not a value" is ordered
/// only against the infinities: against a finite value or itself both
/// directions are false, as for a floating-point NaN.
template <typename Payload>
bool KindLess(ValueKind leftKind, Payload left, ValueKind rightKind, Payload right)
{
    if (leftKind == KindNegativeInfinity)
        return rightKind != KindNegativeInfinity;
    if (leftKind == KindPositiveInfinity)
        return false;
    if (rightKind == KindPositiveInfinity)
        return true;
    if (rightKind == KindNegativeInfinity)
        return false;
    if (leftKind == KindFinite && rightKind == KindFinite)
        return left < right;
    return false;
}

/// Gives a value class !=, >, <= and >= from its own == and <:
/// `class Date : public KindOrdered<Date>`. Under these rules a <= b is
/// a < b or a == b, so a "not a value" duration is <= only itself.
template <typename Value>
class KIVPLR_API KindOrdered
{
public:
    friend bool operator!=(const Value& left, const Value& right) { return !(left == right); }
    friend bool operator>(const Value& left, const Value& right) { return right < left; }
    friend bool operator<=(const Value& left, const Value& right) { return left < right || left == right; }
    friend bool operator>=(const Value& left, const Value& right) { return right < left || left == right; }
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/DateDuration.h>

namespace KivPlr {

DateDuration::DateDuration(std::int32_t days) : kind(KindFinite), days(days)
{
}

DateDuration::DateDuration(ValueKind kind) : kind(kind), days(0)
{
}

DateDuration::~DateDuration() = default;

ValueKind DateDuration::GetKind() const
{
    return kind;
}

std::int32_t DateDuration::GetDays() const
{
    return days;
}

bool DateDuration::operator==(const DateDuration& other) const
{
    return KindEqual(kind, days, other.kind, other.days);
}

bool DateDuration::operator<(const DateDuration& other) const
{
    return KindLess(kind, days, other.kind, other.days);
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
// Iso8601Duration.h - the ISO 8601 duration text "PnYnMnWnDTnHnMnS": seven
// single-precision components, a precision, and a reader and writer over a
// standard stream. It sits beside TimeDuration for configuration and logs.
//
// A plain value class, not a platform object; one object is not
// synchronised. A null result or stream reference ends the process
// (FatalError). Components are positive or absent (0):
//
// Example:
//   #include <sstream>
//   Iso8601Duration duration;
//   _Result result = ResultFail;
//   duration.SetDays(1.5f, result);          // 200
//   duration.SetSeconds(10.0f, result);      // 200
//   std::ostringstream out;
//   duration.Write(out, result);             // "P1DT12H10S"
//   std::istringstream in("PT90M");
//   duration.Read(in, result);               // 200, 250, 400 or 500
//
// Floats are compared with the tolerance 1.1920929e-7 (single-precision
// epsilon): a difference above it is greater, one below its negation less.
#ifndef KIVPLR_ISO8601DURATION_H
#define KIVPLR_ISO8601DURATION_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Result.h>

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

namespace KivPlr {

class KIVPLR_API Iso8601Duration
{
public:
    static constexpr float Tolerance = 1.1920929e-7f;
    static constexpr std::int32_t LargestPrecision = 6;

    /// Every component 0, precision 0.
    Iso8601Duration();
    virtual ~Iso8601Duration();

    Iso8601Duration(const Iso8601Duration&) = default;
    Iso8601Duration& operator=(const Iso8601Duration&) = default;

    /// Each setter stores \p value with result 200, or refuses a value that
    /// compares <= 0 (within the tolerance) with result 400 and keeps the
    /// old one. Use Clear to remove components.
    void SetYears(float value, _Result& result);
    void SetMonths(float value, _Result& result);
    void SetWeeks(float value, _Result& result);
    void SetDays(float value, _Result& result);
    void SetHours(float value, _Result& result);
    void SetMinutes(float value, _Result& result);
    void SetSeconds(float value, _Result& result);

    float GetYears() const;
    float GetMonths() const;
    float GetWeeks() const;
    float GetDays() const;
    float GetHours() const;
    float GetMinutes() const;
    float GetSeconds() const;

    /// Decimal places written (and used for the carries of Normalise);
    /// clamped to 0..6, since a float holds about seven digits.
    void SetPrecision(std::int32_t decimals);
    std::int32_t GetPrecision() const;

    /// Every component back to 0; the precision stays.
    void Clear();

    /// Carries fractions down the chain weeks (x7) -> days (x24) -> hours
    /// (x60) -> minutes (x60) -> seconds, each carried amount rounded to the
    /// precision, so that only the smallest non-zero unit of the chain keeps
    /// a fraction. Years and months have no fixed length in days and keep
    /// their fractions.
    void Normalise();

    /// Writes a normalised copy: "P", then each component that is not 0 after
    /// rounding to the precision, with its letter (Y, M, W, D); "T" and H, M,
    /// S when any of those is not 0. Values are written with at most
    /// precision decimals, without trailing zeros. A zero duration is "P".
    /// Result 200, or 500 when the stream fails.
    void Write(std::ostream& stream, _Result& result) const;
    /// What Write would put on a stream.
    std::string ToText() const;

    /// Reads "P", the date components in the order Y, M, W, D (each at most
    /// once), then optionally "T" and at least one of H, M, S in that order.
    /// Numbers are read with the stream's float extraction, each followed by
    /// its letter. Results: 250 when the input ends where "T" could stand
    /// (after the date part, even an empty one); 200 when a time part was read,
    /// or a non-empty date part ended at a character that is neither a number
    /// nor "T" (left unread); 400 when a value is <= 0 (the setter refuses
    /// it); 500 for anything else (no "P", a failed number, a wrong or
    /// repeated letter, "T" without a component, "P" followed by neither). The components are replaced only on 200 and
    /// 250; on failure they keep their old values.
    void Read(std::istream& stream, _Result& result);

    /// \p value rounded to the precision: floor(value x 10^p + 0.5) / 10^p.
    float Round(float value) const;

    /// 1 when left - right > Tolerance, -1 when it is below -Tolerance, else 0.
    static int Compare(float left, float right);

private:
    enum Component
    {
        Years,
        Months,
        Weeks,
        Days,
        Hours,
        Minutes,
        Seconds,
        ComponentCount
    };

    void SetComponent(Component component, float value, _Result& result);
    void ReadComponents(std::istream& stream, const Component* allowed, std::int32_t allowedCount,
                        std::int32_t& read, _Result& result);

    float components[ComponentCount];
    std::int32_t precision;
};

} // namespace KivPlr

#endif

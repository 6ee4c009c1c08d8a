// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Iso8601Duration.h>

#include <KivPlr/core/FatalError.h>

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <sstream>

namespace KivPlr {

namespace {

const char ComponentLetters[] = {'Y', 'M', 'W', 'D', 'H', 'M', 'S'};

const float PowersOfTen[Iso8601Duration::LargestPrecision + 1] = {1.0f, 10.0f, 100.0f, 1000.0f,
                                                                   10000.0f, 100000.0f, 1000000.0f};

// The value with at most \p precision decimals and no trailing zeros.
std::string FormatValue(float value, std::int32_t precision)
{
    char buffer[64];
    int length = std::snprintf(buffer, sizeof buffer, "%.*f", static_cast<int>(precision),
                               static_cast<double>(value));
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof buffer)
        return std::string();
    std::string text(buffer, static_cast<std::size_t>(length));
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text;
}

// The helpers take addresses: passing a reference on would bind a new
// reference to the null address.
void CheckResultReference(const _Result* result)
{
    if (IsNullReference(result))
        FatalError(L"Iso8601Duration: result NULL reference.");
}

// The stream's own type: converting to its virtual base std::ios would
// already read through the null address.
template <typename Stream>
void CheckStreamReference(const Stream* stream)
{
    if (IsNullReference(stream))
        FatalError(L"Iso8601Duration: stream NULL reference.");
}

bool StartsNumber(std::istream::int_type character)
{
    return (character >= '0' && character <= '9') || character == '.' || character == '+' || character == '-';
}

} // namespace

Iso8601Duration::Iso8601Duration() : components(), precision(0)
{
}

Iso8601Duration::~Iso8601Duration() = default;

void Iso8601Duration::SetComponent(Component component, float value, _Result& result)
{
    CheckResultReference(&result);
    if (Compare(value, 0.0f) <= 0) {
        result = ResultOutOfRange;
        return;
    }
    components[component] = value;
    result = ResultPass;
}

void Iso8601Duration::SetYears(float value, _Result& result)
{
    SetComponent(Years, value, result);
}

void Iso8601Duration::SetMonths(float value, _Result& result)
{
    SetComponent(Months, value, result);
}

void Iso8601Duration::SetWeeks(float value, _Result& result)
{
    SetComponent(Weeks, value, result);
}

void Iso8601Duration::SetDays(float value, _Result& result)
{
    SetComponent(Days, value, result);
}

void Iso8601Duration::SetHours(float value, _Result& result)
{
    SetComponent(Hours, value, result);
}

void Iso8601Duration::SetMinutes(float value, _Result& result)
{
    SetComponent(Minutes, value, result);
}

void Iso8601Duration::SetSeconds(float value, _Result& result)
{
    SetComponent(Seconds, value, result);
}

float Iso8601Duration::GetYears() const
{
    return components[Years];
}

float Iso8601Duration::GetMonths() const
{
    return components[Months];
}

float Iso8601Duration::GetWeeks() const
{
    return components[Weeks];
}

float Iso8601Duration::GetDays() const
{
    return components[Days];
}

float Iso8601Duration::GetHours() const
{
    return components[Hours];
}

float Iso8601Duration::GetMinutes() const
{
    return components[Minutes];
}

float Iso8601Duration::GetSeconds() const
{
    return components[Seconds];
}

void Iso8601Duration::SetPrecision(std::int32_t decimals)
{
    precision = decimals < 0 ? 0 : (decimals > LargestPrecision ? LargestPrecision : decimals);
}

std::int32_t Iso8601Duration::GetPrecision() const
{
    return precision;
}

void Iso8601Duration::Clear()
{
    for (float& component : components)
        component = 0.0f;
}

float Iso8601Duration::Round(float value) const
{
    float scale = PowersOfTen[precision];
    return std::floor(value * scale + 0.5f) / scale;
}

int Iso8601Duration::Compare(float left, float right)
{
    float difference = left - right;
    if (difference > Tolerance)
        return 1;
    if (difference < -Tolerance)
        return -1;
    return 0;
}

void Iso8601Duration::Normalise()
{
    static const Component chain[] = {Weeks, Days, Hours, Minutes, Seconds};
    static const float factors[] = {7.0f, 24.0f, 60.0f, 60.0f};
    constexpr int chainLength = sizeof chain / sizeof chain[0];
    int smallest = -1;
    for (int position = 0; position < chainLength; ++position) {
        if (Compare(components[chain[position]], 0.0f) != 0)
            smallest = position;
    }
    for (int position = 0; position < smallest; ++position) {
        float value = components[chain[position]];
        float whole = std::floor(value);
        components[chain[position]] = whole;
        components[chain[position + 1]] += Round((value - whole) * factors[position]);
    }
}

void Iso8601Duration::Write(std::ostream& stream, _Result& result) const
{
    CheckResultReference(&result);
    CheckStreamReference(&stream);
    stream << ToText();
    result = stream.fail() ? ResultFail : ResultPass;
}

std::string Iso8601Duration::ToText() const
{
    Iso8601Duration normalised(*this);
    normalised.Normalise();
    float rounded[ComponentCount];
    for (int component = 0; component < ComponentCount; ++component)
        rounded[component] = Round(normalised.components[component]);
    std::string text = "P";
    for (int component = 0; component < ComponentCount; ++component) {
        if (component == Hours && Compare(rounded[Hours], 0.0f) == 0 && Compare(rounded[Minutes], 0.0f) == 0 &&
            Compare(rounded[Seconds], 0.0f) == 0)
            break;
        if (component == Hours)
            text += 'T';
        if (Compare(rounded[component], 0.0f) != 0)
            text += FormatValue(rounded[component], precision) + ComponentLetters[component];
    }
    return text;
}

// Reads "number letter" pairs whose letters are among \p allowed, in that
// order, into this object. Stops at the end of input, or before the first
// character that does not start a number; \p result is 500 or 400 when a pair
// was wrong, untouched otherwise.
void Iso8601Duration::ReadComponents(std::istream& stream, const Component* allowed, std::int32_t allowedCount,
                                     std::int32_t& read, _Result& result)
{
    std::int32_t next = 0;
    while (StartsNumber(stream.peek())) {
        float value = 0.0f;
        if (!(stream >> value)) {
            result = ResultFail;
            return;
        }
        std::istream::int_type letter = stream.get();
        while (next < allowedCount && ComponentLetters[allowed[next]] != letter)
            ++next;
        if (next == allowedCount) {
            result = ResultFail;
            return;
        }
        SetComponent(allowed[next], value, result);
        if (result != ResultPass)
            return;
        ++next;
        ++read;
    }
}

void Iso8601Duration::Read(std::istream& stream, _Result& result)
{
    static const Component dateComponents[] = {Years, Months, Weeks, Days};
    static const Component timeComponents[] = {Hours, Minutes, Seconds};
    CheckResultReference(&result);
    CheckStreamReference(&stream);
    Iso8601Duration candidate(*this);
    candidate.Clear();
    if (stream.get() != 'P') {
        result = ResultFail;
        return;
    }
    _Result partResult = ResultPass;
    std::int32_t read = 0;
    candidate.ReadComponents(stream, dateComponents, 4, read, partResult);
    if (partResult != ResultPass) {
        result = partResult;
        return;
    }
    std::istream::int_type next = stream.peek();
    if (next == std::istream::traits_type::eof()) {
        // The input ends where the time part could begin.
        *this = candidate;
        result = ResultPassAlternate;
        return;
    }
    if (next != 'T' && read == 0) {
        // Neither a component nor the time part follows "P".
        result = ResultFail;
        return;
    }
    if (next == 'T') {
        stream.get();
        read = 0;
        candidate.ReadComponents(stream, timeComponents, 3, read, partResult);
        if (partResult != ResultPass) {
            result = partResult;
            return;
        }
        if (read == 0) {
            result = ResultFail;
            return;
        }
    }
    *this = candidate;
    result = ResultPass;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Iso8601Duration.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>

using namespace KivPlr;

namespace {

// The duration built by the setters, every one expected to answer 200.
Iso8601Duration Make(float years, float months, float weeks, float days, float hours, float minutes, float seconds,
                     std::int32_t precision = 0)
{
    Iso8601Duration duration;
    duration.SetPrecision(precision);
    auto set = [&duration](void (Iso8601Duration::*setter)(float, _Result&), float value) {
        if (value == 0.0f)
            return;
        _Result result = ResultFail;
        (duration.*setter)(value, result);
        EXPECT_EQ(result, ResultPass) << value;
    };
    set(&Iso8601Duration::SetYears, years);
    set(&Iso8601Duration::SetMonths, months);
    set(&Iso8601Duration::SetWeeks, weeks);
    set(&Iso8601Duration::SetDays, days);
    set(&Iso8601Duration::SetHours, hours);
    set(&Iso8601Duration::SetMinutes, minutes);
    set(&Iso8601Duration::SetSeconds, seconds);
    return duration;
}

struct ReadOutcome
{
    _Result result;
    Iso8601Duration duration;
    std::string rest; // what the reader left on the stream
};

ReadOutcome Read(const std::string& text)
{
    ReadOutcome outcome{ResultNotSupported, Iso8601Duration(), std::string()};
    std::istringstream stream(text);
    outcome.duration.Read(stream, outcome.result);
    stream.clear();
    std::getline(stream, outcome.rest, '\0');
    return outcome;
}

void ExpectComponents(const Iso8601Duration& duration, float years, float months, float weeks, float days,
                      float hours, float minutes, float seconds)
{
    EXPECT_FLOAT_EQ(duration.GetYears(), years);
    EXPECT_FLOAT_EQ(duration.GetMonths(), months);
    EXPECT_FLOAT_EQ(duration.GetWeeks(), weeks);
    EXPECT_FLOAT_EQ(duration.GetDays(), days);
    EXPECT_FLOAT_EQ(duration.GetHours(), hours);
    EXPECT_FLOAT_EQ(duration.GetMinutes(), minutes);
    EXPECT_FLOAT_EQ(duration.GetSeconds(), seconds);
}

} // namespace

TEST(Iso8601DurationTest, NewDurationIsZeroWithPrecisionZero)
{
    Iso8601Duration duration;
    ExpectComponents(duration, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(duration.GetPrecision(), 0);
}

TEST(Iso8601DurationTest, SetterStoresAPositiveValue)
{
    Iso8601Duration duration;
    _Result result = ResultFail;
    duration.SetHours(2.5f, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FLOAT_EQ(duration.GetHours(), 2.5f);
}

TEST(Iso8601DurationTest, SetterRefusesZeroAndNegativeValuesAndKeepsTheOldOne)
{
    for (float refused : {0.0f, -1.0f, 1e-8f, -1e-8f}) {
        Iso8601Duration duration = Make(0, 0, 0, 3, 0, 0, 0);
        _Result result = ResultPass;
        duration.SetDays(refused, result);
        EXPECT_EQ(result, ResultOutOfRange) << refused;
        EXPECT_FLOAT_EQ(duration.GetDays(), 3.0f);
    }
}

TEST(Iso8601DurationTest, CompareUsesSinglePrecisionEpsilon)
{
    EXPECT_EQ(Iso8601Duration::Compare(2.5e-7f, 0.0f), 1);
    EXPECT_EQ(Iso8601Duration::Compare(1.0e-7f, 0.0f), 0);
    EXPECT_EQ(Iso8601Duration::Compare(-1.0e-7f, 0.0f), 0);
    EXPECT_EQ(Iso8601Duration::Compare(-2.5e-7f, 0.0f), -1);
    EXPECT_EQ(Iso8601Duration::Compare(1.0f, 2.0f), -1);
    EXPECT_EQ(Iso8601Duration::Compare(2.0f, 1.0f), 1);
    EXPECT_EQ(Iso8601Duration::Compare(1.0f, 1.0f), 0);
    // One step of a float above 1 is exactly the tolerance: still equal.
    EXPECT_EQ(Iso8601Duration::Compare(std::nextafter(1.0f, 2.0f), 1.0f), 0);
}

TEST(Iso8601DurationTest, PrecisionIsClampedToZeroToSix)
{
    Iso8601Duration duration;
    duration.SetPrecision(-3);
    EXPECT_EQ(duration.GetPrecision(), 0);
    duration.SetPrecision(9);
    EXPECT_EQ(duration.GetPrecision(), 6);
    duration.SetPrecision(3);
    EXPECT_EQ(duration.GetPrecision(), 3);
}

TEST(Iso8601DurationTest, RoundAddsAHalfAndFloorsAtThePrecision)
{
    Iso8601Duration duration;
    EXPECT_FLOAT_EQ(duration.Round(2.5f), 3.0f);
    EXPECT_FLOAT_EQ(duration.Round(2.49f), 2.0f);
    duration.SetPrecision(1);
    EXPECT_FLOAT_EQ(duration.Round(1.25f), 1.3f);
    EXPECT_FLOAT_EQ(duration.Round(1.24f), 1.2f);
    duration.SetPrecision(3);
    EXPECT_FLOAT_EQ(duration.Round(0.0005f), 0.001f);
}

TEST(Iso8601DurationTest, WritesEveryComponentWithItsLetter)
{
    EXPECT_EQ(Make(1, 2, 3, 4, 5, 6, 7).ToText(), "P1Y2M3W4DT5H6M7S");
}

TEST(Iso8601DurationTest, WritesOnlyTheNonZeroComponents)
{
    EXPECT_EQ(Make(0, 2, 0, 0, 0, 0, 0).ToText(), "P2M");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 2, 0).ToText(), "PT2M");
    EXPECT_EQ(Make(1, 0, 0, 0, 0, 0, 9).ToText(), "P1YT9S");
}

TEST(Iso8601DurationTest, ZeroDurationIsWrittenAsAlonePeriodDesignator)
{
    EXPECT_EQ(Iso8601Duration().ToText(), "P");
}

TEST(Iso8601DurationTest, FractionOfADayIsCarriedIntoHours)
{
    EXPECT_EQ(Make(0, 0, 0, 1.5f, 0, 0, 10).ToText(), "P1DT12H10S");
}

TEST(Iso8601DurationTest, FractionsAreCarriedDownToTheSmallestUnit)
{
    // 1.25 h -> 1 h 15 min; 0.5 min of the hours' carry would go on to seconds.
    EXPECT_EQ(Make(0, 0, 0, 0, 1.25f, 0, 1).ToText(), "PT1H15M1S");
    EXPECT_EQ(Make(0, 0, 0, 0, 1.5f, 0.5f, 0, 1).ToText(), "PT1H30.5M");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 2.5f, 3).ToText(), "PT2M33S");
}

TEST(Iso8601DurationTest, FractionOfAWeekIsCarriedIntoDays)
{
    EXPECT_EQ(Make(0, 0, 1.5f, 1, 0, 0, 0, 1).ToText(), "P1W4.5D");
    EXPECT_EQ(Make(0, 0, 1.5f, 0, 0, 0, 1, 1).ToText(), "P1W3DT12H1S");
    // At precision 0 the carried 3.5 days are rounded to 4 before going on.
    EXPECT_EQ(Make(0, 0, 1.5f, 0, 0, 0, 1, 0).ToText(), "P1W4DT1S");
}

TEST(Iso8601DurationTest, SmallestUnitKeepsItsFraction)
{
    EXPECT_EQ(Make(0, 0, 0, 1.5f, 0, 0, 0, 1).ToText(), "P1.5D");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 2.5f, 0, 1).ToText(), "PT2.5M");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 2.5f, 3).ToText(), "PT2.5S");
}

TEST(Iso8601DurationTest, SmallestUnitIsRoundedToThePrecision)
{
    EXPECT_EQ(Make(0, 0, 0, 1.5f, 0, 0, 0).ToText(), "P2D");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 1.23456f, 0).ToText(), "PT1S");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 1.23456f, 1).ToText(), "PT1.2S");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 1.23456f, 2).ToText(), "PT1.23S");
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 1.23456f, 3).ToText(), "PT1.235S");
}

TEST(Iso8601DurationTest, CarriedAmountsAreRoundedToThePrecision)
{
    // 0.1 d = 2.4 h; 0.4 h = 24 min. Float noise on the way is rounded off.
    EXPECT_EQ(Make(0, 0, 0, 1.1f, 0, 0, 1, 1).ToText(), "P1DT2H24M1S");
    // 1/3 d is 8 h to the precision.
    EXPECT_EQ(Make(0, 0, 0, 1.0f + 1.0f / 3.0f, 0, 0, 1, 0).ToText(), "P1DT8H1S");
    EXPECT_EQ(Make(0, 0, 0, 1.0f + 1.0f / 3.0f, 0, 0, 1, 2).ToText(), "P1DT8H1S");
}

TEST(Iso8601DurationTest, YearsAndMonthsKeepTheirFractions)
{
    EXPECT_EQ(Make(1.5f, 2.5f, 0, 1, 0, 0, 0, 1).ToText(), "P1.5Y2.5M1D");
}

TEST(Iso8601DurationTest, ComponentRoundingToZeroIsLeftOut)
{
    EXPECT_EQ(Make(0, 0, 0, 0, 0, 0, 0.0004f, 3).ToText(), "P");
    EXPECT_EQ(Make(0, 0, 0, 2, 0, 0, 0.0004f, 3).ToText(), "P2D");
}

TEST(Iso8601DurationTest, NormaliseChangesTheObjectItself)
{
    Iso8601Duration duration = Make(0, 0, 0, 1.5f, 0, 0, 10);
    duration.Normalise();
    ExpectComponents(duration, 0, 0, 0, 1, 12, 0, 10);
}

TEST(Iso8601DurationTest, WritingLeavesTheObjectAsItWas)
{
    Iso8601Duration duration = Make(0, 0, 0, 1.5f, 0, 0, 10);
    std::ostringstream stream;
    _Result result = ResultFail;
    duration.Write(stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(stream.str(), "P1DT12H10S");
    EXPECT_FLOAT_EQ(duration.GetDays(), 1.5f);
}

TEST(Iso8601DurationTest, WritingToAFailedStreamAnswers500)
{
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    _Result result = ResultPass;
    Make(1, 0, 0, 0, 0, 0, 0).Write(stream, result);
    EXPECT_EQ(result, ResultFail);
}

TEST(Iso8601DurationTest, ReadsEveryComponent)
{
    ReadOutcome outcome = Read("P1Y2M3W4DT5H6M7S");
    EXPECT_EQ(outcome.result, ResultPass);
    ExpectComponents(outcome.duration, 1, 2, 3, 4, 5, 6, 7);
}

TEST(Iso8601DurationTest, ReadsFractionsWithTheStreamsFloatExtraction)
{
    ReadOutcome outcome = Read("P1.5DT0.25H2.125S");
    EXPECT_EQ(outcome.result, ResultPass);
    ExpectComponents(outcome.duration, 0, 0, 0, 1.5f, 0.25f, 0, 2.125f);
}

TEST(Iso8601DurationTest, MonthsAndMinutesAreToldApartByTheTimeDesignator)
{
    ReadOutcome months = Read("P5M");
    EXPECT_EQ(months.result, ResultPassAlternate);
    ExpectComponents(months.duration, 0, 5, 0, 0, 0, 0, 0);
    ReadOutcome minutes = Read("PT5M");
    EXPECT_EQ(minutes.result, ResultPass);
    ExpectComponents(minutes.duration, 0, 0, 0, 0, 0, 5, 0);
}

TEST(Iso8601DurationTest, EndOfInputWhereTheTimePartCouldBeginAnswers250)
{
    ReadOutcome outcome = Read("P1Y2D");
    EXPECT_EQ(outcome.result, ResultPassAlternate);
    ExpectComponents(outcome.duration, 1, 0, 0, 2, 0, 0, 0);
    EXPECT_EQ(Read("P").result, ResultPassAlternate);
}

TEST(Iso8601DurationTest, DateDurationEndingAtAnotherCharacterAnswers200AndLeavesIt)
{
    ReadOutcome outcome = Read("P3D, next");
    EXPECT_EQ(outcome.result, ResultPass);
    ExpectComponents(outcome.duration, 0, 0, 0, 3, 0, 0, 0);
    EXPECT_EQ(outcome.rest, ", next");
}

TEST(Iso8601DurationTest, TimePartLeavesWhatFollowsIt)
{
    ReadOutcome outcome = Read("PT1H30M rest");
    EXPECT_EQ(outcome.result, ResultPass);
    ExpectComponents(outcome.duration, 0, 0, 0, 0, 1, 30, 0);
    EXPECT_EQ(outcome.rest, " rest");
}

TEST(Iso8601DurationTest, ZeroOrNegativeValueIsRefusedWith400)
{
    EXPECT_EQ(Read("P0D").result, ResultOutOfRange);
    EXPECT_EQ(Read("P-1Y").result, ResultOutOfRange);
    EXPECT_EQ(Read("PT0S").result, ResultOutOfRange);
    EXPECT_EQ(Read("P1YT2H-3M").result, ResultOutOfRange);
}

TEST(Iso8601DurationTest, MalformedTextAnswers500)
{
    for (const char* text : {"", "X1Y", "p1Y", "1Y", "P1", "P1X", "P1D1Y", "P1Y1Y", "PT", "P1YT", "PT1Y", "PT1H2H",
                             "PT1S1H", "P.Y", "PX", "P1YT1H1"}) {
        EXPECT_EQ(Read(text).result, ResultFail) << '"' << text << '"';
    }
}

TEST(Iso8601DurationTest, FailedReadKeepsTheOldComponents)
{
    Iso8601Duration duration = Make(0, 0, 0, 3, 0, 0, 0);
    for (const char* text : {"P1X", "P2D0H", "P-1D", "PT"}) {
        std::istringstream stream(text);
        _Result result = ResultPass;
        duration.Read(stream, result);
        EXPECT_TRUE(Failed(result)) << text;
        ExpectComponents(duration, 0, 0, 0, 3, 0, 0, 0);
    }
}

TEST(Iso8601DurationTest, SuccessfulReadReplacesEveryComponent)
{
    Iso8601Duration duration = Make(1, 1, 1, 1, 1, 1, 1);
    std::istringstream stream("PT4S");
    _Result result = ResultFail;
    duration.Read(stream, result);
    EXPECT_EQ(result, ResultPass);
    ExpectComponents(duration, 0, 0, 0, 0, 0, 0, 4);
}

TEST(Iso8601DurationTest, WrittenTextReadsBackAsTheNormalisedDuration)
{
    std::mt19937 random(8601);
    std::uniform_int_distribution<int> present(0, 2);
    std::uniform_int_distribution<int> tenths(1, 999);
    std::uniform_int_distribution<std::int32_t> precisions(0, 3);
    for (int sample = 0; sample < 2000; ++sample) {
        float values[7];
        for (float& value : values)
            value = present(random) == 0 ? 0.0f : static_cast<float>(tenths(random)) / 10.0f;
        Iso8601Duration original =
            Make(values[0], values[1], values[2], values[3], values[4], values[5], values[6], precisions(random));
        std::string text = original.ToText();
        Iso8601Duration readBack;
        readBack.SetPrecision(original.GetPrecision());
        std::istringstream stream(text);
        _Result result = ResultFail;
        readBack.Read(stream, result);
        ASSERT_TRUE(Succeeded(result)) << text;
        // The text holds the normalised values rounded to the precision.
        Iso8601Duration expected(original);
        expected.Normalise();
        float step = 1.0f / std::pow(10.0f, static_cast<float>(original.GetPrecision()));
        EXPECT_NEAR(readBack.GetYears(), expected.Round(expected.GetYears()), step / 2) << text;
        EXPECT_NEAR(readBack.GetMonths(), expected.Round(expected.GetMonths()), step / 2) << text;
        EXPECT_NEAR(readBack.GetWeeks(), expected.Round(expected.GetWeeks()), step / 2) << text;
        EXPECT_NEAR(readBack.GetDays(), expected.Round(expected.GetDays()), step / 2) << text;
        EXPECT_NEAR(readBack.GetHours(), expected.Round(expected.GetHours()), step / 2) << text;
        EXPECT_NEAR(readBack.GetMinutes(), expected.Round(expected.GetMinutes()), step / 2) << text;
        EXPECT_NEAR(readBack.GetSeconds(), expected.Round(expected.GetSeconds()), step / 2) << text;
        // And writing it again gives the same text.
        ASSERT_EQ(readBack.ToText(), text);
    }
}

TEST(Iso8601DurationTest, ANullResultReferenceIsFatalForEverySetterAndForReadAndWrite)
{
    typedef void (Iso8601Duration::*Setter)(float, _Result&);
    const Setter setters[] = {&Iso8601Duration::SetYears, &Iso8601Duration::SetMonths,
                              &Iso8601Duration::SetWeeks, &Iso8601Duration::SetDays,
                              &Iso8601Duration::SetHours, &Iso8601Duration::SetMinutes,
                              &Iso8601Duration::SetSeconds};
    const wchar_t* const message = L"Iso8601Duration: result NULL reference.";
    Iso8601Duration duration;
    for (Setter setter : setters)
        EXPECT_FATAL_MESSAGE(
            KivTest::WithNullReference<_Result>([&](_Result& none) { (duration.*setter)(1.0f, none); }),
            message);
    std::ostringstream out;
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) { duration.Write(out, none); }),
                         message);
    std::istringstream in("P1D");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) { duration.Read(in, none); }),
                         message);
}

TEST(Iso8601DurationTest, ANullStreamReferenceIsFatal)
{
    Iso8601Duration duration;
    _Result result = ResultFail;
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<std::ostream>([&](std::ostream& none) { duration.Write(none, result); }),
        L"Iso8601Duration: stream NULL reference.");
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<std::istream>([&](std::istream& none) { duration.Read(none, result); }),
        L"Iso8601Duration: stream NULL reference.");
}

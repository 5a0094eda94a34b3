#include "ftp/civiltime.h"

#include <gtest/gtest.h>

using ftp::CivilTime;

TEST(CivilTime, CountsSecondsAsUtc)
{
    EXPECT_EQ(ftp::toEpoch({ 1970, 1, 1, 0, 0, 0 }), 0);
    EXPECT_EQ(ftp::toEpoch({ 2023, 11, 14, 22, 13, 20 }), 1700000000);
    EXPECT_EQ(ftp::toEpoch({ 1969, 12, 31, 23, 59, 59 }), -1);
    EXPECT_EQ(ftp::fromEpoch(1709626150), (CivilTime { 2024, 3, 5, 8, 9, 10 }));
    EXPECT_EQ(ftp::fromEpoch(-1), (CivilTime { 1969, 12, 31, 23, 59, 59 }));
}

TEST(CivilTime, GoesBackAndForthOverAllYears)
{
    const std::int64_t first = ftp::toEpoch({ 1, 1, 1, 0, 0, 0 });
    const std::int64_t last = ftp::toEpoch({ 9999, 12, 31, 23, 59, 59 });
    for (std::int64_t second = first; second <= last; second += 86400 * 37 + 12345) {
        const CivilTime time = ftp::fromEpoch(second);
        ASSERT_TRUE(ftp::isValid(time)) << second;
        ASSERT_EQ(ftp::toEpoch(time), second);
    }
}

TEST(CivilTime, ClampsToFourDigitYears)
{
    EXPECT_EQ(ftp::fromEpoch(INT64_MAX), (CivilTime { 9999, 12, 31, 23, 59, 59 }));
    EXPECT_EQ(ftp::fromEpoch(INT64_MIN), (CivilTime { 1, 1, 1, 0, 0, 0 }));
}

TEST(CivilTime, KnowsWhichDatesExist)
{
    EXPECT_TRUE(ftp::isValid({ 2024, 2, 29, 23, 59, 60 }));
    EXPECT_TRUE(ftp::isValid({ 2000, 2, 29, 0, 0, 0 }));
    EXPECT_FALSE(ftp::isValid({ 1900, 2, 29, 0, 0, 0 }));
    EXPECT_FALSE(ftp::isValid({ 2023, 2, 29, 0, 0, 0 }));
    for (const CivilTime &time :
         { CivilTime { 0, 1, 1 }, CivilTime { 10000, 1, 1 }, CivilTime { 2024, 0, 1 },
           CivilTime { 2024, 13, 1 }, CivilTime { 2024, 4, 31 }, CivilTime { 2024, 1, 0 },
           CivilTime { 2024, 1, 1, 24 }, CivilTime { 2024, 1, 1, 0, 60 },
           CivilTime { 2024, 1, 1, 0, 0, 61 }, CivilTime { 2024, 1, 1, -1 } }) {
        EXPECT_FALSE(ftp::isValid(time));
    }
}

TEST(InferYear, TakesTheNewestNotMoreThanADayAhead)
{
    const CivilTime now { 2026, 11, 20, 12, 0, 0 };
    const auto year = [&](int month, int day, int hour) {
        const auto time = ftp::inferYear({ 0, month, day, hour, 0, 0 }, now);
        return time ? time->year : 0;
    };
    EXPECT_EQ(year(11, 20, 9), 2026);
    EXPECT_EQ(year(11, 21, 12), 2026); // exactly a day
    EXPECT_EQ(year(11, 21, 13), 2025);
    EXPECT_EQ(year(12, 31, 0), 2025);
    EXPECT_EQ(year(2, 29, 0), 2024);
    EXPECT_EQ(year(2, 30, 0), 0);
    EXPECT_EQ(ftp::inferYear({ 0, 1, 1, 5 }, { 2026, 12, 31, 12, 0, 0 })->year, 2027);
    EXPECT_EQ(ftp::inferYear({ 0, 2, 29 }, { 1903, 6, 1 })->year, 1896); // 1900 had none
}

TEST(ParseTimeVal, DropsTheFraction)
{
    EXPECT_EQ(ftp::parseTimeVal("20240305080910"), (CivilTime { 2024, 3, 5, 8, 9, 10 }));
    EXPECT_EQ(ftp::parseTimeVal("20240305080910.123"), (CivilTime { 2024, 3, 5, 8, 9, 10 }));
    EXPECT_EQ(ftp::parseTimeVal("20161231235960"), (CivilTime { 2016, 12, 31, 23, 59, 60 }));
    for (const char *text :
         { "", "2024030508091", "202403050809101", "20240305080910 ", " 20240305080910",
           "2024-03-05080910", "20241305080910", "20240230080910", "20240305240910",
           "20240305080910.x", "191000305080910" }) {
        EXPECT_FALSE(ftp::parseTimeVal(text).has_value()) << text;
    }
}

TEST(FormatTimeVal, IsReadBack)
{
    EXPECT_EQ(ftp::formatTimeVal({ 987, 3, 5, 8, 9, 10 }), "09870305080910");
    EXPECT_EQ(ftp::parseTimeVal(ftp::formatTimeVal({ 2026, 11, 20, 17, 49, 15 })),
              (CivilTime { 2026, 11, 20, 17, 49, 15 }));
}

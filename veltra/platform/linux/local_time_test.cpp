// SPDX-License-Identifier: MIT
#include "veltra/platform/local_time.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/child_process.h"

#include <time.h>

namespace veltra {
namespace {

bool agreesWithTheSystem(std::int64_t seconds) {
    const auto moment = static_cast<time_t>(seconds);
    tm fields{};
    if (::localtime_r(&moment, &fields) == nullptr) return false;
    const CivilTime expected{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                             fields.tm_hour,        fields.tm_min,     fields.tm_sec};
    return LocalTime::current().civilTime({seconds, 999'999'999}) == expected;
}

// Steps through the centuries, and through the hours around each change of the zone.
bool agreesInZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
    bool agrees = true;
    for (std::int64_t seconds = -5'000'000'000; seconds < 20'000'000'000; seconds += 1'000'003)
        agrees = agrees && agreesWithTheSystem(seconds);
    long before = 0;
    for (std::int64_t moment = -2'500'000'000; moment < 2'200'000'000; moment += 14400) {
        const auto systemMoment = static_cast<time_t>(moment);
        tm fields{};
        ::localtime_r(&systemMoment, &fields);
        if (std::exchange(before, fields.tm_gmtoff) == fields.tm_gmtoff) continue;
        for (std::int64_t second = moment - 18000; second < moment + 3600; second += 11)
            agrees = agrees && agreesWithTheSystem(second);
    }
    return agrees;
}

TEST(LocalTime, AgreesWithTheSystemInEveryCenturyAndAroundEveryChangeOfTheZone) {
    // Changes at odd minutes (St Johns), a distance of quarters (Kathmandu, Chatham), of odd
    // seconds (Monrovia), a skipped day (Apia), a half-hour summer time (Lord Howe), leap seconds.
    for (const char* zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Asia/Kathmandu",
                             "Pacific/Chatham", "Africa/Monrovia", "Pacific/Apia",
                             "Australia/Lord_Howe", "right/Europe/Paris", "XYZ3:07:30"})
        EXPECT_TRUE(testing::holdsInChild([zone] { return agreesInZone(zone); })) << zone;
}

TEST(LocalTime, ANewZoneShowsAtOnceAndImpossibleYearsAreNotTold) {
    EXPECT_TRUE(testing::holdsInChild([] {
        ::setenv("TZ", "UTC", 1);
        const LocalTime& local = LocalTime::current();
        const auto early = local.civilTime({45'000, 0});
        ::setenv("TZ", "AAA-2", 1);
        return early == CivilTime{1970, 1, 1, 12, 30, 0} &&
               local.civilTime({45'000, 0}) == CivilTime{1970, 1, 1, 14, 30, 0} &&
               local.civilTime({-3'600, 0}) == CivilTime{1970, 1, 1, 1, 0, 0} &&
               !local.civilTime({INT64_MAX, 0}) && !local.civilTime({INT64_MIN, 0});
    }));
}

}  // namespace
}  // namespace veltra

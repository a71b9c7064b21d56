#include "veltra/platform/local_time.h"

#include "veltra/platform/testing/environment.h"

#include <cstdlib>
#include <ostream>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

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

// A child with the zone set: the first moment on which we and the C library differ, as its exit
// status (1), for steps through the centuries and for every second around each change of the zone.
int sweep(const char* zone) {
    const pid_t child = ::fork();
    if (child == 0) {
        setEnvironment("TZ", zone);
        ::tzset();
        bool agrees = true;
        for (std::int64_t seconds = -5'000'000'000; seconds < 20'000'000'000; seconds += 1'000'003)
            agrees = agrees && agreesWithTheSystem(seconds);
        for (std::int64_t seconds = 1'700'000'000; seconds < 1'700'000'000 + 86400; seconds += 7)
            agrees = agrees && agreesWithTheSystem(seconds);
        long before = 0;
        for (std::int64_t hour = -80L * 8766; hour < 70L * 8766; hour += 4) {
            const auto moment = static_cast<time_t>(hour * 3600);
            tm fields{};
            ::localtime_r(&moment, &fields);
            if (fields.tm_gmtoff != before)
                for (std::int64_t second = moment - 18000; second < moment + 3600; second += 11)
                    agrees = agrees && agreesWithTheSystem(second);
            before = fields.tm_gmtoff;
        }
        ::_exit(agrees ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

TEST(LocalTime, AgreesWithTheSystemInEveryCenturyAndAroundEveryChangeOfTheZone) {
    // Changes at odd minutes (St Johns), a distance of quarters (Kathmandu, Chatham), of odd
    // seconds (Monrovia), a skipped day (Apia), a half-hour summer time (Lord Howe), leap seconds.
    for (const char* zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Asia/Kathmandu",
                             "Pacific/Chatham", "Africa/Monrovia", "Pacific/Apia",
                             "Australia/Lord_Howe", "right/Europe/Paris", "XYZ3:07:30"})
        EXPECT_EQ(sweep(zone), 0) << zone;
}

TEST(LocalTime, ANewZoneShowsInTheNextQuarterAndImpossibleYearsAreNotTold) {
    const pid_t child = ::fork();
    if (child == 0) {
        const LocalTime& localTime = LocalTime::current();
        setEnvironment("TZ", "UTC");
        const bool utc = localTime.civilTime({45'000, 0}) == CivilTime{1970, 1, 1, 12, 30, 0};
        setEnvironment("TZ", "AAA-2");
        const bool later = localTime.civilTime({45'900, 0}) == CivilTime{1970, 1, 1, 14, 45, 0};
        const bool never =
            !localTime.civilTime({INT64_MAX, 0}) && !localTime.civilTime({INT64_MIN, 0});
        ::_exit(utc && later && never ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace veltra

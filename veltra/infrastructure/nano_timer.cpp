// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/nano_timer.h"

#include "veltra/base/number_text.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/standard_error.h"

#include <exception>
#include <new>
#include <string_view>
#include <system_error>

namespace veltra {

namespace {

void printClockError(std::string_view request, int error) noexcept {
    const NoCancellation noCancellation;
    std::string text = ": \n";
    try {
        text.insert(2, std::generic_category().message(error));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the number stays
    }
    const NumberText number(error);
    StandardError& stream = StandardError::current();
    stream.write(stream.inspect(), {request, number.view(), text});
}

void append(std::string& text, double value, std::string_view unit) {
    text += NumberText::fixed(value, 1).view();
    text += unit;
}

}  // namespace

std::unique_ptr<QKNanoTimer> QKNanoTimer::timer() noexcept {
    std::unique_ptr<QKNanoTimer> made(new (std::nothrow) QKNanoTimer);
    if (made != nullptr && !made->init()) made.reset();
    return made;
}

bool QKNanoTimer::init() noexcept {
    constexpr int kCalibrationRounds = 10;
    myHost = 0;
    clk_realtime = 0;
    if (const int error = Clocks::current().monotonic().errorNumber(); error != 0) {
        printClockError("host_get_clock_service : ", error);
        return false;
    }
    for (int round = 0; round < kCalibrationRounds; ++round) {
        start();
        stop();
    }
    internalCorrection = nanoseconds();
    reset();
    return true;
}

std::uint64_t QKNanoTimer::_getclock() const noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (!now.hasFailed()) return static_cast<std::uint64_t>(now.moment().sinceStart().count());
    printClockError("clock_get_time : ", now.errorNumber());
    return 0;
}

void QKNanoTimer::start() noexcept {
    if (isRunning) return;
    startTime = _getclock();
    isRunning = true;
}

void QKNanoTimer::stop() noexcept {
    if (!isRunning) return;
    endTime = _getclock() - internalCorrection;
    if (startTime > endTime) endTime = startTime;
    isRunning = false;
    loopCounter = static_cast<std::int32_t>(static_cast<std::uint32_t>(loopCounter) + 1);
    sumTime += endTime - startTime;
}

void QKNanoTimer::reset() noexcept {
    isRunning = false;
    loopCounter = 0;
    sumTime = 0;
}

void QKNanoTimer::setLoopcounter(std::int32_t count) noexcept {
    if (!isRunning) loopCounter = count;
}

std::uint64_t QKNanoTimer::nanoseconds() const noexcept {
    if (isRunning) return _getclock() - startTime;
    if (loopCounter == 0) return 0;
    return sumTime / static_cast<std::uint64_t>(loopCounter);
}

std::string QKNanoTimer::description() const {
    constexpr std::uint64_t kLastInNanoseconds = 499;
    constexpr double kNextUnitFrom = 500.0;
    const std::uint64_t time = nanoseconds();
    if (time <= kLastInNanoseconds) return std::to_string(time) + "ns";
    const double microseconds = static_cast<double>(time) / 1000.0;
    const double milliseconds = microseconds / 1000.0;
    std::string text;
    if (microseconds < kNextUnitFrom) {
        append(text, microseconds, "us");
    } else if (milliseconds < kNextUnitFrom) {
        append(text, milliseconds, "ms");
    } else {
        append(text, milliseconds / 1000.0, "s (");
        append(text, milliseconds, "ms)");
    }
    return text;
}

}  // namespace veltra

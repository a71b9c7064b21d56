// SPDX-License-Identifier: MIT
// A world for tests of the log: fixed time and process, a record sink and a standard error that
// remember what they were given.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/process.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/system_log.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veltra {

class LogWorld final : private testing::InForce<Clocks>,
                       private testing::InForce<LocalTime>,
                       private testing::InForce<Process>,
                       private testing::InForce<SystemLog>,
                       private testing::InForce<StandardError> {
public:
    struct Record {
        std::string facility;
        std::vector<std::pair<std::string, std::optional<std::string>>> fields;
    };

    using Kind = StandardError::Kind;

    WallTime now{100, 42'999'999};
    std::optional<CivilTime> localTime{{2024, 1, 31, 9, 5, 7}};
    std::string program = "prog";
    std::uint32_t thread = 0xa0b;
    std::uint32_t userId = 1000;
    bool hasRaisedRights = false;
    Kind kind = Kind::RegularFile;
    bool managed = false;
    void (*whenSending)() = nullptr;  // a record or a line

    std::vector<Record> records;
    std::vector<std::string> lines;

    // The one record's "Message", or how many records there are instead.
    std::string message() const {
        if (records.size() != 1) return std::to_string(records.size()) + " records";
        return records[0].fields[LogRecord::Message].second.value_or("unset");
    }
    std::string line() const {
        return lines.size() == 1 ? lines[0] : std::to_string(lines.size()) + " lines";
    }
    void forget() {
        records.clear();
        lines.clear();
    }

private:
    ClockReading monotonic() const noexcept override { return Moment(); }
    WallTime wall() const noexcept override { return now; }
    std::optional<CivilTime> civilTime(WallTime) const noexcept override { return localTime; }
    std::string_view programName() const noexcept override { return program; }
    std::int32_t processId() const noexcept override { return 123; }
    std::uint32_t threadId() const noexcept override { return thread; }
    std::uint32_t effectiveUserId() const noexcept override { return userId; }
    bool isSetUserOrGroupId() const noexcept override { return hasRaisedRights; }
    void send(const LogRecord& record) noexcept override {
        if (whenSending != nullptr) whenSending();
        Record kept{std::string(record.facility), {}};
        for (const LogRecord::Field& field : record.fields)
            kept.fields.emplace_back(field.key, field.value);
        records.push_back(kept);
    }
    Status inspect() const noexcept override { return {kind, 1, 2}; }
    bool isManaged(const Status&) const noexcept override { return managed; }
    void write(const Status& status, const Pieces& pieces) noexcept override {
        if (whenSending != nullptr) whenSending();
        if (status.kind != kind) return;
        lines.push_back(std::string(pieces[0]) + std::string(pieces[1]) + std::string(pieces[2]));
    }
};

}  // namespace veltra

// SPDX-License-Identifier: MIT
// The system's structured log: where a log record goes.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <array>
#include <optional>
#include <string_view>

namespace veltra {

// One record. Keys keep these names and this order here; a transport that allows other names only
// maps them when it sends.
struct LogRecord {
    // One key of a record, and its value.
    struct Field {
        std::string_view key;                   // as listed below
        std::optional<std::string_view> value;  // none: the key is not set
    };

    // Where each field stands in `fields`.
    enum Key { LocalTime, Thread, ReadUserId, Level, Message };

    // What part of the program the record comes from; not a field of its own.
    std::string_view facility;

    // The fields, in the order of Key.
    std::array<Field, 5> fields{{
        {"CFLog Local Time", std::nullopt},  // "2024-01-31 09:05:07.042"
        {"CFLog Thread", std::nullopt},      // lower-case hexadecimal
        {"ReadUID", std::nullopt},           // decimal, signed
        {"Level", std::nullopt},             // "0" (emergency) to "7" (debug)
        {"Message", std::nullopt},
    }};
};

class SystemLog;
extern template class VELTRA_EXPORT Installable<SystemLog>;

class VELTRA_EXPORT SystemLog : public Installable<SystemLog> {
public:
    virtual ~SystemLog();

    // Takes one record; the views in it are valid during the call only. Never waits: a record that
    // cannot be taken at once is lost, and a record that says how many precedes the next one that
    // is taken. Several threads may send at once. The log calls it while the thread cannot be
    // cancelled.
    // Thread: any but audio. Realtime-safe: no.
    virtual void send(const LogRecord& record) noexcept = 0;

    // Returns true while nobody takes records, after counting one that is lost. Whoever asks first
    // need not make a record that nobody takes.
    // Thread: any but audio. Realtime-safe: no.
    virtual bool skipRecord() noexcept;
};

}  // namespace veltra

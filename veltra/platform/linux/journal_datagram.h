// SPDX-License-Identifier: MIT
// A record in the journal's native protocol: "KEY=value\n" for each field, or, for a value that
// holds a line feed, "KEY\n", the length in 64 little-endian bits, the value, "\n".
#pragma once

#include "veltra/platform/system_log.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include <sys/uio.h>

namespace veltra {

// What the journal is told of a record, under which name. The names are made of upper-case letters,
// digits and underscores, as the journal takes no others.
struct JournalField {
    std::string_view nameAndSign;
    std::optional<LogRecord::Key> key;  // none: the facility
};

inline constexpr auto kJournalFields = std::to_array<JournalField>({
    {"CFLOG_LOCAL_TIME=", LogRecord::LocalTime},
    {"CFLOG_THREAD=", LogRecord::Thread},
    {"READUID=", LogRecord::ReadUserId},
    {"LEVEL=", LogRecord::Level},
    {"PRIORITY=", LogRecord::Level},
    {"MESSAGE=", LogRecord::Message},
    {"SYSLOG_IDENTIFIER=", std::nullopt},
});

// Short pieces are gathered in a buffer of fixed size, long ones are pointed to: nothing is
// allocated, and the record's texts must outlive the datagram.
class JournalDatagram {
public:
    explicit JournalDatagram(const LogRecord& record) noexcept {
        for (const JournalField& field : kJournalFields) {
            if (!field.key) {
                addField(field.nameAndSign, record.facility);
            } else if (const auto& value = record.fields[*field.key].value) {
                addField(field.nameAndSign, *value);
            }
        }
        closePiece();
    }

    iovec* pieces() noexcept { return m_pieces.data(); }
    std::size_t count() const noexcept { return m_count; }

private:
    using Length = std::array<char, 8>;  // little-endian

    void addField(std::string_view nameAndSign, std::string_view value) noexcept {
        gather(nameAndSign);
        if (value.find('\n') != std::string_view::npos) {
            m_text[m_used - 1] = '\n';  // in the place of the sign
            Length length;
            for (std::size_t byte = 0; byte < length.size(); ++byte)
                length[byte] = static_cast<char>(static_cast<unsigned char>(
                    static_cast<std::uint64_t>(value.size()) >> (8 * byte)));
            gather({length.data(), length.size()});
        }
        if (value.size() <= kShort) {
            gather(value);
        } else {
            closePiece();
            m_pieces[m_count++] = {const_cast<char*>(value.data()), value.size()};
        }
        gather("\n");
    }

    void gather(std::string_view text) noexcept {
        text.copy(m_text.data() + m_used, text.size());
        m_used += text.size();
    }

    // What was gathered since the last piece becomes one.
    void closePiece() noexcept {
        m_pieces[m_count++] = {m_text.data() + m_closed, m_used - m_closed};
        m_closed = m_used;
    }

    static constexpr std::size_t kShort = 128;
    static constexpr std::size_t kMostGathered = [] {
        std::size_t size = 0;
        for (const JournalField& field : kJournalFields)
            size += field.nameAndSign.size() + sizeof(Length) + kShort + 1;  // and the line's end
        return size;
    }();
    static constexpr std::size_t kMostPieces = 2 * kJournalFields.size() + 1;

    std::array<char, kMostGathered> m_text;
    std::array<iovec, kMostPieces> m_pieces;
    std::size_t m_used = 0;
    std::size_t m_closed = 0;
    std::size_t m_count = 0;
};

}  // namespace veltra

// SPDX-License-Identifier: MIT
// A record in the journal's native protocol: "KEY=value\n" for each field, or, for a value that
// holds a line feed, "KEY\n", the length in 64 little-endian bits, the value, "\n".
#pragma once

#include "veltra/platform/system_log.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include <sys/uio.h>

namespace veltra {

// Short pieces are gathered in a buffer of fixed size, long ones are pointed to: nothing is
// allocated, and the record's texts must outlive the datagram.
class JournalDatagram {
public:
    explicit JournalDatagram(const LogRecord& record) noexcept {
        // The journal takes upper-case letters, digits and underscores.
        addField("CFLOG_LOCAL_TIME=", record.fields[LogRecord::LocalTime].value);
        addField("CFLOG_THREAD=", record.fields[LogRecord::Thread].value);
        addField("READUID=", record.fields[LogRecord::ReadUserId].value);
        addField("LEVEL=", record.fields[LogRecord::Level].value);
        addField("PRIORITY=", record.fields[LogRecord::Level].value);
        addField("MESSAGE=", record.fields[LogRecord::Message].value);
        addField("SYSLOG_IDENTIFIER=", record.facility);
        closePiece();
    }

    iovec* pieces() noexcept { return m_pieces.data(); }
    std::size_t count() const noexcept { return m_count; }

private:
    // A template, so that copying the name is a few moves.
    template <std::size_t kSize>
    void addField(const char (&nameAndSign)[kSize],
                  const std::optional<std::string_view>& set) noexcept {
        if (!set) return;
        const std::string_view value = *set;
        gather({nameAndSign, kSize - 1});
        if (value.find('\n') != std::string_view::npos) {
            m_text[m_used - 1] = '\n';  // in the place of the sign
            for (std::size_t byte = 0; byte < 8; ++byte)
                m_text[m_used++] = static_cast<char>(static_cast<unsigned char>(
                    static_cast<std::uint64_t>(value.size()) >> (8 * byte)));
        }
        if (value.size() <= kShort) {
            gather(value);
        } else {
            closePiece();
            m_pieces[m_count++] = {const_cast<char*>(value.data()), value.size()};
        }
        m_text[m_used++] = '\n';
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

    static constexpr std::size_t kFields = 7;
    static constexpr std::size_t kShort = 128;
    static constexpr std::size_t kMostGathered = 18 + 8 + kShort + 1;  // name, size, value, end

    std::array<char, kFields * kMostGathered> m_text;
    std::array<iovec, 2 * kFields + 1> m_pieces;
    std::size_t m_used = 0;
    std::size_t m_closed = 0;
    std::size_t m_count = 0;
};

}  // namespace veltra

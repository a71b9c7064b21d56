// A record in the journal's native protocol: "KEY=value\n" for each field, or, for a value that
// holds a line feed, "KEY\n", the length in 64 little-endian bits, the value, "\n".
#pragma once

#include "veltra/platform/system_log.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <sys/uio.h>

namespace veltra {

// Short pieces are gathered in a buffer of fixed size, long ones are pointed to: nothing is
// allocated, and the record's texts must outlive the datagram.
class JournalDatagram {
public:
    explicit JournalDatagram(const LogRecord& record) noexcept {
        for (const LogRecord::Field& field : record.fields) {
            if (!field.value) continue;
            addField(field.key, *field.value);
            if (field.key == record.fields[LogRecord::Level].key)
                addField("PRIORITY", *field.value);
        }
        addField("SYSLOG_IDENTIFIER", record.facility);
    }

    iovec* pieces() noexcept { return m_pieces.data(); }
    std::size_t count() const noexcept { return m_count; }

private:
    // The journal takes upper-case letters, digits and underscores.
    void addField(std::string_view key, std::string_view value) noexcept {
        std::array<char, 64> name{};
        const std::size_t length = std::min(key.size(), name.size());
        for (std::size_t index = 0; index < length; ++index) {
            const char letter = key[index];
            const bool isLower = letter >= 'a' && letter <= 'z';
            const bool isLegal =
                (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
            name[index] = isLower ? static_cast<char>(letter - 'a' + 'A') : isLegal ? letter : '_';
        }
        gather({name.data(), length});
        if (value.find('\n') == std::string_view::npos) {
            gather("=");
        } else {
            std::array<char, 9> sized{'\n'};
            for (std::size_t byte = 0; byte < 8; ++byte)
                sized[byte + 1] = static_cast<char>(static_cast<unsigned char>(
                    static_cast<std::uint64_t>(value.size()) >> (8 * byte)));
            gather({sized.data(), sized.size()});
        }
        if (value.size() <= kShort)
            gather(value);
        else
            m_pieces[m_count++] = {const_cast<char*>(value.data()), value.size()};
        gather("\n");
    }

    void gather(std::string_view text) noexcept {
        char* end = m_text.data() + m_used;
        std::memcpy(end, text.data(), text.size());
        m_used += text.size();
        if (m_count > 0) {
            iovec& last = m_pieces[m_count - 1];
            if (static_cast<char*>(last.iov_base) + last.iov_len == end) {
                last.iov_len += text.size();
                return;
            }
        }
        m_pieces[m_count++] = {end, text.size()};
    }

    static constexpr std::size_t kFields = 7;  // those of a record, PRIORITY, SYSLOG_IDENTIFIER
    static constexpr std::size_t kShort = 128;
    static constexpr std::size_t kMostGathered = 64 + 9 + kShort + 1;  // of one field

    std::array<char, kFields * kMostGathered> m_text;
    std::array<iovec, 2 * kFields + 1> m_pieces;
    std::size_t m_used = 0;
    std::size_t m_count = 0;
};

}  // namespace veltra

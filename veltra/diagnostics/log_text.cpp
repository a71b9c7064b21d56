// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/log_text.h"

#include "veltra/diagnostics/detail/banner.h"
#include "veltra/diagnostics/log_ring.h"
#include "veltra/diagnostics/text_buffer.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/process.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/system_log.h"

#include <array>

namespace veltra {

namespace {

constexpr std::array<std::string_view, kHighestLogLevel + 1> kLevelNames{"0", "1", "2", "3",
                                                                         "4", "5", "6", "7"};

// What standard error is, when it gets the line.
std::optional<StandardError::Status> readStandardError(const StandardError& stream) noexcept {
    const StandardError::Status status = stream.inspect();
    if (status.kind == StandardError::Kind::RegularFile) return status;
    if (status.kind != StandardError::Kind::Unusable && !stream.isManaged(status)) return status;
    const bool isForced = !Process::current().isSetUserOrGroupId() &&
                          environmentVariable("CFLOG_FORCE_STDERR") != nullptr;
    return isForced ? std::optional(status) : std::nullopt;
}

void sendRecord(std::uint32_t level, const char* tag, std::string_view message,
                const detail::BannerText* banner) noexcept {
    // Deliberately signed, as user ids have always been logged here: "nobody" may read -2.
    LocalTextBuffer<16> userId;
    userId.appendDecimal(static_cast<std::int32_t>(Process::current().effectiveUserId()));

    LogRecord record;
    record.facility = tag != nullptr ? tag : "QKLogCString";
    if (banner != nullptr) {
        record.fields[LogRecord::LocalTime].value = banner->localTime();
        record.fields[LogRecord::Thread].value = banner->thread();
    }
    record.fields[LogRecord::ReadUserId].value = userId.view();
    record.fields[LogRecord::Level].value = kLevelNames[level];
    record.fields[LogRecord::Message].value = message;
    SystemLog::current().send(record);
}

}  // namespace

Banner wantedBanner() noexcept {
    return environmentVariable("VELTRA_TRACE_WITHOUT_BANNER") == nullptr ? Banner::Yes : Banner::No;
}

void logMessage(std::uint32_t level, Banner banner, const char* tag,
                std::optional<std::string_view> message, Kept kept) noexcept {
    if (level > kHighestLogLevel || (tag == nullptr && !message)) return;
    const NoCancellation noCancellation;
    if (message) message = message->substr(0, message->find('\0'));
    LocalTextBuffer<kUsualMessage> shortened;
    if (message && message->size() > kLongestText) {
        shortened.append(*message);
        message = shortened.view();
    }

    detail::BannerText bannerText;
    const bool hasMessage = message && !message->empty();
    const bool hasBanner = banner == Banner::Yes && bannerText.compose(tag, hasMessage ? ": " : "");
    const std::string_view bannerLine = hasBanner ? bannerText.line() : "";
    const std::string_view text = message ? *message : hasBanner ? "\n" : std::string_view(tag);
    if (kept == Kept::Yes) recentLogLines().add(bannerLine, text);
    if (!SystemLog::current().skipRecord())
        sendRecord(level, tag, message ? *message : std::string_view(tag),
                   hasBanner ? &bannerText : nullptr);

    StandardError& stream = StandardError::current();
    const std::optional<StandardError::Status> status = readStandardError(stream);
    if (!status) return;
    const bool isOpen = text.empty() || (text.back() != '\n' && text.back() != '\b');
    stream.write(*status, {bannerLine, text, isOpen ? "\n" : ""});
}

void recordMessage(std::uint32_t level, const char* tag, std::string_view message) noexcept {
    if (level > kHighestLogLevel) return;
    const NoCancellation noCancellation;
    sendRecord(level, tag, message, nullptr);
}

void logText(std::uint32_t level, Banner banner, const char* tag, std::string_view text) noexcept {
    if (text.find("%%") == std::string_view::npos) {
        logMessage(level, banner, tag, text);
        return;
    }
    LocalTextBuffer<kUsualMessage> collapsed;
    collapsed.append(text);
    collapsed.collapsePercentPairs();
    logMessage(level, banner, tag, collapsed.view());
}

}  // namespace veltra

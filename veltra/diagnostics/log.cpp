// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/log.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/base/string_object_text.h"
#include "veltra/diagnostics/detail/message_format.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/diagnostics/text_buffer.h"

namespace veltra {

namespace {

Banner bannerFrom(bool withBanner) noexcept {
    return withBanner ? Banner::Yes : Banner::No;
}

[[gnu::format(printf, 4, 0)]] void logFormat(std::uint32_t level, Banner banner, const char* tag,
                                             const char* format, va_list arguments) noexcept {
    if (level > kHighestLogLevel) return;
    if (format == nullptr) {
        logMessage(level, banner, tag, std::nullopt);
        return;
    }
    LocalTextBuffer<kUsualMessage> message;
    detail::appendMessage(message, format, detail::Objects::No, arguments);
    logMessage(level, banner, tag, message.view());
}

void logObjectFormat(std::uint32_t level, Banner banner, const char* tag, const VLString* format,
                     va_list arguments) noexcept {
    if (level > kHighestLogLevel) return;
    if (format == nullptr) {
        logMessage(level, banner, tag, std::nullopt);
        return;
    }
    LocalTextBuffer<kUsualMessage> formatText;
    formatText.appendString(format);
    LocalTextBuffer<kUsualMessage> text;
    detail::appendMessage(text, formatText.view(), detail::Objects::Yes, arguments);
    logText(level, banner, tag, text.view());
}

}  // namespace

extern "C" {

bool QKLogWithSyslogBanner() noexcept {
    return wantedBanner() == Banner::Yes;
}

void QKLogCString(uint32_t level, bool withBanner, const char* tag, const char* format,
                  ...) noexcept {
    const ErrnoKeeper keeper;
    va_list arguments;
    va_start(arguments, format);
    logFormat(level, bannerFrom(withBanner), tag, format, arguments);
    va_end(arguments);
}

void QKLogCStringV(uint32_t level, bool withBanner, const char* tag, const char* format,
                   va_list arguments) noexcept {
    const ErrnoKeeper keeper;
    logFormat(level, bannerFrom(withBanner), tag, format, arguments);
}

void QKLog(uint32_t level, bool withBanner, const char* tag, const VLString* format, ...) noexcept {
    const ErrnoKeeper keeper;
    va_list arguments;
    va_start(arguments, format);
    logObjectFormat(level, bannerFrom(withBanner), tag, format, arguments);
    va_end(arguments);
}

void QKLogV(uint32_t level, bool withBanner, const char* tag, const VLString* format,
            va_list arguments) noexcept {
    const ErrnoKeeper keeper;
    logObjectFormat(level, bannerFrom(withBanner), tag, format, arguments);
}

}  // extern "C"

}  // namespace veltra

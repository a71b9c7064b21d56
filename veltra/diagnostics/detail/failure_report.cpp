// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/failure_report.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/diagnostics/detail/backtrace_text.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/diagnostics/recent_log_lines.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/process.h"
#include "veltra/platform/symboliser.h"

#include <array>
#include <string>

namespace veltra::detail {

namespace {

constexpr std::size_t kSectionsSize = 4096;

void logPart(std::string_view text, Kept kept = Kept::Yes) noexcept {
    logMessage(kLogError, wantedBanner(), nullptr, text, kept);
}

void appendAll(TextBuffer& text, std::initializer_list<std::string_view> parts) noexcept {
    for (const std::string_view part : parts)
        text.append(part);
}

// What `tell` tells, or `otherwise` when memory is out.
void appendFact(TextBuffer& text, std::string (*tell)(), std::string_view otherwise) noexcept {
    if (!isDoneUnlessOutOfMemory([&] { text.append(tell()); })) text.append(otherwise);
}

void logStack(std::span<const std::uintptr_t> stack) noexcept {
    if (stack.empty()) {
        logPart("No stack trace available.");
        return;
    }
    const std::string symbolised = Symboliser::current().symbolise(stack);
    if (!symbolised.empty()) {
        logPart(symbolised);
        return;
    }
    LocalTextBuffer<kUsualMessage> names;
    appendNamedCalls(names, stack);
    logPart(names.view());
}

void logSections() noexcept {
    std::array<char, kSectionsSize> text;
    const std::size_t size = writeReportSections(text.data(), text.size());
    if (size > 0) logPart({text.data(), size});
}

}  // namespace

FailureReport::FailureReport() noexcept {
    appendFact(m_application, applicationName, Process::current().programName());
    appendAll(m_title, {m_application.view(), " has encountered an unexpected error."});
    m_recentLines.append(kRecentTitle);
    VLVisitRecentLogLines(
        [](void* context, const char* line, size_t length) {
            appendAll(*static_cast<TextBuffer*>(context), {"\t", {line, length}, "\n"});
        },
        static_cast<TextBuffer*>(&m_recentLines));
}

void FailureReport::log(std::string_view text,
                        std::span<const std::uintptr_t> stack) const noexcept {
    LocalTextBuffer<kUsualMessage> heading;
    appendAll(heading, {"**** ", title(), " ****\n\n", text, "\n\n", m_application.view(), " "});
    appendFact(heading, applicationVersion, "?.??");
    heading.append("\n");
    appendFact(heading, systemVersion, "Unknown");
    heading.append("\n\n");
    logPart(heading.view());
    logStack(stack);
    logSections();
    if (m_recentLines.view() != kRecentTitle) logPart(m_recentLines.view(), Kept::No);
}

}  // namespace veltra::detail

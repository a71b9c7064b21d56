// SPDX-License-Identifier: MIT
#include "veltra/platform/icu/email_pattern.h"

#include "veltra/platform/no_cancellation.h"

#include <cstdint>
#include <memory>

#include <unicode/uregex.h>

namespace veltra {

namespace {

constexpr char kPattern[] = R"(^[a-zA-Z0-9\._-]+@(?:[a-zA-Z0-9\.-]+\.)+[a-zA-Z0-9\.-]{2,4}$)";

// In ICU's units of about 10,000 steps. Addresses are accepted without going back, however long
// they are. Only refusing some texts would take longer: the steps double with each "a." of
// "a@a.a.a.!".
constexpr std::int32_t kTimeLimit = 1;

struct Close {
    void operator()(URegularExpression* expression) const noexcept { uregex_close(expression); }
};
using Expression = std::unique_ptr<URegularExpression, Close>;

// ICU may crash when memory is out while it compiles a pattern, so the first call comes when the
// library is loaded. Null when it cannot be compiled.
const URegularExpression* compiledPattern() noexcept {
    static const URegularExpression* const compiled = [] {
        const NoCancellation whileFilesAreRead;
        UErrorCode error = U_ZERO_ERROR;
        return uregex_openC(kPattern, 0, nullptr, &error);
    }();
    return compiled;
}

[[maybe_unused]] const bool isPatternCompiled = compiledPattern() != nullptr;

}  // namespace

bool matchesCompiledEmailPattern(std::u16string_view text) noexcept {
    if (text.size() > INT32_MAX || compiledPattern() == nullptr) return false;
    UErrorCode error = U_ZERO_ERROR;
    // A copy of its own, as matching changes it. The copy has no time limit yet.
    const Expression expression(uregex_clone(compiledPattern(), &error));
    uregex_setTimeLimit(expression.get(), kTimeLimit, &error);
    uregex_setText(expression.get(), text.data(), static_cast<std::int32_t>(text.size()), &error);
    const bool isMatch = uregex_matches(expression.get(), 0, &error) != 0;
    return isMatch && U_SUCCESS(error);
}

}  // namespace veltra

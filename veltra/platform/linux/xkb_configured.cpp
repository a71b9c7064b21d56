// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/linux/xkb_keymap.h"
#include "veltra/platform/process.h"

#include <string>
#include <string_view>
#include <utility>

#include <xkbcommon/xkbcommon.h>

namespace veltra {

namespace {

constexpr const char* kConfiguration = "/etc/default/keyboard";

struct Names {
    std::string model, layout, variant, options;
};

// Lines of the form XKBLAYOUT="de", with or without quotes.
void readLine(std::string_view line, Names& names) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    std::string_view value = line.substr(equals + 1);
    for (const char quote : {'"', '\''}) {
        if (value.size() >= 2 && value.front() == quote && value.back() == quote)
            value = value.substr(1, value.size() - 2);
    }
    const std::string_view key = line.substr(0, equals);
    if (key == "XKBMODEL") names.model = value;
    if (key == "XKBLAYOUT") names.layout = value;
    if (key == "XKBVARIANT") names.variant = value;
    if (key == "XKBOPTIONS") names.options = value;
}

Names configuredNames() {
    Names names;
    SystemFileLines lines(kConfiguration);
    for (std::string_view line; lines.next(line);)
        readLine(line, names);
    return names;
}

XkbKeymap compile(xkb_context* context, const xkb_rule_names* names) noexcept {
    return XkbKeymap(xkb_keymap_new_from_names(context, names, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

}  // namespace

LayoutInUse configuredLayout(xkb_context* context) {
    // What is left out comes from the XKB_DEFAULT_ variables, and from libxkbcommon's own defaults.
    if (environmentVariable("XKB_DEFAULT_LAYOUT") == nullptr) {
        const Names names = configuredNames();
        if (!names.layout.empty()) {
            const xkb_rule_names rules = {nullptr, names.model.c_str(), names.layout.c_str(),
                                          names.variant.c_str(), names.options.c_str()};
            XkbKeymap keymap = compile(context, &rules);
            if (keymap != nullptr) return {std::move(keymap)};
        }
    }
    return {compile(context, nullptr)};
}

}  // namespace veltra

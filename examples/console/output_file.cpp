// SPDX-License-Identifier: MIT
#include "output_file.h"

#include "veltra/platform/application_facts.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace veltra::console {

namespace {

namespace fs = std::filesystem;

// A name, then what was found in the file of that name.
bool isReport(std::string_view start) {
    const std::size_t end = start.find('\n');
    if (end == 0 || end == std::string_view::npos || start.front() == ' ') return false;
    const std::string_view second = start.substr(end + 1);
    return second.starts_with("  format      ") || second.starts_with("  error       ");
}

// A PNG file that says which program has written it, as ours do.
bool isPicture(std::string_view start) {
    const std::string writer = std::string("tEXtSoftware") + '\0' + applicationName();
    return start.starts_with("\x89PNG\r\n\x1A\n") && start.find(writer) != std::string_view::npos;
}

// A WAV file that says the same, before its samples.
bool isBounce(std::string_view start) {
    const bool isWave = start.starts_with("RIFF") || start.starts_with("RF64");
    const std::size_t writer = start.find("ISFT");
    return isWave && start.substr(0, start.find("data")).find(applicationName(), writer) !=
                         std::string_view::npos;
}

struct Kind {
    const char* option;
    const char* what;
    const char* extension;  // empty: any
    const char* rule;
    bool (*isOwn)(std::string_view start);
};

const Kind& kindOf(OutputKind kind) {
    static constexpr Kind kReport{"--report", "report", "", "", isReport};
    static constexpr Kind kPicture{"--picture", "picture", ".png",
                                   ": a picture is a PNG file; give it a name that ends in .png",
                                   isPicture};
    static constexpr Kind kBounce{"--bounce", "mix", ".wav",
                                  ": a mix is a WAV file; give it a name that ends in .wav",
                                  isBounce};
    if (kind == OutputKind::Picture) return kPicture;
    return kind == OutputKind::Bounce ? kBounce : kReport;
}

bool isOwn(const std::string& path, const Kind& kind) {
    std::array<char, 8192> start{};  // names of files are shorter
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    const std::string_view text(start.data(), static_cast<std::size_t>(file.gcount()));
    if (!file.is_open() || file.bad()) return false;
    return text.empty() || kind.isOwn(text);
}

}  // namespace

std::string whyNotWrite(const std::string& path, OutputKind kind,
                        std::span<const std::string> inputs) {
    if (kind == OutputKind::Report && path == "-") return {};
    const Kind& rules = kindOf(kind);
    const std::string advice = std::string("; name another file after ") + rules.option;
    std::error_code ignored;
    for (const std::string& input : inputs) {
        if (fs::equivalent(path, input, ignored))
            return std::string(path).append(" is one of the recordings").append(advice);
    }
    if (*rules.extension != '\0' && fs::path(path).extension() != rules.extension)
        return path + rules.rule;
    if (kind == OutputKind::Bounce && fs::exists(path, ignored) &&
        !fs::is_regular_file(path, ignored)) {
        return path + " is no regular file, and a mix needs one" + advice;
    }
    if (!fs::is_regular_file(path, ignored) || isOwn(path, rules)) return {};
    return path + " is there already, and is no " + rules.what + " of this program" + advice;
}

std::string whyNotWrite(const Options& options) {
    const struct {
        const std::string& path;
        OutputKind kind;
    } outputs[] = {{options.report, OutputKind::Report},
                   {options.picture, OutputKind::Picture},
                   {options.bounce, OutputKind::Bounce}};
    for (const auto& output : outputs) {
        if (output.path.empty()) continue;
        std::string problem = whyNotWrite(output.path, output.kind, options.files);
        if (!problem.empty()) return problem;
    }
    return {};
}

}  // namespace veltra::console

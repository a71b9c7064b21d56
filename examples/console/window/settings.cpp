// SPDX-License-Identifier: MIT
#include "settings.h"

#include "veltra/platform/preferences.h"

#include <algorithm>
#include <iterator>

namespace veltra::console {

namespace {

constexpr char kWindow[] = "ConsoleWindow";
constexpr char kWidth[] = "width";
constexpr char kHeight[] = "height";
constexpr char kMeters[] = "ConsoleMeters";
constexpr const char* kMeterKinds[] = {"peak", "rms", "truePeak"};
constexpr char kKeyboard[] = "ConsoleKeyboard";
constexpr char kIsOpen[] = "open";
constexpr char kFirstKey[] = "firstKey";
constexpr char kVelocity[] = "velocity";
constexpr char kFile[] = "file";
constexpr char kRecent[] = "ConsoleRecentFiles";

void store(std::string_view key, const PropertyValue& value) {
    Preferences::current().setValue(key, value);
}

}  // namespace

std::optional<Size> Settings::windowSize() {
    const PropertyValue window = Preferences::current().value(kWindow);
    const double width = window[kWidth].asReal();
    const double height = window[kHeight].asReal();
    const auto isLength = [](double length) { return length >= 1.0 && length <= 32767.0; };
    if (!isLength(width) || !isLength(height)) return std::nullopt;
    return Size{static_cast<float>(width), static_cast<float>(height)};
}

void Settings::setWindowSize(Size size) {
    if (windowSize() == size) return;
    store(kWindow, PropertyValue::Dictionary{{kWidth, size.width}, {kHeight, size.height}});
}

MeterKind Settings::meterKind() {
    const PropertyValue stored = Preferences::current().value(kMeters);
    for (std::size_t i = 0; i < std::size(kMeterKinds); ++i) {
        if (stored.asString() == kMeterKinds[i]) return static_cast<MeterKind>(i);
    }
    return MeterKind::Peak;
}

void Settings::setMeterKind(MeterKind kind) {
    store(kMeters, kMeterKinds[static_cast<std::size_t>(kind)]);
}

Settings::Keyboard Settings::keyboard() {
    const PropertyValue stored = Preferences::current().value(kKeyboard);
    Keyboard keyboard;
    if (stored.asDictionary().empty()) return keyboard;
    keyboard.isOpen = stored[kIsOpen].asBool();
    keyboard.firstKey = static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(stored[kFirstKey].asInteger(keyboard.firstKey), 0, 127));
    keyboard.velocity = static_cast<int>(
        std::clamp<std::int64_t>(stored[kVelocity].asInteger(keyboard.velocity), 1, 127));
    const auto file = stored[kFile].asData();
    keyboard.file.assign(file.begin(), file.end());
    return keyboard;
}

void Settings::setKeyboard(const Keyboard& keyboard) {
    const PropertyValue::Data file(keyboard.file.begin(), keyboard.file.end());
    store(kKeyboard, PropertyValue::Dictionary{{kIsOpen, keyboard.isOpen},
                                               {kFirstKey, std::int64_t{keyboard.firstKey}},
                                               {kVelocity, std::int64_t{keyboard.velocity}},
                                               {kFile, file}});
}

// A name that is no UTF-8 is kept as the bytes that it is.
std::vector<std::string> Settings::recentFiles() {
    const PropertyValue stored = Preferences::current().value(kRecent);
    std::vector<std::string> files;
    for (const PropertyValue& file : stored.asArray()) {
        const auto bytes = file.asData();
        if (!bytes.empty()) files.emplace_back(bytes.begin(), bytes.end());
    }
    return files;
}

void Settings::addRecentFile(const std::string& path) {
    std::vector<std::string> files = recentFiles();
    if (!files.empty() && files.front() == path) return;
    std::erase(files, path);
    files.insert(files.begin(), path);
    files.resize(std::min(files.size(), kMostRecent));
    PropertyValue::Array stored;
    for (const std::string& file : files)
        stored.emplace_back(PropertyValue::Data(file.begin(), file.end()));
    store(kRecent, stored);
}

void Settings::write() {
    static_cast<void>(Preferences::current().synchronise());
}

}  // namespace veltra::console

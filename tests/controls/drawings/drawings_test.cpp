// SPDX-License-Identifier: MIT
// What the gallery's controls draw in each of their states, beside what was accepted last. After a
// change that is meant, look at the pictures (gallery --pictures FOLDER), then run this program
// with VELTRA_ACCEPT_DRAWINGS=1 and commit the files.
#include "../../../examples/gallery/sheet_view.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/processor/checksum.h"
#include "veltra/ui/testing/scripted_port.h"

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace veltra::testing {
namespace {

using Call = RecordingCanvas::Call;

// Calls as lines. An image is described where it is drawn first, and has a number from then on.
class Transcript {
public:
    std::string text(const std::vector<Call>& calls) {
        std::string lines;
        Rect clip;
        for (const Call& call : calls) {
            if (call.clip != clip) lines += "clip" + numbers(clip = call.clip) + '\n';
            lines += line(call) + '\n';
        }
        return lines;
    }

private:
    static std::string number(double value) {
        char digits[64];
        const double rounded = std::round(value * 100.0) / 100.0 + 0.0;  // no -0
        return {digits, std::to_chars(digits, std::end(digits), rounded).ptr};
    }
    static std::string numbers(const Rect& rect) {
        std::string all;
        for (const float value : {rect.minX(), rect.minY(), rect.size.width, rect.size.height})
            all += ' ' + number(static_cast<double>(value));
        return all;
    }
    static std::string color(Color color) {
        std::ostringstream digits;
        for (const float part : {color.red, color.green, color.blue, color.alpha})
            digits << ' ' << std::lround(part * 255.0F);
        return " color" + digits.str();
    }
    std::string line(const Call& call) {
        static const char* const kNames[] = {"rectangle", "filled", "stroked", "image", "text"};
        const std::string start = kNames[static_cast<int>(call.what)] + numbers(call.rect);
        if (call.what == RecordingCanvas::What::FillRect) return start + color(call.color);
        if (call.what == RecordingCanvas::What::Text) {
            const auto& [string, font, ink, alignment] = call.styled;
            return start + color(ink) + " size " + number(static_cast<double>(font.size)) +
                   " weight " + std::to_string(static_cast<int>(font.weight)) +
                   (font.hasEqualDigits ? " equal digits" : "") + " alignment " +
                   std::to_string(static_cast<int>(alignment)) + (call.isAtTop ? " top" : "") +
                   (call.isSmoothed ? "" : " not smoothed") + ": " + string;
        }
        const std::string rest = " fingerprint " + number(call.fingerprint);
        if (call.what != RecordingCanvas::What::Image) return start + color(call.color) + rest;
        const std::string content = text(call.drawn);
        const auto [image, isNew] = m_images.try_emplace(content, m_images.size() + 1);
        return start + " of" + numbers(call.source) + rest + " number " +
               std::to_string(image->second) + (isNew ? ":\n" + content + "end" : "");
    }

    std::map<std::string, std::size_t> m_images;
};

// Line by line; accepts what is drawn instead where that is wanted.
void compare(const std::string& text, const std::string& name) {
    const std::string path = VELTRA_DRAWINGS "/" + name + ".txt";
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    if (std::getenv("VELTRA_ACCEPT_DRAWINGS") != nullptr) std::ofstream(path) << text;
    std::istringstream drawn(text);
    std::ifstream accepted(path);
    std::string now, before;
    for (int number = 1; std::getline(drawn, now); ++number) {
        ASSERT_TRUE(std::getline(accepted, before)) << path << " ends before " << now;
        ASSERT_EQ(now, before) << path << ':' << number;
    }
    EXPECT_FALSE(std::getline(accepted, before)) << path << " goes on: " << before;
}

// The dark sheets at one scale in full, of all others a checksum.
TEST(Drawings, AreThoseThatWereAccepted) {
    const ManualRunLoop loop;
    const ScriptedPort port;
    std::ostringstream sums;
    for (const gallery::Sheet& sheet : gallery::sheets()) {
        for (const float scale : {1.0F, 1.25F, 1.5F, 1.75F, 2.0F}) {
            for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
                const bool isDark = appearance == Appearance::Dark;
                const auto picture = gallery::pictureOf(sheet, scale, appearance);
                const auto& canvas = dynamic_cast<const RecordedImage&>(*picture).canvas;
                const std::string text = Transcript().text(canvas.calls);
                if (isDark && scale == 1.5F) compare(text, sheet.name);
                sums << sheet.name << (isDark ? " dark " : " light ") << scale << ' ' << std::hex
                     << QKCRC32(0, text.data(), text.size()) << std::dec << '\n';
            }
        }
    }
    compare(sums.str(), "all-settings");
}

}  // namespace
}  // namespace veltra::testing

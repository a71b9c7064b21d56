// SPDX-License-Identifier: MIT
#include "veltra/audio/key_code_converter.h"

#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/keyboard_layout.h"
#include "veltra/platform/none/no_text_services.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/fake_memory_system.h"
#include "veltra/platform/testing/manual_run_loop.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using Converter = QKKeyCodeConverter;
using Text = std::optional<std::string>;
using ::testing::ElementsAre;

constexpr std::uint32_t kAll =
    Converter::kShift | Converter::kControl | Converter::kOption | Converter::kCommand;
constexpr const char* kAllSigns = "\u2303\u2325\u21E7\u2318";

struct OtherLayout : KeyboardLayout {
    std::optional<KeyTranslation> translate(std::uint16_t) const noexcept override {
        return answer;
    }
    std::optional<KeyTranslation> answer;
};

struct KeyCodeConverter : ::testing::Test {
    void use(const char* layout) {
        setEnvironment("DISPLAY", nullptr);
        setEnvironment("XKB_DEFAULT_LAYOUT", layout);
        m_clocks.now += seconds(1.0);  // when a layout is read again
    }
    bool hasLayouts() {
        use("us");
        return Converter::translateKeyCode(0).has_value();
    }
    ~KeyCodeConverter() override { KeyboardLayout::install(nullptr); }
    testing::ManualClocks m_clocks;
};

TEST_F(KeyCodeConverter, KeysThatActHaveNamesSignsAndGlyphsWithoutAnyLayout) {
    OtherLayout layout;
    KeyboardLayout::install(&layout);
    EXPECT_EQ(Converter::modifierString(~kAll), std::nullopt);
    const std::tuple<std::uint16_t, std::uint32_t, Text> byCode[] = {
        {0x30, Converter::kCommand, "\u2318\u21E5"}, {0x7A, 0, "F1"}, {0x50, 0, "F19"},
        {0x72, Converter::kShift, "\u21E7Help"},     {0x00, 0, {}},   {0x00, kAll, kAllSigns}};
    for (const auto& [code, flags, text] : byCode)
        EXPECT_EQ(Converter::stringForKeycode(code, flags), text) << code;
    EXPECT_EQ(Converter::stringForMacRomanCharCode(0x1B, kAll), kAllSigns + Text("\u238B").value());
    EXPECT_EQ(Converter::stringForMacRomanCharCode('q', Converter::kShift), "\u21E7q");
    const std::pair<std::uint16_t, Text> byChar[] = {
        {0xF72C, "\u2318Page up"}, {u'a', "\u2318A"}, {0x00DF, "\u2318\u00DF"}, {0xD800, {}}};
    for (const auto& [keyChar, text] : byChar)
        EXPECT_EQ(Converter::humandReadableStringForKeyChar(keyChar, Converter::kCommand), text);

    EXPECT_FALSE(Converter::stringForKeyCodeFromTable(0) ||
                 Converter::stringForCharCodeFromTable(0) ||
                 Converter::stringForKeyCharFromTable(0));
    const std::pair<std::uint16_t, int> glyphs[] = {{0x30, 2}, {0x71, 137}, {0x6A, 0}, {0x00, 0}};
    for (const auto& [code, glyph] : glyphs)
        EXPECT_EQ(Converter::glyphForKeycode(code), glyph);
    EXPECT_TRUE(Converter::keyCharForKeyCode(0x4C) == 3 && Converter::keyCharForKeyCode(0x00) == 0);
    std::int32_t flags = 1;
    EXPECT_EQ(Converter::appKitStringForKeycode(0x7E, flags), "\uF700");
    EXPECT_EQ(flags, 10485761);
    EXPECT_EQ(Converter::appKitStringForKeycode(0x00, flags), std::nullopt);
    bool isDeadKey = true;
    EXPECT_EQ(Converter::translateKeyCode(0x00, isDeadKey, true), std::nullopt);
    EXPECT_FALSE(isDeadKey);
    layout.answer = KeyTranslation{u"\u00DF", false};
    EXPECT_EQ(Converter::translateKeyCode(0x1B), "\u00DF");

    const testing::InForce<NoTextServices> services;
    layout.answer = KeyTranslation{u"az{\u00E9", false};
    EXPECT_EQ(Converter::translateKeyCode(0x1B), "AZ{\u00E9");
    layout.answer = KeyTranslation{u"\u00E9", false};
    EXPECT_EQ(Converter::keyCharForKeyCode(0x1B), '?');
    EXPECT_EQ(Converter::stringForMacRomanCharCode(0x8E, 0), std::nullopt);
}

// A key that acts is the same key by its code, its Mac Roman code and its key character.
TEST_F(KeyCodeConverter, CodesAndCharactersOfKeysThatActAgree) {
    for (std::uint16_t code = 1; code < 128; ++code) {
        std::int32_t flags = 0;
        if (!Converter::stringForKeyCodeFromTable(code).has_value()) continue;
        const std::uint8_t macRoman = Converter::keyCharForKeyCode(code);
        const Text keyChar = Converter::appKitStringForKeycode(code, flags);
        const std::uint16_t converted = MacRomanCharacterCode2AppKitCode(macRoman);
        const bool isPrivate = macRoman != 0 && converted >= 0xF700 && code != 0x35;
        EXPECT_EQ(keyChar->size(), macRoman == 0 || isPrivate ? 3U : 1U);  // bytes of UTF-8
        EXPECT_EQ((flags & static_cast<std::int32_t>(Converter::kFunction)) != 0, isPrivate);
        if (!isPrivate) continue;
        EXPECT_EQ(AppKitFunctionKey2MacRomanCharCode(converted), macRoman);
        EXPECT_TRUE(Converter::stringForKeyCharFromTable(converted).has_value());
    }
    int number = 0;
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{
             0x7A, 0x78, 0x63, 0x76, 0x60, 0x61, 0x62, 0x64, 0x65, 0x6D, 0x67, 0x6F, 0x69, 0x6B,
             0x71, 0x6A, 0x40, 0x4F, 0x50})
        EXPECT_EQ(Converter::stringForKeycode(code, 0), "F" + std::to_string(++number));
    EXPECT_EQ(MacRomanCharacterCode2AppKitCode(0x1B), 0xF739);
    EXPECT_EQ(MacRomanCharacterCode2AppKitCode('A'), 'A');
    const std::pair<std::uint16_t, unsigned> codes[] = {
        {0xF703, 29}, {0xF704, 16}, {0xF726, 16}, {0xF727, 0}, {'A', 0}};
    for (const auto& [character, code] : codes)
        EXPECT_EQ(AppKitFunctionKey2MacRomanCharCode(character), code);
}

TEST_F(KeyCodeConverter, TypingKeysFollowTheLayoutAndDeadKeysSayTheirAccent) {
    if (!hasLayouts()) GTEST_SKIP() << "no keyboard layouts on this machine";
    const bool hasCapitals = TextServices::current().toUpper(u"\u00E4").has_value();
    using Keys = std::vector<std::pair<std::uint16_t, const char*>>;
    const std::tuple<const char*, Keys, Keys> cases[] = {
        {"us", {{0x00, "a"}, {0x32, "`"}, {0x41, "."}, {0x7B, "\x1C"}, {0x4C, "\x03"}}, {}},
        {"us", {{0x38, ""}, {0x34, ""}, {0x80, ""}, {0xFFFF, ""}}, {}},
        {"de",
         {{0x10, "z"}, {0x21, "\u00FC"}, {0x41, ","}, {0x1B, "\u00DF"}},
         {{0x32, "^"}, {0x18, "\u00B4"}}},
        {"fr", {{0x00, "q"}, {0x0C, "a"}, {0x12, "&"}}, {{0x21, "^"}}},
        // Where Num Lock changes every key, but may change only the keypad's.
        {"de(neo)", {{0x00, "u"}, {0x53, "1"}}, {}},
        {"am(eastern)", {{0x00, "\u0561"}}, {}},
        {"am(western)", {{0x00, "\u0561"}}, {}},
        {"am(eastern-alt)", {{0x00, "\u0561"}}, {}},
        {"cm(azerty)", {{0x00, "q"}}, {}},
        {"cm(dvorak)", {{0x00, "a"}}, {}},
        // Accents that are only for letters, and others.
        {"vn(us)", {}, {{0x2C, "\u25CC\u0309"}, {0x2F, "\u25CC\u0323"}}},
        {"vn(fr)", {}, {{0x2B, "\u25CC\u0323"}}},
        {"gr(polytonic)", {}, {{0x1E, "\u037A"}}}};
    for (const auto& [layout, plain, dead] : cases) {
        use(layout);
        for (const bool isDead : {false, true})
            for (const auto& [code, text] : isDead ? dead : plain) {
                bool isDeadKey = !isDead;
                EXPECT_EQ(Converter::translateKeyCode(code, isDeadKey, false), text)
                    << layout << code;
                EXPECT_EQ(isDeadKey, isDead) << layout << code;
            }
    }
    use("de");
    EXPECT_EQ(Converter::stringForKeycode(0x10, Converter::kCommand), "\u2318Z");
    EXPECT_EQ(Converter::stringForKeycode(0x1B, 0), "\u00DF");
    EXPECT_EQ(Converter::translateKeyCode(0x21), hasCapitals ? "\u00DC" : "\u00FC");
    EXPECT_EQ(Converter::keyCharForKeyCode(0x21), hasCapitals ? 0x9F : '?');
    use("gr");
    EXPECT_EQ(Converter::keyCharForKeyCode(0x00), '?');
    use("no such layout");
    EXPECT_EQ(Converter::stringForKeycode(0x00, kAll), kAllSigns);
}

TEST_F(KeyCodeConverter, WhereNoLayoutIsNamedThatOfTheMachineCounts) {
    if (!hasLayouts()) GTEST_SKIP() << "no keyboard layouts on this machine";
    testing::FakeMemorySystem machine;
    for (const auto& [text, letter] :
         {std::pair("# Keyboard\nXKBMODEL=\"pc105\"\nXKBLAYOUT=\"fr\"\nXKBVARIANT=\"\"\n", "A"),
          {"XKBLAYOUT='us'\nXKBVARIANT=dvorak\nXKBOPTIONS=\"\"", "'"},
          {"XKBLAYOUT=\"\nXKBVARIANT", "Q"},
          {"XKBLAYOUT=none-such", "Q"}}) {
        machine.files["/etc/default/keyboard"] = text;
        use(nullptr);
        EXPECT_EQ(Converter::translateKeyCode(0x0C), letter) << text;
    }
}

// NOLINTBEGIN(concurrency-mt-unsafe): there is one thread

TEST_F(KeyCodeConverter, AChangeOfTheDisplaysLayoutIsFollowedAndAStuckDisplayHoldsUpNothing) {
    if (!hasLayouts() || std::system("command -v Xvfb setxkbmap >/dev/null") != 0)
        GTEST_SKIP() << "needs keyboard layouts, Xvfb and setxkbmap";
    std::FILE* const server =
        ::popen("timeout 60 Xvfb -displayfd 3 -noreset 3>&1 >/dev/null 2>&1 & echo $!; wait", "r");
    int process = 0, display = -1;
    ASSERT_EQ(std::fscanf(server, "%d %d", &process, &display), 2);
    const std::string name = ":" + std::to_string(display);
    const auto run = [&](const std::string& command) {
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        m_clocks.now += seconds(1.0);
    };
    const auto upperLeftLetter = [] { return Converter::translateKeyCode(0x0C); };
    const auto signal = [process](const char* what) {
        return "pkill -" + std::string(what) + " -P " + std::to_string(process);
    };
    const std::string set = "setxkbmap -display " + name + " ";
    run(set + "fr");
    setEnvironment("DISPLAY", name.c_str());
    EXPECT_EQ(upperLeftLetter(), "A");
    run(set + "de");
    EXPECT_EQ(upperLeftLetter(), "Q");
    run(set + "us,fr");
    EXPECT_EQ(upperLeftLetter(), "Q");
    EXPECT_TRUE(testing::holdsInChild([&] {
        m_clocks.now += seconds(1.0);
        return upperLeftLetter() == "Q";
    }));
    run(set + "fr");
    EXPECT_EQ(upperLeftLetter(), "A");
    run(signal("STOP"));
    ::alarm(30);
    EXPECT_EQ(upperLeftLetter(), "A");
    ::alarm(0);
    run(signal("KILL"));
    EXPECT_GE(::pclose(server), 0);
    EXPECT_EQ(upperLeftLetter(), "Q");  // the configured one
}

// NOLINTEND(concurrency-mt-unsafe)

TEST_F(KeyCodeConverter, TheTableOfCharactersIsBuiltOnce) {
    if (!hasLayouts()) GTEST_SKIP() << "no keyboard layouts on this machine";
    use("de");
    Converter::generateKeyCharToKeyCodeLUT();
    use("us");
    bool isSeveral = true;
    EXPECT_TRUE(Converter::keyCodeForKeyChar('z', isSeveral) == 0x10 && !isSeveral);
    EXPECT_TRUE(Converter::keyCodeForKeyChar('7', isSeveral) == 0x1A && isSeveral);
    EXPECT_THAT(*Converter::keyCodesForKeyChar('7'), ElementsAre(0x1A, 0x59));
    EXPECT_EQ(Converter::keyCodeForKeyChar(0x1E, isSeveral), 0x7E);
    EXPECT_EQ(Converter::keyCodeForKeyChar('Z', isSeveral), 0);
    EXPECT_EQ(Converter::keyCodesForKeyChar('Z'), nullptr);
    const bool hasMacRoman = TextServices::current().fromLegacy("a").has_value();
    EXPECT_EQ(Converter::keyCodeForKeyChar(0x9F, isSeveral), hasMacRoman ? 0x21 : 0);  // u umlaut
}

}  // namespace
}  // namespace veltra

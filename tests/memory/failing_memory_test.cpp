// SPDX-License-Identifier: MIT
// Every allocation of the library fails once, and from then on: it answers what it documents for
// want of memory, leaks nothing, and is right again when there is memory again.
#include "tests/memory/failing_memory.h"

#include "tests/memory/real_zone.h"
#include "veltra/Source/Extensions/QKNSData_Extensions.h"
#include "veltra/Source/Extensions/QKNSDictionary_Extensions.h"
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"
#include "veltra/Source/Extensions/QKNSFileManager_Merge.h"
#include "veltra/Source/Extensions/QKNSFileManager_Plugins.h"
#include "veltra/Source/Extensions/QKNSString_Extension.h"
#include "veltra/Source/Extensions/QKNSString_Paths.h"
#include "veltra/Source/Extensions/QKNSString_URLs.h"
#include "veltra/audio/add_remove_iterate_list.h"
#include "veltra/audio/musical_context.h"
#include "veltra/base/exception.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/diagnostics/assertion.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/crash_reporter_info.h"
#include "veltra/diagnostics/exception_report.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/trace_stream.h"
#include "veltra/infrastructure/color_management.h"
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/nano_timer.h"
#include "veltra/infrastructure/profiles/generic_rgb_profile.h"
#include "veltra/infrastructure/progress_indicator.h"
#include "veltra/infrastructure/singleton.h"
#include "veltra/infrastructure/time_marker.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/memory/guarded_allocator.h"
#include "veltra/memory/leak_guard.h"
#include "veltra/memory/leak_report.h"
#include "veltra/memory/low_memory_notification_center.h"
#include "veltra/memory/memory_pressure.h"
#include "veltra/memory/memory_reserve.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/platform/alert.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/localization.h"
#include "veltra/platform/notification_center.h"
#include "veltra/platform/poll_run_loop.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/process.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/termination.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/platform/testing/temporary_folder.h"
#include "veltra/platform/text_services.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/dot_api.h"
#include "veltra/processor/kernels.h"
#include "veltra/processor/sample_conversion.h"
#include "veltra/processor/utf8_text.h"
#include "veltra/ui/button.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/picture.h"
#include "veltra/ui/slider_cell.h"
#include "veltra/ui/testing/scripted_port.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace veltra {
namespace {

using testing::Answer;
using testing::oneOf;
using testing::Promise;
using testing::Scenario;
using testing::Unfailing;

constexpr std::string_view kZone = "EST5";  // set for this program by its build

const testing::TemporaryFolder& folder() {
    static const testing::TemporaryFolder folder;
    return folder;
}

// What `make` makes, of memory that does not fail.
template <typename Make>
auto unfailing(Make make) {
    const Unfailing now;
    return make();
}

// What `write` writes to standard error.
template <typename Write>
std::string written(Write write) {
    const int before = ::dup(STDERR_FILENO);
    const int file = ::memfd_create("stderr", 0);
    ::dup2(file, STDERR_FILENO);
    write();
    ::dup2(before, STDERR_FILENO);
    const Unfailing now;
    std::string text(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)), '\0');
    const bool isRead = ::pread(file, text.data(), text.size(), 0) >= 0;
    ::close(before);
    ::close(file);
    return isRead ? text : "unreadable";
}

constexpr const char* kStored = "{\n    \"Kept\": 1,\n    \"Number\": 7\n}\n";

std::string preferencesPath() {
    return folder() / "veltra-failing.json";
}

std::string storedPreferences() {
    std::ostringstream text;
    text << std::ifstream(preferencesPath(), std::ios::binary).rdbuf();
    return text.str();
}

void storePreferences(const char* text) {
    const Unfailing now;
    Preferences::setApplicationName("veltra-failing");
    std::ofstream(preferencesPath(), std::ios::binary) << text;
}

struct Ticks : Anchored {
    int count = 0;
    void countOne(RunLoopTimer& /*timer*/) { ++count; }
    void countAnother(QkTimer& /*timer*/) { ++count; }
};

struct SilentPresenter final : AlertPresenter {
    AlertAnswer present(const Alert& alert) noexcept override {
        m_isAsked = !alert.message.empty();
        return AlertAnswer::Default;
    }
    bool m_isAsked = false;
};

int retries = 0;

// ---------------------------------------------------------------------------------------- memory

Answer guardedAllocator() {
    retries = 2;
    Mem_SetException(kMemExceptionCall,
                     [] { return int{retries-- > 0 ? kMemExceptionRetry : kMemExceptionNull}; });
    auto* block = static_cast<char*>(Mem_malloc(100));
    auto* zeros = static_cast<char*>(Mem_calloc(10, 10));
    char* text = Mem_strdup("text");
    void* larger = Mem_realloc(block, 1000);
    const bool isSound =
        (text == nullptr || std::strcmp(text, "text") == 0) && (zeros == nullptr || zeros[99] == 0);
    const bool isWhole =
        block != nullptr && zeros != nullptr && text != nullptr && larger != nullptr;
    Mem_free(larger != nullptr ? larger : block);
    Mem_free(zeros);
    Mem_free(text);
    return oneOf(isWhole && isSound, isSound && retries < 0);
}

Answer lowMemoryCenter() {
    using Center = LowMemoryNotificationCenter;
    static int calls;
    calls = 0;
    int posts = 0;
    testing::FakePreferences preferences;
    preferences.stored = unfailing([]() -> PropertyValue {
        return PropertyValue::Dictionary{{"LowMemoryReserve", 1000},
                                         {"MinAvailMemoryThreshold", 2000}};
    });
    const Center::Observer count = [](void*, std::uint8_t, unsigned long) {
        return static_cast<unsigned long>(calls++ < 0);
    };
    const bool isInitialised = Center::InitializeLMNotificationCenter() == 1;
    const bool isObserved = Center::AddLMObserver(count, &calls) == 1;
    const bool isPosted = NotificationCenter::local().addObserver(
        &posts, [](void* context, const VLString*, const void*) { ++*static_cast<int*>(context); },
        kLowMemoryNotification, nullptr);
    const bool wasWhole = Center::EnterCriticalOperation();
    const bool hasRoom = Center::CheckMemory(10) == 1;
    const bool goesAhead = Center::CheckPoint(10) == 1;
    const bool isPassed = Center::PostLMNotification(0, 2, 0, true) == (isInitialised ? 0 : 1);
    const bool isWhole = Center::LeaveCriticalOperation();
    const bool isRemoved = Center::RemoveLMObserver(count, &calls) == (isObserved ? 1 : 0);
    Center::ShutdownLMNotificationCenter();
    NotificationCenter::local().removeObserver(&posts);
    const bool isConsistent = wasWhole && goesAhead && isPassed && isWhole && isRemoved &&
                              (isObserved ? calls >= 3 : calls == 0) &&
                              (isPosted && isInitialised ? posts >= 3 : posts == 0);
    return oneOf(isConsistent && isInitialised && isObserved && isPosted && hasRoom && calls == 3,
                 isConsistent);
}

// What fails below the reserve is had all the same, as long as the reserve lasts.
Answer memoryReserve() {
    const testing::FakePreferences preferences;
    QKMemoryReserveSetOption(kMemoryReserveBlockSize, 1);
    QKMemoryReserveSetOption(kMemoryReserveFinalBlockSize, 1);
    QKMemoryReserveDidProbingFail(1);
    void* zeros = QKMemoryReserveEnter(nullptr, nullptr);
    void* volatile block = std::malloc(100);
    const bool isAvailable = QKMemoryReserveTestAvailableMemory(1000, 500) == 1;
    const bool isConsistent = (QKMemoryReserveDidProbingFail(1) == 0) == isAvailable;
    const int level = QKMemoryReserveDidLowMemoryLevelChange(1);
    std::free(block);
    QKMemoryReserveExit();
    std::free(zeros);
    return oneOf(block != nullptr && zeros != nullptr && isAvailable && level == 0, isConsistent);
}

// The guard reads its preferences once, and stays in the zone.
Answer leakGuard() {
    static std::optional<testing::FakePreferences> preferences;
    static const VLString* group = nullptr;
    static const VLString* key = nullptr;
    if (!preferences) {
        const Unfailing now;
        preferences.emplace().stored = PropertyValue::Dictionary{{"LeakGuardEnabled", true}};
        group = VLStringCreateWithCString("group");
        key = VLStringCreateWithCString("key");
    }
    QKOverrideLeakGuardPreference(group, key, 1);
    QKLeakGuard* scope = QKOpenLeakGuardScopeWithGroupAndKey(group, key);
    void* volatile leaked = std::malloc(100);
    QKCloseLeakGuardScope(scope);
    static std::string_view text;
    text = {};
    const long bytes = QKLeakGuardVisitLeaks(
        [](void*, const QKLeak* leak) {
            text = {leak->text, 12};
        },
        nullptr);
    const bool isRight = leaked != nullptr && bytes == 100 && !text.empty();
    std::free(leaked);
    return oneOf(isRight, isRight || bytes == 0);
}

// Looks at the machine, and at a limit that stays as it is.
Answer memoryPressure() {
    MemoryPressure pressure;
    const int level = pressure.relieve();
    const bool isOpen = pressure.descriptor() >= 0;
    const MemorySystem::Limits before = MemorySystem::current().addressSpaceLimits();
    const std::uint64_t room = limitAddressSpaceToMemory(MemorySystem::kNoLimit);
    return oneOf(isOpen && level >= MemoryPressure::kNone && level <= 2 &&
                     pressure.facts().room() && room == 0 &&
                     MemorySystem::current().addressSpaceLimits().current == before.current,
                 false);
}

Answer notificationCenter() {
    static int calls;
    calls = 0;
    NotificationCenter center;
    const auto count = [](void*, const VLString*, const void*) { ++calls; };
    const VLString* name = VLStringCreateWithCString("name");
    const int added = (center.addObserver(&calls, count, name, nullptr) ? 1 : 0) +
                      (center.addObserver(&retries, count, nullptr, &calls) ? 1 : 0);
    center.post(name, &calls);
    const bool isRight = calls == (name != nullptr ? added : 0);
    center.removeObserver(&calls);
    center.post(name, nullptr);
    VLStringRelease(name);
    return oneOf(isRight && calls == 2, isRight);
}

// ----------------------------------------------------------------------------- text and values

Answer stringObjects() {
    const std::array<std::uint16_t, 2> units{'a', 0xE9};
    std::array<char, 8> text{};
    const VLString* fromUtf8 = VLStringCreateWithUtf8("a\xC3\xA9", 3);
    const VLString* fromUtf16 = VLStringCreateWithUtf16(units.data(), units.size());
    const bool isSound = (fromUtf8 == nullptr || VLStringCopyUtf8(fromUtf8, text.data(), 8) == 3) &&
                         (fromUtf16 == nullptr || VLStringCopyUtf8(fromUtf16, text.data(), 8) == 3);
    const bool isWhole = fromUtf8 != nullptr && fromUtf16 != nullptr;
    VLStringRelease(fromUtf8);
    VLStringRelease(fromUtf16);
    return oneOf(isWhole && isSound, isSound);
}

Answer legacyText() {
    std::array<char, 16> name{}, pascal{}, path{}, bytes{};
    const VLString *lost = nullptr, *lostToo = nullptr;
    utf8_to_fsspecFileSystemCString(name.data(), "\xC3\xA9\xE2\x82\xAC\xE6\x97\xA5", 16, &lost);
    utf8_to_fsspecFileSystemPascalString(pascal.data(), "\xC3\xA9", 16, &lostToo);
    const bool isPath = utf8_to_fileSystemRepresentation(path.data(), "\xC3\xA9", 16) == 1;
    const auto size = TextServices::current().toLegacy(u"\u00E9", '_', bytes);
    const auto text = TextServices::current().fromLegacy("\x8E and what makes it long enough");
    const bool isNamed = std::strcmp(name.data(), "\x8E\xDB_") == 0;
    const bool isNeutral =
        (isNamed || name[0] == '\0') && pascal[0] <= 1 && isPath == (path[0] != '\0') &&
        (!size || (*size == 1 && bytes[0] == '\x8E')) && (!text || text->front() == u'\u00E9');
    const bool isWhole = isNamed && pascal[0] == 1 && isPath && VLStringLength(lost) == 3 &&
                         lostToo == nullptr && size && text;
    VLStringRelease(lost);
    VLStringRelease(lostToo);
    return oneOf(isWhole && isNeutral, isNeutral);
}

Answer checkedAndComparedText() {
    const bool isAddress = stringLooksLikeValidEmailAddress("someone@example.com");
    const bool isUri = stringLooksLikeValidURI("http://someone@example.com:80/a%20b?c#d");
    const bool isFound =
        containsSubstring("Caf\u00E9 de la Paix", "CAFE\u0301", CompareOption::CaseInsensitive);
    const bool isWrong = stringLooksLikeValidURI("a b") || equals("a", "\u00E9");
    return oneOf(isAddress && isUri && isFound && !isWrong, !isWrong);
}

Answer convertedText() {
    constexpr const char* kUrl = "http://b\u00FCcher.example/a longer path";
    const std::string ascii = stringByConvertingToPunycode(kUrl);
    const bool isAscii = ascii == "http://xn--bcher-kva.example/a longer path";
    const bool isRight =
        stringByConvertingToXML("<b\tcomes before a & c>") == "&lt;bcomes before a &amp; c&gt;" &&
        stringByConvertingToRFC2396(kUrl) == "http://b%C3%BCcher.example/a%20longer%20path" &&
        stringByDeletingCharactersInSet("a\nb", CharacterSet::controlCharacterSet()) == "ab";
    const bool isMac = macRomanString("\u00E9") && stringWithMacRomanString("\x8E");
    return oneOf(isRight && isAscii && isMac, isRight && (isAscii || ascii == kUrl));
}

Answer compressedAndPackedData() {
    SilentPresenter presenter;
    AlertPresenter* const before = AlertPresenter::install(&presenter);
    const auto bytes = unfailing([] { return PropertyValue::Data(100'000, 'x'); });
    const auto stream = compressedData(bytes);
    const bool isAsked = presenter.m_isAsked;
    AlertPresenter::install(before);
    const auto unpacked = stream ? decompressedData(*stream) : std::nullopt;
    const auto dictionary =
        initWithData(std::array<std::uint8_t, 7>{'{', '"', 'a', '"', ':', '1', '}'});
    return oneOf(unpacked == bytes && dictionary && dictionary->size() == 1,
                 stream.has_value() != isAsked && (!unpacked || *unpacked == bytes));
}

// What the text files of a folder hold, by name; hidden names, which a failed removal may leave and
// tell, left out.
std::map<std::string, std::string> textsIn(const std::filesystem::path& root) {
    std::map<std::string, std::string> texts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file() || entry.path().string().find("/.") != std::string::npos)
            continue;
        std::ifstream file(entry.path());
        std::getline(file, texts[entry.path().lexically_relative(root).string()]);
    }
    return texts;
}

void putText(const std::filesystem::path& file, const char* text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

// Each item of the target is the old one or the new one, and a package is whole or not there.
Answer mergedFolders() {
    const auto [from, to, both] = unfailing([] {
        const std::filesystem::path root = folder() / "merge";
        std::filesystem::remove_all(root);
        for (const char* name : {"from/both", "from/in/new", "from/Kit.app/a", "from/Kit.app/b"})
            putText(root / name, "new");
        putText(root / "to/both", "old");
        return std::array{(root / "from").string(), (root / "to").string(),
                          (root / "to/both").string()};
    });
    const bool isMerged = mergePath(from, to, true, nullptr);
    const auto listed = contentPathsAtPath(to, true);
    const auto unique = uniqueFileNameAtPath(to, "both", "");
    const bool isVisible = isFileVisible(both);
    const auto found = searchForPlugins("app", to);
    const bool isRight = isMerged && listed && listed->size() == 4 && unique && isVisible &&
                         found && found->size() == 1;
    const std::string* const folders[] = {&from, &to};
    const bool isSound = unfailing([&folders, isMerged] {
        const auto texts = textsIn(*folders[1]);
        const bool isKnown = std::all_of(texts.begin(), texts.end(), [](const auto& text) {
            return text.second == "new" || (text.first == "both" && text.second == "old");
        });
        return isKnown && texts.contains("both") &&
               texts.contains("Kit.app/a") == texts.contains("Kit.app/b") &&
               (!isMerged || texts.size() == 4) && textsIn(*folders[0]).size() == 4;
    });
    return oneOf(isRight && isSound, isSound);
}

Answer valuesAndExceptions() {
    const PropertyValue text(
        localizedString("what is too long to lie in the string object itself"));
    const PropertyValue tree =
        PropertyValue(PropertyValue::Dictionary{{"array", PropertyValue::Array{1, text, 2.5}}})
            .settingValueAtPath({"group", "key"}, text);
    const bool isSound = text.asString().size() == 51 && tree["array"].asArray()[1] == text &&
                         tree.valueAtPath({"group", "key"}) == text;
    try {
        raiseException("Name", text.asString());
    } catch (const Exception& caught) {
        return oneOf(isSound && caught.name() == "Name" && caught.reason() == text.asString(),
                     false);
    }
}

class Shared : public QKSingleton {
public:
    static SlotClass<> s_class;
    Class& classObject() const noexcept override { return s_class; }
};
constinit SlotClass<> Shared::s_class("Shared", &QKSingleton::s_class, makeObject<Shared>);
const ClassEntry sharedEntry(Shared::s_class);

class SharedValue : public QKFlyweight {
public:
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
    void setupIntrinsicStateData() override { m_text.assign(100, 'x'); }
    std::string m_text;
};
constinit PlainClass SharedValue::s_class("SharedValue", &QKFlyweight::s_class,
                                          makeObject<SharedValue>);
const ClassEntry sharedValueEntry(SharedValue::s_class);

Answer objects() {
    bool isSound = true;
    bool isWhole = true;
    try {
        isWhole = Shared::s_class.sharedInstance() != nullptr;
        isSound = isWhole == (Shared::s_class.singleton() != nullptr);
        auto* const value = flyweight<SharedValue>(7);
        auto* const same = flyweight<SharedValue>(7);
        isWhole &= value != nullptr && same == value;
        for (SharedValue* const one : {value, same}) {
            isSound &= one == nullptr || one->m_text.size() == 100;
            if (one != nullptr) one->release();
        }
        isSound &= Class::named("SharedValue") == &SharedValue::s_class;
    } catch (const std::bad_alloc&) {
        isWhole = false;  // of the set-up
    }
    const Unfailing now;
    QKSingleton::releaseAllSingletons();
    return oneOf(isSound && isWhole, isSound);
}

Answer backtraces() {
    VLBacktracingException::install();
    VLSetCrashReporterInfo(nullptr);
    const auto* const info = unfailing([] { return VLStringCreateWithCString("Song"); });
    VLSetCrashReporterInfo(info);
    const bool isSet = ___crashreporter_info__.load() != nullptr;
    VLSetCrashReporterInfo(nullptr);
    VLStringRelease(info);
    bool isSound = false;
    bool isWhole = false;
    std::string log;
    log = written([&] {
        try {
            raiseException("Name", "reason");
        } catch (const VLBacktracingException& caught) {
            const Unfailing now;
            isSound = caught.name() == "Name";
            isWhole = isSet && caught.backtrace().has_value() && !caught.backtrace()->empty();
        } catch (const std::bad_alloc&) {
            isSound = true;
        }
    });
    installExceptionFactory(nullptr);
    return oneOf(isSound && isWhole && log.find("Name: reason\n") != std::string::npos, isSound);
}

Answer exceptionReport() {
    struct NoNames final : Symboliser {
        std::string symbolise(std::span<const std::uintptr_t>) noexcept override { return {}; }
    } noNames;
    SilentPresenter presenter;
    AlertPresenter* const before = AlertPresenter::install(&presenter);
    Symboliser::install(&noNames);
    const auto ignore = installTerminator([]() noexcept {});
    const Exception exception = unfailing([] {
        const auto userInfo = std::make_shared<Exception::UserInfo>();
        (*userInfo)[std::string(kStackTraceKey)] = "0x10  0x20";
        return Exception("Name", "reason", userInfo);
    });
    const std::string text = written([&] { QKDisplayExceptionReport(exception); });
    installTerminator(ignore);
    Symboliser::install(nullptr);
    AlertPresenter::install(before);
    const bool isSound = presenter.m_isAsked && text.find("****\n\nName: reason\n") != text.npos &&
                         text.find("0x10") != text.npos;
    return oneOf(isSound, false);
}

Answer preferencesRead() {
    storePreferences(kStored);
    const PropertyValue number = Preferences::current().value("Number");
    const PropertyValue other = Preferences::current().value("Other\xFF");
    const Unfailing now;
    const bool isKept = storedPreferences() == kStored &&
                        !Preferences::current().takeDamageReport() && other.isNull();
    return oneOf(isKept && number.asInteger() == 7, isKept && number.isNull());
}

Answer preferencesWritten() {
    storePreferences(kStored);
    Preferences& preferences = Preferences::current();
    const bool isSet = preferences.setValue("Number", 8);
    const std::error_code error = preferences.synchronise();
    const std::error_code reloadError = preferences.reload();
    const Unfailing now;
    const bool isNew = storedPreferences() == "{\n    \"Kept\": 1,\n    \"Number\": 8\n}\n";
    return oneOf(isSet && !error && !reloadError && isNew,
                 isSet && !error ? isNew : storedPreferences() == kStored);
}

Answer preferencesDamaged() {
    storePreferences("{ damaged");
    const std::error_code error = Preferences::current().reload();
    const auto damage = Preferences::current().takeDamageReport();
    const Unfailing now;
    const bool isKept =
        damage && !damage->keptAs.empty() && std::remove(damage->keptAs.c_str()) == 0;
    return oneOf(!error && isKept, error || isKept);
}

// --------------------------------------------------------------------------------- diagnostics

Answer logLines() {
    const auto objects = unfailing([] {
        return std::pair(VLStringCreateWithCString("%@ and %d%%%%"),
                         VLStringCreateWithCString("word"));
    });
    const std::string text = written([&] {
        QKLogCString(3, false, "tag", "number %d, %s", 7, "text");
        QKLog(3, false, "tag", objects.first, objects.second, 7);
        QKLogCString(3, true, "tag", "text");
        utf8_log("text");
    });
    VLStringRelease(objects.first);
    VLStringRelease(objects.second);
    return oneOf(text.starts_with("number 7, text\nword and 7%\n20") &&
                     text.ends_with("] tag: text\ntext\n"),
                 false);
}

// Longer than what a line has room for without allocating: then its end may be missing.
Answer longLogLine() {
    const std::string text = unfailing([] { return std::string(100'000, 'x'); });
    const std::string line = written([&] { QKLogCString(3, false, "tag", "%s", text.c_str()); });
    const Unfailing now;
    return oneOf(line == text + "\n",
                 line.starts_with("xxx") && line.ends_with("\n") && line.size() < text.size());
}

Answer assertion() {
    SilentPresenter presenter;
    AlertPresenter* const before = AlertPresenter::install(&presenter);
    std::int32_t counter = 3;
    int answer = -1;
    const std::string text = written([&] { answer = dbgASSERT(0, "a < b", "file.cpp", &counter); });
    AlertPresenter::install(before);
    return oneOf(answer == 0 && counter == 2 && presenter.m_isAsked &&
                     text.ends_with("ASSERT(a < b) in file.cpp failed.\n"),
                 false);
}

Answer alertThatNobodySees() {
    Alert alert;
    alert.message = "message";
    alert.timeout = milliseconds(1);
    ::setsid();  // no terminal
    return oneOf(presentAlert(alert) == AlertAnswer::TimedOut, false);
}

// ---------------------------------------------------------------------------- timers and lists

Answer runLoop() {
    Ticks ticks;
    RunLoop* loop = RunLoop::current();
    if (loop == nullptr) return Answer::Neutral;
    const auto timer = loop->schedule(
        {.interval = Nanoseconds(1), .target = &ticks, .action = action<&Ticks::countOne>()});
    if (timer == nullptr) return Answer::Neutral;
    while (timer->isValid())
        loop->runDue();
    return oneOf(ticks.count == 1, false);
}

// Which goes with its thread, as the count of blocks tells.
Answer runLoopOfAnotherThread() {
    Answer answer = Answer::Wrong;
    std::optional<Unfailing> now(std::in_place);
    std::thread thread([&] {
        now.reset();
        answer = runLoop();
        now.emplace();
    });
    thread.join();
    return answer;
}

Answer timers() {
    const std::unique_ptr<QKNanoTimer> nanoTimer = QKNanoTimer::timer();
    if (nanoTimer == nullptr) return Answer::Neutral;
    nanoTimer->start();
    nanoTimer->stop();
    const bool isDescribed = !nanoTimer->description().empty();
    PollRunLoop loop;
    RunLoop::setCurrent(&loop);
    Ticks ticks;
    QkTimer timer(1e-9, &ticks, action<&Ticks::countAnother>(), nullptr, false);
    timer.start();
    const bool isStarted = timer.isValid();
    const bool hasDescriptor = loop.descriptor() >= 0;
    const bool isStopped = loop.runFor(milliseconds(isStarted ? 1 : 0));
    RunLoop::setCurrent(nullptr);
    return oneOf(isDescribed && isStarted && hasDescriptor && !isStopped && ticks.count == 1,
                 isDescribed && ticks.count == (isStarted ? 1 : 0));
}

Answer callbackList() {
    static int calls;
    calls = 0;
    const auto count = [](void*, std::uint32_t, void*) { ++calls; };
    CAddRemoveIterateList list;
    int first = 0;
    int second = 0;
    const int added = (list.Add(&first, count) ? 1 : 0) + (list.Add(&second, count) ? 1 : 0);
    list.Iterate(0, nullptr);
    const bool isCalled = calls == added;
    const int removed = list.Remove(&first) && added == 2 ? 1 : 0;
    list.Iterate(0, nullptr);
    return oneOf(isCalled && calls == 3 && removed == 1, isCalled);
}

// ------------------------------------------------------------------------------ user interface

Answer meters() {
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
    testing::HostedView host(std::make_unique<DfStereoLevelMeterView>(Rect{{}, {32, 200}}));
    auto& meter = static_cast<DfStereoLevelMeterView&>(*host.window.contentView());
    meter.setToolTips("left", "right");
    meter.setLevelL(0.5F, 1.1F);
    loop.advance(0.1);
    const bool isDrawn = !host.display().empty();
    host.click({20, 190});
    loop.advance(10);
    return oneOf(isDrawn && !loop.nextDeadline(), false);
}

Answer controlsAndTheirPicture() {
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
    auto all = std::make_unique<View>(Rect{{}, {100, 100}});
    auto& button = all->addSubview(std::make_unique<Button>(
        Rect{{0, 70}, {100, 30}}, "A title of some length", ButtonCell::Kind::Toggle));
    all->addSubview(
        std::make_unique<Control>(Rect{{0, 30}, {100, 20}}, std::make_unique<SliderCell>()));
    all->toolTips().addToolTipRect({{}, {100, 100}}, "a tool tip that is long enough for a block");
    testing::HostedView host(std::move(all));
    host.window.contentView()->setNeedsDisplay();
    const bool isDrawn = !host.display().empty();
    host.click({50, 85});  // from below: the button
    host.press({10, 40});
    host.drag({90, 40});
    host.release({90, 40});
    host.key(u'\t');
    KeyedCoder coder;
    button.encodeWithCoder(coder);
    PictureWindow picture({100, 100}, 2.0F, Appearance::Dark);
    picture.window().setContentView(host.window.takeContentView());
    const auto image = picture.draw();
    return oneOf(isDrawn && button.isOn() && !coder.archive().isNull() && image != nullptr &&
                     image->size().width == 100.0F,
                 false);
}

// ----------------------------------------------------------------------------- progress, colour

double shownProgress = 0.0;

Answer progress() {
    const VLProgressIndicatorService service{
        [](const VLString*, const void*) -> void* { return &shownProgress; }, [](void*) {},
        [](void* shown, double value) {
            *static_cast<double*>(shown) = value;
            return 0;
        },
        nullptr};
    VLProvideProgressIndicatorService(&service);
    shownProgress = 0.0;
    const VLString* const text = VLStringCreateWithCString("Reading");
    VLProgressIndicator* const indicator = VLAcquirePostedProgressIndicator(text, nullptr);
    VLPostProgressIndicatorInfoText(indicator, text);
    VLPostProgressIndicatorValue(indicator, 0.5);
    VLCancelProgressIndicator(&shownProgress);
    const bool isCancelled = VLProgressIndicatorIsCancelled(indicator);
    VLReleaseProgressIndicator(indicator);
    VLStringRelease(text);
    VLProvideProgressIndicatorService(nullptr);
    const bool isShown = isCancelled && shownProgress == 0.5;
    return oneOf(isShown && text != nullptr, indicator == nullptr || (isShown && text == nullptr));
}

Answer colors() {
    const VLString* const name = unfailing([] {
        const char* const bytes = reinterpret_cast<const char*>(kGenericRgbProfile.data());
        std::ofstream(folder().path / "copy.icc", std::ios::binary)
            .write(bytes, kGenericRgbProfile.size());
        setResourceFolder(folder().path.string());
        VLGetCalibratedRGB_CGColorSpace();  // else it goes by formula for good
        return VLStringCreateWithCString("copy.icc");
    });
    const VLColorSpace* const copy = VLCreateCGColorSpaceFromResource(name);
    VLStringRelease(name);
    const float red = VLColorToSrgb(VLCreateRGBColor(0.5F, 0, 0, 1)).red;
    const float copied = VLColorToSrgb({copy, {0.5F, 0, 0}, 1}).red;
    const auto isRight = [](float shown) { return shown > 0.571F && shown < 0.574F; };
    return oneOf(isRight(red) && isRight(copied), isRight(red) && copy == nullptr);
}

// ------------------------------------------------------------------------- what never allocates

Answer processing() {
    std::array<float, 8> floats{};
    std::array<unsigned char, 24> bytes{};
    GetConvertFloatToN(kSampleInt24, false)(bytes.data(), floats.data(), 8, nullptr);
    GetConvertNToFloat(kSampleInt24, true)(floats.data(), bytes.data(), 8, nullptr);
    PSwapLong(bytes.data(), 6);
    CDotAPI::Init();
    const CMusicalContext context(44100, 1);
    QkTimeMarker marker;
    marker.setMarker();
    IndentToCout();
    const auto evening = LocalTime::current().civilTime({1'700'000'000, 0});  // 22:13:20 UTC
    const char* zone = environmentVariable("TZ");
    for (KernelFamily* family : KernelFamily::all())
        family->useBest();
    const bool isRight = QKCRC32(0, "123456789", 9) == 0xCBF43926U &&
                         utf8_check("a\xC3\xA9") == 1 && CDotAPI::MenuText(99) == nullptr &&
                         context.m_tempo == 120000 &&
                         Clocks::current().monotonic().errorNumber() == 0 &&
                         Process::current().processId() == ::getpid() &&
                         environmentVariable("no such variable") == nullptr && evening &&
                         (zone == nullptr || zone != kZone || evening->hour == 17);
    return oneOf(isRight, false);
}

constexpr std::array kScenarios{
    Scenario{"guarded allocator", Promise::NeverThrows, guardedAllocator},
    Scenario{"low-memory center", Promise::NeverThrows, lowMemoryCenter},
    Scenario{"memory reserve", Promise::NeverThrows, memoryReserve},
    Scenario{"leak guard", Promise::NeverThrows, leakGuard},
    Scenario{"memory pressure", Promise::AllocatesNothing, memoryPressure},
    Scenario{"notification center", Promise::NeverThrows, notificationCenter},
    Scenario{"string objects", Promise::NeverThrows, stringObjects},
    Scenario{"legacy file names, text services", Promise::NeverThrows, legacyText},
    Scenario{"checked and compared text", Promise::NeverThrows, checkedAndComparedText},
    Scenario{"converted text", Promise::MayThrow, convertedText},
    Scenario{"compressed data, dictionaries", Promise::NeverThrows, compressedAndPackedData},
    Scenario{"merged folders", Promise::NeverThrows, mergedFolders},
    Scenario{"values, exceptions, localized strings", Promise::MayThrow, valuesAndExceptions},
    Scenario{"objects, singletons, shared values", Promise::NeverThrows, objects},
    Scenario{"backtraces, crash text", Promise::NeverThrows, backtraces},
    Scenario{"exception report", Promise::NeverThrows, exceptionReport},
    Scenario{"preferences, read", Promise::NeverThrows, preferencesRead},
    Scenario{"preferences, written", Promise::NeverThrows, preferencesWritten},
    Scenario{"preferences, damaged", Promise::NeverThrows, preferencesDamaged},
    Scenario{"log", Promise::AllocatesNothing, logLines},
    Scenario{"log, long line", Promise::NeverThrows, longLogLine},
    Scenario{"assertion", Promise::AllocatesNothing, assertion},
    Scenario{"alert that nobody sees", Promise::NeverThrows, alertThatNobodySees},
    Scenario{"run loop", Promise::NeverThrows, runLoop},
    Scenario{"run loop of another thread", Promise::NeverThrows, runLoopOfAnotherThread},
    Scenario{"nano timer, timer, polling run loop", Promise::MayThrow, timers},
    Scenario{"callback list", Promise::NeverThrows, callbackList},
    Scenario{"progress", Promise::NeverThrows, progress},
    Scenario{"colours", Promise::NeverThrows, colors},
    Scenario{"level meters", Promise::MayThrow, meters},
    Scenario{"controls, picture of a window", Promise::MayThrow, controlsAndTheirPicture},
    Scenario{"sample data, kernels, times", Promise::AllocatesNothing, processing},
};

// Of the children: no user's preferences, no display, plain log lines on standard error.
void prepareEnvironment() {
    // NOLINTBEGIN(concurrency-mt-unsafe): one thread
    if (std::filesystem::exists("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
    ::setenv("XDG_CONFIG_HOME", folder().path.c_str(), 1);
    ::setenv("CFLOG_FORCE_STDERR", "1", 1);
    ::setenv("VELTRA_TRACE_WITHOUT_BANNER", "", 1);
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    // NOLINTEND(concurrency-mt-unsafe)
}

TEST(FailingMemory, MakesNothingCrashLeakOrAnswerWrongly) {
    SKIP_WITHOUT_REAL_ZONE();
    prepareEnvironment();
    long loops = 0;
    for (const Scenario& scenario : kScenarios) {
        const testing::Findings findings = testing::tryEveryFailure(scenario);
        std::printf("%-40s %5ld allocations %6ld loops\n", scenario.name, findings.allocations,
                    findings.loops);
        EXPECT_EQ(findings.faults, "");
        loops += findings.loops;
    }
    std::printf("%-40s %25ld loops\n", "all", loops);
}

}  // namespace
}  // namespace veltra

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
#include "veltra/Source/Extensions/QKNSURL_Extensions.h"
#include "veltra/audio/add_remove_iterate_list.h"
#include "veltra/audio/musical_context.h"
#include "veltra/base/exception.h"
#include "veltra/base/testing/in_force.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/diagnostics/assertion.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/crash_reporter_info.h"
#include "veltra/diagnostics/exception_report.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/text_buffer.h"
#include "veltra/diagnostics/trace_stream.h"
#include "veltra/infrastructure/color_management.h"
#include "veltra/infrastructure/environment.h"
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/hardware.h"
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
#include "veltra/platform/optical_drives.h"
#include "veltra/platform/poll_run_loop.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/process.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/termination.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/platform/testing/temporary_folder.h"
#include "veltra/platform/text_services.h"
#include "veltra/platform/volumes.h"
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

#include <sys/mman.h>
#include <unistd.h>

namespace veltra {
namespace {

using testing::Answer;
using testing::oneOf;
using testing::putText;
using testing::Scenario;
using testing::textOf;
using enum testing::Promise;
using testing::Unfailing;

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

std::string storedPreferences() {
    return textOf(folder() / "veltra-failing.json");
}

void storePreferences(const char* text) {
    const Unfailing now;
    Preferences::setApplicationName("veltra-failing");
    putText(folder() / "veltra-failing.json", text);
}

struct Ticks : Anchored {
    int count = 0;
    template <typename Timer>
    void countOne(Timer& /*timer*/) {
        ++count;
    }
};

// In force while it lives.
struct SilentPresenter final : testing::InForce<AlertPresenter> {
    AlertAnswer present(const Alert& alert) noexcept override {
        isAsked = !alert.message.empty();
        return AlertAnswer::Default;
    }
    bool isAsked = false;
};

// ---------------------------------------------------------------------------------------- memory

const Scenario guardedAllocator("guarded allocator", NeverThrows, [] {
    static int retries;
    retries = 2;
    Mem_SetException(kMemExceptionCall,
                     [] { return int{retries-- > 0 ? kMemExceptionRetry : kMemExceptionNull}; });
    void* block = Mem_malloc(100);
    void* zeros = Mem_calloc(10, 10);
    char* text = Mem_strdup("text");
    void* larger = Mem_realloc(block, 1000);
    const bool isSound = text == nullptr || std::strcmp(text, "text") == 0;
    const bool isWhole = block != nullptr && zeros != nullptr && text != nullptr && larger;
    for (void* one : {larger != nullptr ? larger : block, zeros, static_cast<void*>(text)})
        Mem_free(one);
    return oneOf(isWhole && isSound, isSound && retries < 0);
});

const Scenario lowMemoryCenter("low-memory center", NeverThrows, [] {
    using Center = LowMemoryNotificationCenter;
    static int calls;
    calls = 0;
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
    const bool hasRoom = Center::CheckMemory(10) == 1;
    const bool isSound = Center::EnterCriticalOperation() && Center::CheckPoint(10) == 1 &&
                         Center::PostLMNotification(0, 2, 0, true) == (isInitialised ? 0 : 1) &&
                         Center::LeaveCriticalOperation() &&
                         Center::RemoveLMObserver(count, &calls) == (isObserved ? 1 : 0) &&
                         (isObserved ? calls >= 3 : calls == 0);
    Center::ShutdownLMNotificationCenter();
    return oneOf(isSound && isInitialised && isObserved && hasRoom && calls == 3, isSound);
});

// What fails below the reserve is had all the same, as long as the reserve lasts.
const Scenario memoryReserve("memory reserve", NeverThrows, [] {
    const testing::FakePreferences preferences;
    for (const int size : {kMemoryReserveBlockSize, kMemoryReserveFinalBlockSize})
        QKMemoryReserveSetOption(size, 1);
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
});

// The guard reads its preferences once, and stays in the zone.
const Scenario leakGuard("leak guard", NeverThrows, [] {
    static testing::FakePreferences preferences;
    static const VLString* name = nullptr;
    if (name == nullptr) {
        const Unfailing now;
        preferences.stored = PropertyValue::Dictionary{{"LeakGuardEnabled", true}};
        name = VLStringCreateWithCString("name");
    }
    QKOverrideLeakGuardPreference(name, name, 1);
    QKLeakGuard* scope = QKOpenLeakGuardScopeWithGroupAndKey(name, name);
    void* volatile leaked = std::malloc(100);
    QKCloseLeakGuardScope(scope);
    bool isTold = false;
    const long bytes = QKLeakGuardVisitLeaks(
        [](void* told, const QKLeak* leak) { *static_cast<bool*>(told) = leak->text[0] != '\0'; },
        &isTold);
    const bool isRight = leaked != nullptr && bytes == 100 && isTold;
    std::free(leaked);
    return oneOf(isRight, isRight || bytes == 0);
});

// Looks at the machine, and at a limit that stays as it is.
const Scenario memoryPressure("memory pressure", AllocatesNothing, [] {
    MemoryPressure pressure;
    const int level = pressure.relieve();
    return oneOf(pressure.descriptor() >= 0 && level >= MemoryPressure::kNone && level <= 2 &&
                     pressure.facts().room() &&
                     limitAddressSpaceToMemory(MemorySystem::kNoLimit) == 0,
                 false);
});

const Scenario notificationCenter("notification center", NeverThrows, [] {
    static int calls, other;
    calls = 0;
    NotificationCenter center;
    const auto count = [](void*, const VLString*, const void*) { ++calls; };
    const VLString* name = VLStringCreateWithCString("name");
    const int added = (center.addObserver(&calls, count, name, nullptr) ? 1 : 0) +
                      (center.addObserver(&other, count, nullptr, &calls) ? 1 : 0);
    center.post(name, &calls);
    const bool isRight = calls == (name != nullptr ? added : 0);
    center.removeObserver(&calls);
    center.post(name, nullptr);
    VLStringRelease(name);
    return oneOf(isRight && calls == 2, isRight);
});

// ----------------------------------------------------------------------------- text and values

const Scenario stringObjects("string objects", NeverThrows, [] {
    const std::array<std::uint16_t, 2> units{'a', 0xE9};
    std::array<char, 8> text{};
    bool isSound = true, isWhole = true;
    for (const VLString* made : {VLStringCreateWithUtf8("a\xC3\xA9", 3),
                                 VLStringCreateWithUtf16(units.data(), units.size())}) {
        isWhole &= made != nullptr;
        isSound &= made == nullptr || VLStringCopyUtf8(made, text.data(), 8) == 3;
        VLStringRelease(made);
    }
    return oneOf(isWhole && isSound, isSound);
});

const Scenario legacyText("legacy file names, text services", NeverThrows, [] {
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
});

const Scenario checkedAndComparedText("checked and compared text", NeverThrows, [] {
    const bool isAddress = stringLooksLikeValidEmailAddress("someone@example.com");
    const bool isUri = stringLooksLikeValidURI("http://someone@example.com:80/a%20b?c#d");
    const bool isFound =
        containsSubstring("Caf\u00E9 de la Paix", "CAFE\u0301", CompareOption::CaseInsensitive);
    const bool isWrong = stringLooksLikeValidURI("a b") || equals("a", "\u00E9");
    return oneOf(isAddress && isUri && isFound && !isWrong, !isWrong);
});

const Scenario convertedText("converted text", MayThrow, [] {
    constexpr const char* kUrl = "http://b\u00FCcher.example/a longer path";
    const std::string ascii = stringByConvertingToPunycode(kUrl);
    const bool isAscii = ascii == "http://xn--bcher-kva.example/a longer path";
    const bool isRight =
        stringByConvertingToXML("<b\tcomes before a & c>") == "&lt;bcomes before a &amp; c&gt;" &&
        stringByConvertingToRFC2396(kUrl) == "http://b%C3%BCcher.example/a%20longer%20path" &&
        stringByDeletingCharactersInSet("a\nb", CharacterSet::controlCharacterSet()) == "ab";
    const bool isMac = macRomanString("\u00E9") && stringWithMacRomanString("\x8E");
    return oneOf(isRight && isAscii && isMac, isRight && (isAscii || ascii == kUrl));
});

const Scenario compressedAndPackedData("compressed data, dictionaries", NeverThrows, [] {
    const SilentPresenter presenter;
    const auto bytes = unfailing([] { return PropertyValue::Data(100'000, 'x'); });
    const auto stream = compressedData(bytes);
    const bool isAsked = presenter.isAsked;
    const auto unpacked = stream ? decompressedData(*stream) : std::nullopt;
    const auto dictionary =
        initWithData(std::array<std::uint8_t, 7>{'{', '"', 'a', '"', ':', '1', '}'});
    return oneOf(unpacked == bytes && dictionary && dictionary->size() == 1,
                 stream.has_value() != isAsked && (!unpacked || *unpacked == bytes));
});

// What the text files of a folder hold, by name; hidden names, which a failed removal may leave and
// tell, left out.
std::map<std::string, std::string> textsIn(const std::filesystem::path& root) {
    std::map<std::string, std::string> texts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
        if (entry.is_regular_file() && entry.path().string().find("/.") == std::string::npos)
            texts[entry.path().lexically_relative(root)] = textOf(entry);
    return texts;
}

struct Problems : MergeHandler {
    MergeAnswer couldNotMerge(const MergeProblem& problem) noexcept override {
        areTold |= problem.reason != MergeProblem::Reason::AttributesNotKept;
        return MergeAnswer::GoOn;
    }
    bool areTold = false;
};

// Each item of the target is the old one or the new one, and a package is whole or not there.
const Scenario mergedFolders("merged folders", NeverThrows, [] {
    const auto paths = unfailing([] {
        const std::filesystem::path root = folder() / "merge";
        std::filesystem::remove_all(root);
        for (const char* name : {"from/both", "from/in/new", "from/Kit.app/a", "from/Kit.app/b"})
            putText(root / name, "new");
        putText(root / "to/both", "old");
        return std::array{(root / "from").string(), (root / "to").string(),
                          (root / "to/both").string()};
    });
    const auto& [from, to, both] = paths;
    Problems problems;
    const bool isMerged = mergePath(from, to, true, &problems);
    const auto listed = contentPathsAtPath(to, true);
    const auto unique = uniqueFileNameAtPath(to, "both", "");
    const bool isVisible = isFileVisible(both);
    const auto found = searchForPlugins("app", to);
    const bool isRight = isMerged && listed && listed->size() == 4 && unique && isVisible &&
                         found && found->size() == 1;
    const Unfailing now;
    const auto texts = textsIn(paths[1]);
    const bool isKnown = std::all_of(texts.begin(), texts.end(), [](const auto& text) {
        return text.second == "new" || (text.first == "both" && text.second == "old");
    });
    const bool isSound = isKnown && problems.areTold == !isMerged && texts.contains("both") &&
                         texts.contains("Kit.app/a") == texts.contains("Kit.app/b") &&
                         (!isMerged || texts.size() == 4) && textsIn(paths[0]).size() == 4;
    return oneOf(isRight && isSound, isSound);
});

// A machine without discs, in force while it lives: the device manager's library would allocate
// hundreds of times.
struct NoDiscs final : Volumes, OpticalDrives {
    NoDiscs() noexcept { Volumes::install(this), OpticalDrives::install(this); }
    ~NoDiscs() override { Volumes::install(nullptr), OpticalDrives::install(nullptr); }
    std::optional<Volume> volumeOfPath(const std::string&) noexcept override { return {}; }
    std::vector<OpticalDrive> list() noexcept override { return {}; }
};

// Each answer is the right one or nothing.
const Scenario filesAndPaths("files and paths", NeverThrows, [] {
    const NoDiscs noDiscs;
    static std::string root, take, alias, url;
    static std::vector<std::string> endings;
    using Texts = std::array<std::optional<std::string>, 3>;
    const Texts expected = unfailing([] {
        root = std::filesystem::canonical(folder().path) / "a folder with a long name";
        std::filesystem::remove_all(root);
        putText(root + "/real/take number one.wav", "x");
        std::filesystem::create_directory_symlink("real", root + "/link");
        putText(root + "/kit.desktop", "[Desktop Entry]\nType=Link\nURL=file://" + root + "/link");
        take = root + "/link/take number one";
        alias = root + "/kit.desktop/none";
        url = "file://" + root;
        endings = {"aif", "wav"};
        return Texts{take + ".wav", root + "/real/none", "One more take.wav"};
    });
    const Texts found{resolveFile(take, endings), pathByResolvingSymlinksAndAliasesInPath(alias),
                      createUniqueFile(root, "One more take", "wav")};
    const std::string parent = stringByDeletingNumberOfLastPathComponents(take, 2);
    const bool isMade = makeSureDirectoryExistsAtPath(alias);
    const auto names = directoryContentsAtPath(root, "wav");
    const std::vector<std::string> places = pluginSearchPaths("Kits of a studio");
    const bool isElsewhere = isInTrash(url) || isPathOnCDDVD(root) || isMade;
    bool isSound = !isElsewhere && (parent == root || parent.empty());
    for (std::size_t text = 0; text < found.size(); ++text)
        isSound &= !found[text] || found[text] == expected[text];
    return oneOf(isSound && found == expected && parent == root && names && names->size() == 1 &&
                     places.size() > 1,
                 isSound);
});

const Scenario valuesAndExceptions("values, exceptions, localized strings", MayThrow, [] {
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
});

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

const Scenario sharedObjects("objects, singletons, shared values", NeverThrows, [] {
    bool isSound = true, isWhole = true;
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
});

const Scenario backtraces("backtraces, crash text", NeverThrows, [] {
    VLBacktracingException::install();
    VLSetCrashReporterInfo(nullptr);
    const auto* const info = unfailing([] { return VLStringCreateWithCString("Song"); });
    VLSetCrashReporterInfo(info);
    const bool isSet = ___crashreporter_info__.load() != nullptr;
    VLSetCrashReporterInfo(nullptr);
    VLStringRelease(info);
    bool isSound = false, isWhole = false;
    const std::string log = written([&] {
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
});

const Scenario exceptionReport("exception report", NeverThrows, [] {
    struct NoNames final : Symboliser {
        std::string symbolise(std::span<const std::uintptr_t>) noexcept override { return {}; }
    } noNames;
    const SilentPresenter presenter;
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
    return oneOf(presenter.isAsked && text.find("****\n\nName: reason\n") != text.npos &&
                     text.find("0x10") != text.npos,
                 false);
});

const Scenario preferencesRead("preferences, read", NeverThrows, [] {
    storePreferences(kStored);
    const PropertyValue number = Preferences::current().value("Number");
    const PropertyValue other = Preferences::current().value("Other\xFF");
    const Unfailing now;
    const bool isKept = storedPreferences() == kStored &&
                        !Preferences::current().takeDamageReport() && other.isNull();
    return oneOf(isKept && number.asInteger() == 7, isKept && number.isNull());
});

const Scenario preferencesWritten("preferences, written", NeverThrows, [] {
    storePreferences(kStored);
    Preferences& preferences = Preferences::current();
    const bool isSet = preferences.setValue("Number", 8);
    const std::error_code error = preferences.synchronise();
    const std::error_code reloadError = preferences.reload();
    const Unfailing now;
    const bool isNew = storedPreferences() == "{\n    \"Kept\": 1,\n    \"Number\": 8\n}\n";
    return oneOf(isSet && !error && !reloadError && isNew,
                 isSet && !error ? isNew : storedPreferences() == kStored);
});

const Scenario preferencesDamaged("preferences, damaged", NeverThrows, [] {
    storePreferences("{ damaged");
    const std::error_code error = Preferences::current().reload();
    const auto damage = Preferences::current().takeDamageReport();
    const Unfailing now;
    const bool isKept =
        damage && !damage->keptAs.empty() && std::remove(damage->keptAs.c_str()) == 0;
    return oneOf(!error && isKept, error || isKept);
});

// --------------------------------------------------------------------------------- diagnostics

const Scenario logLines("log", AllocatesNothing, [] {
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
});

// Longer than what a line has room for without allocating: then its end may be missing.
const Scenario longLogLine("log, long line", NeverThrows, [] {
    const std::string text = unfailing([] { return std::string(100'000, 'x'); });
    const std::string line = written([&] { QKLogCString(3, false, "tag", "%s", text.c_str()); });
    // The C library needs memory for so many digits, and leaves its own error behind.
    const std::string digits = written([] {
        errno = ENOSPC;
        QKLogCString(3, false, "tag", std::string("%.100000f %m").c_str(), 1.5);
    });
    const Unfailing now;
    const std::string mark(kCutMark);
    const bool isCut = line == text.substr(0, 1024 - mark.size()) + mark + "\n";
    const bool areDigits = digits.starts_with("1.50000");
    return oneOf(line == text + "\n" && areDigits && digits.size() > 100'000,
                 (isCut || line == text + "\n") &&
                     (areDigits || digits == "%.100000f No space left on device\n"));
});

const Scenario assertion("assertion", AllocatesNothing, [] {
    const SilentPresenter presenter;
    std::int32_t counter = 3;
    int answer = -1;
    const std::string text = written([&] { answer = dbgASSERT(0, "a < b", "file.cpp", &counter); });
    return oneOf(answer == 0 && counter == 2 && presenter.isAsked &&
                     text.ends_with("ASSERT(a < b) in file.cpp failed.\n"),
                 false);
});

const Scenario alertThatNobodySees("alert that nobody sees", NeverThrows, [] {
    Alert alert;
    alert.message = "message";
    alert.timeout = milliseconds(1);
    ::setsid();  // no terminal
    return oneOf(presentAlert(alert) == AlertAnswer::TimedOut, false);
});

// ---------------------------------------------------------------------------- timers and lists

Answer useRunLoop() {
    Ticks ticks;
    RunLoop* loop = RunLoop::current();
    if (loop == nullptr) return Answer::Neutral;
    const auto timer = loop->schedule({.interval = Nanoseconds(1),
                                       .target = &ticks,
                                       .action = action<&Ticks::countOne<RunLoopTimer>>()});
    if (timer == nullptr) return Answer::Neutral;
    while (timer->isValid())
        loop->runDue();
    return oneOf(ticks.count == 1, false);
}

const Scenario runLoop("run loop", NeverThrows, useRunLoop);

// Which goes with its thread, as the count of blocks tells.
const Scenario runLoopOfAnotherThread("run loop of another thread", NeverThrows, [] {
    Answer answer = Answer::Wrong;
    std::optional<Unfailing> now(std::in_place);
    std::thread thread([&] {
        now.reset();
        answer = useRunLoop();
        now.emplace();
    });
    thread.join();
    return answer;
});

const Scenario timers("nano timer, timer, polling run loop", MayThrow, [] {
    const std::unique_ptr<QKNanoTimer> nanoTimer = QKNanoTimer::timer();
    if (nanoTimer == nullptr) return Answer::Neutral;
    nanoTimer->start();
    nanoTimer->stop();
    const bool isDescribed = !nanoTimer->description().empty();
    PollRunLoop loop;
    RunLoop::setCurrent(&loop);
    Ticks ticks;
    QkTimer timer(1e-9, &ticks, action<&Ticks::countOne<QkTimer>>(), nullptr, false);
    timer.start();
    const bool isStarted = timer.isValid();
    const bool hasDescriptor = loop.descriptor() >= 0;
    const bool isStopped = loop.runFor(milliseconds(isStarted ? 1 : 0));
    RunLoop::setCurrent(nullptr);
    return oneOf(isDescribed && isStarted && hasDescriptor && !isStopped && ticks.count == 1,
                 isDescribed && ticks.count == (isStarted ? 1 : 0));
});

const Scenario callbackList("callback list", NeverThrows, [] {
    static int calls;
    calls = 0;
    const auto count = [](void*, std::uint32_t, void*) { ++calls; };
    CAddRemoveIterateList list;
    int first = 0, second = 0;
    const int added = (list.Add(&first, count) ? 1 : 0) + (list.Add(&second, count) ? 1 : 0);
    list.Iterate(0, nullptr);
    const bool isCalled = calls == added;
    const int removed = list.Remove(&first) && added == 2 ? 1 : 0;
    list.Iterate(0, nullptr);
    return oneOf(isCalled && calls == 3 && removed == 1, isCalled);
});

// ------------------------------------------------------------------------------ user interface

const Scenario meters("level meters", MayThrow, [] {
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
    testing::Shown<DfStereoLevelMeterView> host(Rect{{}, {32, 200}});
    host.view.setToolTips("left", "right");
    host.view.setLevelL(0.5F, 1.1F);
    loop.advance(0.1);
    const bool isDrawn = !host.display().empty();
    host.click({20, 190});
    loop.advance(10);
    return oneOf(isDrawn && !loop.nextDeadline(), false);
});

const Scenario controlsAndTheirPicture("controls, picture of a window", MayThrow, [] {
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
});

// ----------------------------------------------------------------------------- progress, colour

double shownProgress = 0.0;

const Scenario progress("progress", NeverThrows, [] {
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
});

const Scenario environmentAndMachine("environment, hardware", NeverThrows, [] {
    const NoDiscs noDiscs;
    static const VLString *place = nullptr, *image = nullptr, *type = nullptr;
    if (place == nullptr) {
        const Unfailing now;
        putText(folder() / "Kit.bundle/knob of a kit.png", "x");
        place = VLStringCreateWithCString((folder() / "Kit.bundle").c_str());
        image = VLStringCreateWithCString("knob of a kit");
        type = VLStringCreateWithCString("png");
    }
    QKBundle* const bundle = QKCreateBundleAtPath(place);
    const std::array texts{QKOSVersion(), QKApplicationVersion(), QKApplicationName(),
                           VLHardwareCreateReport(), QKBundlePathOfResource(bundle, image, type)};
    QKReleaseBundle(bundle);
    bool isSound = true, isWhole = true;
    for (const VLString* text : texts) {
        isSound &= text == nullptr || VLStringLength(text) > 0;
        isWhole &= text != nullptr;
        VLStringRelease(text);
    }
    isSound &= QKCreateFrameworkBundleFromName(image) == nullptr && !isRunningAsProApp();
    isWhole &= VLHardwareCpuCount() > 0 && VLHardwarePhysicalRAM64() > 0;
    VLHardwareSystemHasDVDDrive();
    const Unfailing now;
    QKSingleton::releaseAllSingletons();
    return oneOf(isSound && isWhole, isSound);
});

const Scenario colors("colours", NeverThrows, [] {
    const VLString* const name = unfailing([] {
        putText(folder() / "copy.icc", {reinterpret_cast<const char*>(kGenericRgbProfile.data()),
                                        kGenericRgbProfile.size()});
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
});

// ------------------------------------------------------------------------- what never allocates

const Scenario processing("sample data, kernels, times", AllocatesNothing, [] {
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
    for (KernelFamily* family : KernelFamily::all())
        family->useBest();
    const bool isRight = QKCRC32(0, "123456789", 9) == 0xCBF43926U &&
                         utf8_check("a\xC3\xA9") == 1 && CDotAPI::MenuText(99) == nullptr &&
                         context.m_tempo == 120000 &&
                         Clocks::current().monotonic().errorNumber() == 0 &&
                         Process::current().processId() == ::getpid() &&
                         environmentVariable("no such variable") == nullptr &&
                         LocalTime::current().civilTime({1'700'000'000, 0});
    return oneOf(isRight, false);
});

TEST(FailingMemory, MakesNothingCrashLeakOrAnswerWrongly) {
    SKIP_WITHOUT_REAL_ZONE();
    if (std::filesystem::exists("/dev/shm")) setEnvironment("TMPDIR", "/dev/shm");
    // No user's preferences, no display, plain log lines on standard error.
    for (const auto& [name, value] : {std::pair("XDG_CONFIG_HOME", folder().path.c_str()),
                                      {"CFLOG_FORCE_STDERR", "1"},
                                      {"VELTRA_TRACE_WITHOUT_BANNER", ""},
                                      {"DISPLAY", nullptr},
                                      {"WAYLAND_DISPLAY", nullptr}})
        setEnvironment(name, value);
    for (const Scenario* scenario : Scenario::all)
        EXPECT_EQ(testing::faultsUnderEveryFailure(*scenario), "");
}

}  // namespace
}  // namespace veltra

// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/environment.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/string_object_text.h"
#include "veltra/infrastructure/application_object.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/detail/kernel_release.h"
#include "veltra/infrastructure/object.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/bundle_information.h"
#include "veltra/platform/port.h"
#include "veltra/platform/resources.h"

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace veltra {

struct QKBundle {
    std::string folder;
};

namespace {

constexpr std::int32_t kBeforePanther = 6;
constexpr std::int32_t kBeforeTiger = 7;
constexpr std::int32_t kBeforeLeopard = 8;
constexpr std::int32_t kBeforeSnowLeopard = 9;

// The text that `make` returns, as a string object of the caller's; null for nothing.
template <typename Make>
const VLString* created(Make make) noexcept {
    return unlessOutOfMemory(static_cast<const VLString*>(nullptr), [&make] {
        const std::string text = make();
        return createString(std::string_view(text));
    });
}

// A path; an empty one stands for none.
template <typename Find>
const VLString* createdPath(Find find) noexcept {
    return unlessOutOfMemory(static_cast<const VLString*>(nullptr), [&find] {
        const std::string path = find();
        return path.empty() ? nullptr : createString(std::string_view(path));
    });
}

QKBundle* bundleAt(std::string folder) {
    std::error_code error;
    if (folder.find('\0') != std::string::npos || !std::filesystem::is_directory(folder, error))
        return nullptr;
    return std::make_unique<QKBundle>(QKBundle{std::move(folder)}).release();
}

QKBundle* frameworkBundle(const std::string& name) {
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)
        return nullptr;
    for (std::string folder : platformLibraryFolders()) {
        folder.append(1, '/').append(name);
        if (QKBundle* const bundle = bundleAt(std::move(folder))) return bundle;
    }
    return nullptr;
}

}  // namespace

const VLString* QKOSVersion() noexcept {
    return created(systemVersion);
}

const VLString* QKApplicationVersion() noexcept {
    return created(applicationVersion);
}

const VLString* QKApplicationName() noexcept {
    return created(applicationName);
}

bool QKSetApplicationInformation(const char* key, const char* text) noexcept {
    return key != nullptr && text != nullptr && setBundleInformationText(key, text);
}

QKBundle* QKCreateFrameworkBundleFromName(const VLString* name) noexcept {
    return unlessOutOfMemory(static_cast<QKBundle*>(nullptr), [name] {
        const auto text = textOf(name);
        return text ? frameworkBundle(*text) : nullptr;
    });
}

QKBundle* QKCreateBundleAtPath(const VLString* path) noexcept {
    return unlessOutOfMemory(static_cast<QKBundle*>(nullptr), [path] {
        auto text = textOf(path);
        return text ? bundleAt(*std::move(text)) : nullptr;
    });
}

void QKReleaseBundle(QKBundle* bundle) noexcept {
    const std::unique_ptr<QKBundle> owned(bundle);
}

const VLString* QKBundlePath(const QKBundle* bundle) noexcept {
    return bundle != nullptr ? createString(std::string_view(bundle->folder)) : nullptr;
}

const VLString* QKBundlePathOfResource(const QKBundle* bundle, const VLString* name,
                                       const VLString* type) noexcept {
    const auto text = textOf(name);
    const auto ending = textOf(type);
    if (bundle == nullptr || !text || (type != nullptr && !ending)) return nullptr;
    return createdPath(
        [&] { return pathOfResourceIn(bundle->folder, *text, ending.value_or(std::string())); });
}

const VLString* qk_pathOfQKoreBundleImage(const VLString* name) noexcept {
    const auto text = textOf(name);
    if (!text) return nullptr;
    return createdPath([&text] {
        auto paths = pathsOfImageResource(*text);
        return paths.empty() ? std::string() : std::move(paths.front());
    });
}

bool isRunningAsProApp() noexcept {
    const Object* const application = applicationObject();
    const Class* const wanted = Class::named("NSProApplication");
    return application != nullptr && wanted != nullptr &&
           application->classObject().isSubclassOf(*wanted);
}

bool isPantherOrNewer() noexcept {
    return detail::kernelMajorRelease() > kBeforePanther;
}

bool isTigerOrNewer() noexcept {
    return detail::kernelMajorRelease() > kBeforeTiger;
}

bool isLeopardOrNewer() noexcept {
    return detail::kernelMajorRelease() > kBeforeLeopard;
}

bool isSnowLeopardOrNewer() noexcept {
    return detail::kernelMajorRelease() > kBeforeSnowLeopard;
}

}  // namespace veltra

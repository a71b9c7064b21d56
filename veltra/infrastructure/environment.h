// SPDX-License-Identifier: MIT
// What program runs on what system, and the files that come with the framework.
//
// String objects and bundles that are returned belong to the caller, who gives them back with
// VLStringRelease and QKReleaseBundle. In C++, application_facts.h and resources.h have the same as
// std::string.
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdbool.h>

VELTRA_C_BEGIN

// "PRODUCT VERSION (Build BUILD)" of the operating system, for example "Debian GNU/Linux 12 (Build
// 6.1.0-18-amd64)"; "Unknown" when the system does not say. Null when memory is out.
VELTRA_EXPORT const VLString* QKOSVersion(void) VELTRA_NOEXCEPT;

// Version, build number and build mark of the application, for example "2.1(14) C24". What is not
// known is left out (application_facts.h has the rule); without a version the text is "?.??". Null
// when memory is out.
VELTRA_EXPORT const VLString* QKApplicationVersion(void) VELTRA_NOEXCEPT;

// The application's name; without one, the name of the program's file; without that, the empty
// text. Null when memory is out, or when the name of the file is not UTF-8.
VELTRA_EXPORT const VLString* QKApplicationName(void) VELTRA_NOEXCEPT;

// Tells the framework one fact about the application, under one of the keys of
// bundle_information.h. Call it at start; from then on the file Info.json is ignored. Texts are
// UTF-8. Returns false for null and when memory is out; then nothing has changed.
VELTRA_EXPORT bool QKSetApplicationInformation(const char* key, const char* text) VELTRA_NOEXCEPT;

// A bundle: a folder with files that belong together.
typedef struct QKBundle QKBundle;

// The bundle in the folder `name` of the system's library folders, such as /usr/local/lib and
// /usr/lib; the first library folder that has it counts. Null when there is none; when the name is
// empty, has a slash or leads out of the folder; and when memory is out.
VELTRA_EXPORT QKBundle* QKCreateFrameworkBundleFromName(const VLString* name) VELTRA_NOEXCEPT;

// The bundle in any other folder. Null when there is no such folder, and when memory is out.
VELTRA_EXPORT QKBundle* QKCreateBundleAtPath(const VLString* path) VELTRA_NOEXCEPT;

// Does nothing for null.
VELTRA_EXPORT void QKReleaseBundle(QKBundle* bundle) VELTRA_NOEXCEPT;

// The bundle's folder. Null for null, when memory is out, and for a path that is not UTF-8.
VELTRA_EXPORT const VLString* QKBundlePath(const QKBundle* bundle) VELTRA_NOEXCEPT;

// The path of the file "NAME.TYPE" in the bundle; "NAME" when `type` is null or empty. A name may
// lead into folders below, but not out of the bundle. Null when there is no such file, and as
// above.
VELTRA_EXPORT const VLString* QKBundlePathOfResource(const QKBundle* bundle, const VLString* name,
                                                     const VLString* type) VELTRA_NOEXCEPT;

// The picture file of that name among the resources of host and framework: "NAME_pro" before
// "NAME", tiff before png. Null when there is none. qk_loadQKoreBundleImage() of
// veltra/ui/bundle_image.h loads it.
VELTRA_EXPORT const VLString* qk_pathOfQKoreBundleImage(const VLString* name) VELTRA_NOEXCEPT;

// Whether the application object (application_object.h) is of the class named "NSProApplication",
// or of one derived from it. False without such an object or such a class.
VELTRA_EXPORT bool isRunningAsProApp(void) VELTRA_NOEXCEPT;

// Whether the major number of the kernel's release is greater than 6, 7, 8 and 9. The names come
// from the kernels of another system: on Linux 6 all four are false, on Linux 7 only the first is
// true. They do not mean "modern". The number is read at the first call and kept; a release without
// a number counts as 0. A host that needs other answers installs SystemQueries with its own
// KernelRelease before that.
VELTRA_EXPORT bool isPantherOrNewer(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool isTigerOrNewer(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool isLeopardOrNewer(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool isSnowLeopardOrNewer(void) VELTRA_NOEXCEPT;

VELTRA_C_END

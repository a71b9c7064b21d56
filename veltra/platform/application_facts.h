// SPDX-License-Identifier: MIT
// The names and versions of application and system, as a person reads them in an About window or a
// report. QKApplicationName() and its like, which hand out string objects, return the same texts.
//
// All functions throw std::bad_alloc. Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <string>

namespace veltra {

// "CFBundleName" of BundleInformation, else the name of the program's file, else empty.
VELTRA_EXPORT std::string applicationName();

// From "CFBundleShortVersionString" s, "CFBundleVersion" v and "ProductBuildVersion" b of
// BundleInformation: "s(v) b", as "2.1(14) C24"; without b "s(v)"; without v "s" alone, whatever b
// is; "?.??" without s.
VELTRA_EXPORT std::string applicationVersion();

// Product, version and build of the operating system, as "Debian GNU/Linux 12 (Build
// 6.1.0-18-amd64)". "Unknown" when the system does not say: never a half text.
//
// On Linux they are NAME, else ID, else "Linux"; VERSION_ID, else VERSION, else VERSION_CODENAME;
// and BUILD_ID, else IMAGE_VERSION, else the kernel's release, all of /etc/os-release. A
// distribution without versions stands with its build in place of one.
VELTRA_EXPORT std::string systemVersion();

}  // namespace veltra

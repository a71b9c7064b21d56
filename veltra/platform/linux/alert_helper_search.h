// SPDX-License-Identifier: MIT
// Where the alert helper lies.
#pragma once

#include <string>

namespace veltra {

// The helper's path, searched from the folder of the library (in a static build: the program) that
// this code belongs to, then from the program's own: there, in the libexec folder of an
// installation, in the folders of a build tree. Empty when there is none. May throw std::bad_alloc.
std::string findAlertHelper();

// The helper's path, searched from the folder of the file `origin`. A file that others could have
// put there is passed over: it must belong to the superuser, to the effective user or to the owner
// of `origin`, and must not be writable by everyone.
std::string findAlertHelperNear(const char* origin);

}  // namespace veltra

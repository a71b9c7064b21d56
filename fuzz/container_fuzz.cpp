// SPDX-License-Identifier: MIT
// Any bytes as an audio file: what it is said to lack is exactly what it lacks.
#include "examples/console/container_check.h"
#include "fuzz/require.h"

#include <sstream>

namespace {

veltra::console::ContainerCheck check(const std::string& bytes) {
    std::istringstream file(bytes);
    return veltra::console::checkContainer(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto found = check(bytes);
    if (found.missingBytes == 0 || found.missingBytes > 65536) return 0;
    require(!found.openLength, "what has no length lacks nothing");
    const auto whole = static_cast<std::size_t>(found.missingBytes);
    require(check(bytes + std::string(whole - 1, '\0')).missingBytes > 0, "one byte less is short");
    const auto mended = check(bytes + std::string(whole, '\0'));
    // An AU file says where its samples begin, which may be behind its end.
    require(mended.missingBytes == 0 || bytes.compare(0, 4, ".snd") == 0, "all of it is enough");
    return 0;
}

// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSDictionary_Extensions.h"

#include "veltra/base/json_text.h"
#include "veltra/base/out_of_memory.h"

namespace veltra {

std::optional<PropertyValue::Dictionary> initWithData(
    std::span<const std::uint8_t> bytes) noexcept {
    return unlessOutOfMemory(std::nullopt, [bytes] {
        return dictionaryFromJson({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    });
}

}  // namespace veltra

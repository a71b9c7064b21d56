// SPDX-License-Identifier: MIT
// Any text as a file of preferences or of information about a bundle, which is nothing or a
// dictionary that is written and read again as it was; and that dictionary as the archive of a
// control, which takes from it what it can.
#include "fuzz/require.h"
#include "veltra/base/json_text.h"
#include "veltra/controls/number_editor/number_editor_control.h"
#include "veltra/controls/sliders/log_slider_cell.h"
#include "veltra/ui/button.h"
#include "veltra/ui/testing/archive_laws.h"

using namespace veltra;
using veltra::testing::archiveOf;

namespace {

template <typename Encodable>
void takeFrom(const PropertyValue& archive) {
    Encodable taken;
    taken.decodeWithCoder(KeyedCoder(archive));
    const PropertyValue first = archiveOf(taken);
    Encodable again;
    again.decodeWithCoder(KeyedCoder(first));
    require(archiveOf(again) == first, "what was taken is kept");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto dictionary = dictionaryFromJson(text);
    require(dictionaryFromJson(text, JsonNumbers::AsDigits).has_value() == dictionary.has_value(),
            "both kinds of numbers read the same files");
    if (!dictionary) return 0;
    const std::string written = jsonFromDictionary(*dictionary);
    const auto again = dictionaryFromJson(written);
    require(again && jsonFromDictionary(*again) == written, "comes back as it was");
    takeFrom<DfNumberEditorControl>(*dictionary);
    takeFrom<QkLogSliderCell>(*dictionary);
    takeFrom<ButtonCell>(*dictionary);
    return 0;
}

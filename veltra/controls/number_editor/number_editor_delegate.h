// SPDX-License-Identifier: MIT
// Who tells a number editor how its value and its groups of digits belong together. Limits, carries
// from group to group and checks live here: each change by the user goes from the groups to the
// value and back.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace veltra {

class DfNumberEditorControl;
class QkNumberEditorCell;

// Each of these may delete the control. Nothing, as here, means that the delegate does not answer:
// the first group then is the value.
class VELTRA_EXPORT DfNumberEditorControlDelegate {
public:
    virtual ~DfNumberEditorControlDelegate();

    // The numbers of the groups, from the left. Groups that are missing keep theirs; what is too
    // much is passed over.
    virtual std::optional<std::vector<std::int32_t>> calculateCellValuesFromValue(
        DfNumberEditorControl& /*control*/, std::int64_t /*value*/) {
        return std::nullopt;
    }
    // The value for one number of each group.
    virtual std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl& /*control*/, std::span<const std::int32_t> /*cellValues*/) {
        return std::nullopt;
    }
    // The user has changed a group; the control's value is still the one before.
    virtual void valueOfCellChanged(DfNumberEditorControl& /*control*/,
                                    QkNumberEditorCell& /*cell*/) {}
};

}  // namespace veltra

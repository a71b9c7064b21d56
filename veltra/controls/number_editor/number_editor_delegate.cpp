// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_delegate.h"

namespace veltra {

DfNumberEditorControlDelegate::~DfNumberEditorControlDelegate() = default;

}  // namespace veltra

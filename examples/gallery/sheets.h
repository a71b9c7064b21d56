// SPDX-License-Identifier: MIT
// What the gallery shows: a sheet for each family of controls, on it every control in every state.
#pragma once

#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veltra::gallery {

// One control in one state.
struct Specimen {
    std::string caption;
    Size size;
    std::function<std::unique_ptr<View>()> make;
    // Brings it into its state as a user would: see user.h. The view fills the window. May be
    // empty.
    std::function<void(Window&)> drive;
    // Room around it that belongs to the picture: for tips, halos and focus rings.
    float margin = 8.0F;
};

struct Sheet {
    std::string name;   // of the file: gallery-NAME-dark.png
    std::string title;  // as it is read
    std::vector<std::vector<Specimen>> rows;
};

std::vector<Sheet> sheets();

Sheet meterSheet();
Sheet sliderSheet();
Sheet numberEditorSheet();
Sheet keyboardSheet();
Sheet buttonSheet();
Sheet stepSheet();

}  // namespace veltra::gallery

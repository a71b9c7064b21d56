// SPDX-License-Identifier: MIT
// What a user does with a window, for pictures of states that last only while somebody does it.
// Points are in the window's coordinates: the origin is its lower left corner.
#pragma once

#include "veltra/ui/event.h"
#include "veltra/ui/window.h"

#include <string_view>

namespace veltra::gallery {

void hover(Window& window, Point point);
void press(Window& window, Point point, std::int32_t clickCount = 1);
void drag(Window& window, Point point);  // from where the pointer is
void release(Window& window, Point point);
void wheel(Window& window, Point point, float notches);
void type(Window& window, std::u16string_view characters);  // key by key
// Tab, from outside of the window to the first control in it.
void focus(Window& window);

}  // namespace veltra::gallery

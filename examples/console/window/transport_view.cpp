// SPDX-License-Identifier: MIT
#include "transport_view.h"

#include "../text.h"

#include <cmath>

namespace veltra::console {

TransportView::TransportView(const Rect& frame)
    : View(frame),
      m_place(addSubview(std::make_unique<Label>(Rect{{0.0F, 0.0F}, {160.0F, kSize.height}},
                                                 Font{{}, 26.0F, FontWeight::Medium, true},
                                                 SystemColor::Label))),
      m_time(addSubview(std::make_unique<Label>(
          Rect{{166.0F, 0.0F}, {kSize.width - 166.0F, kSize.height}},
          Font{{}, 15.0F, FontWeight::Regular, true}, SystemColor::SecondaryLabel))) {
    m_place.setFullText("Bar, beat and tick at 120 beats a minute");
    m_time.setFullText("Time since the transport started");
    update({}, 0.0);
}

void TransportView::update(const BarBeatTick& place, double seconds) {
    m_place.setText(toText(place));
    const auto tenths = static_cast<long long>(std::floor(seconds * 10.0));
    m_time.setText(formatted("%lld:%02lld.%lld", tenths / 600, tenths / 10 % 60, tenths % 10));
}

}  // namespace veltra::console

// SPDX-License-Identifier: MIT
// The settings of QkSliderCell as a whole: archived, copied to another cell, put back.
#include "veltra/controls/sliders/slider_cell.h"
#include "veltra/ui/keyed_coder.h"

#include <algorithm>
#include <utility>

namespace veltra {

namespace {

constexpr char kKnobImage[] = "SLIDER_KNOB_IMAGE";
constexpr char kTrackImage[] = "SLIDER_TRACK_IMAGE";
constexpr char kInsets[] = "SLIDER_INSETS";
constexpr char kFineStep[] = "SLIDER_FINE_STEP";
constexpr char kDefault[] = "SLIDER_DEFAULT";
constexpr char kAltClick[] = "SLIDER_ALT_CLICK_SETS_DEFAULT";
constexpr char kLabelClick[] = "SLIDER_LABEL_CLICK_SETS_LIMITS";
constexpr char kMainWindow[] = "SLIDER_DISABLED_WHEN_NOT_MAIN";
constexpr char kTickColor[] = "SLIDER_TICK_COLOR";
constexpr char kTickDisabledColor[] = "SLIDER_TICK_DISABLED_COLOR";
constexpr char kDisabledAlpha[] = "SLIDER_KNOB_DISABLED_ALPHA";
constexpr char kMagneticMarks[] = "SLIDER_MAGNETIC_MARKS";
constexpr char kMagneticDelta[] = "SLIDER_MAGNETIC_DELTA";
constexpr char kMarks[] = "SLIDER_MARKS";
constexpr char kTexts[] = "SLIDER_TEXTS";

std::int32_t integer(const KeyedCoder& coder, const char* key, std::int32_t fallback) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(coder.decodeInt64(key, fallback), INT32_MIN, INT32_MAX));
}

SliderMark markOf(const PropertyValue& value) {
    const PropertyValue::Array& parts = value.asArray();
    if (parts.size() != 3) return {};
    constexpr double kLast = static_cast<double>(SliderMark::Kind::Reference);
    const double kind = parts[1].asReal();  // NaN is none
    return {parts[0].asReal(),
            static_cast<SliderMark::Kind>(kind > 0.0 ? std::min(kind, kLast) : 0.0),
            std::string(parts[2].asString())};
}

}  // namespace

void QkSliderCell::encodeOwn(KeyedCoder& coder) const {
    coder.encodeInt64(m_knobImageID, kKnobImage);
    coder.encodeInt64(m_trackImageID, kTrackImage);
    PropertyValue::Array insets;
    for (const float length :
         {m_minSideInset, m_maxSideInset, m_minSideSliderInset, m_maxSideSliderInset,
          m_thumbClickAreaLeftInset, m_thumbClickAreaRightInset, m_tickMarkY, m_tickMarkHeight,
          m_trackYInset, m_labelsYInset, m_knobRectInset.x, m_knobRectInset.y})
        insets.emplace_back(static_cast<double>(length));
    coder.encodeValue(insets, kInsets);
    coder.encodeDouble(m_fineValueControlStep, kFineStep);
    coder.encodeDouble(m_defaultValue, kDefault);
    coder.encodeBool(m_altClickSetsDefaultValue, kAltClick);
    coder.encodeBool(m_labelClickSetsMinMaxValue, kLabelClick);
    coder.encodeBool(m_showsDisabledWhenNotMainWindow, kMainWindow);
    coder.encodeColor(m_tickMarkColor, kTickColor);
    coder.encodeColor(m_tickMarkDisabledColor, kTickDisabledColor);
    coder.encodeDouble(static_cast<double>(m_KnobDisabledAlpha), kDisabledAlpha);
    PropertyValue::Array magnetic(m_magneticMarks.begin(), m_magneticMarks.end());
    coder.encodeValue(std::move(magnetic), kMagneticMarks);
    coder.encodeDouble(m_magneticMarkDelta, kMagneticDelta);
    PropertyValue::Array marks;
    for (const SliderMark& mark : m_marks)
        marks.emplace_back(
            PropertyValue::Array{mark.value, static_cast<std::int64_t>(mark.kind), mark.label});
    coder.encodeValue(std::move(marks), kMarks);
    coder.encodeValue(PropertyValue::Array{m_unit, m_minimumLabel, m_maximumLabel}, kTexts);
}

void QkSliderCell::decodeOwn(const KeyedCoder& coder) {
    m_knobImageID = integer(coder, kKnobImage, m_knobImageID);
    m_trackImageID = integer(coder, kTrackImage, m_trackImageID);
    float* const lengths[] = {&m_minSideInset,
                              &m_maxSideInset,
                              &m_minSideSliderInset,
                              &m_maxSideSliderInset,
                              &m_thumbClickAreaLeftInset,
                              &m_thumbClickAreaRightInset,
                              &m_tickMarkY,
                              &m_tickMarkHeight,
                              &m_trackYInset,
                              &m_labelsYInset,
                              &m_knobRectInset.x,
                              &m_knobRectInset.y};
    const PropertyValue insets = coder.decodeValue(kInsets);
    if (insets.asArray().size() == std::size(lengths)) {
        for (std::size_t i = 0; i < std::size(lengths); ++i) {
            const auto length = static_cast<float>(insets.asArray()[i].asReal());
            *lengths[i] = length > 0.0F ? length : 0.0F;
        }
    }
    setFineValueControlStep(coder.decodeDouble(kFineStep, m_fineValueControlStep));
    setDefaultValue(coder.decodeDouble(kDefault, m_defaultValue));
    m_altClickSetsDefaultValue = coder.decodeBool(kAltClick, m_altClickSetsDefaultValue);
    m_labelClickSetsMinMaxValue = coder.decodeBool(kLabelClick, m_labelClickSetsMinMaxValue);
    m_showsDisabledWhenNotMainWindow =
        coder.decodeBool(kMainWindow, m_showsDisabledWhenNotMainWindow);
    m_tickMarkColor = coder.decodeColor(kTickColor, m_tickMarkColor);
    m_tickMarkDisabledColor = coder.decodeColor(kTickDisabledColor, m_tickMarkDisabledColor);
    const double alpha =
        coder.decodeDouble(kDisabledAlpha, static_cast<double>(m_KnobDisabledAlpha));
    setKnobDisabledAlpha(static_cast<float>(alpha));
    if (coder.contains(kMagneticMarks)) {
        resetMagneticMarks();
        const PropertyValue marks = coder.decodeValue(kMagneticMarks);
        for (const PropertyValue& mark : marks.asArray())
            m_magneticMarks.push_back(mark.asReal());
    }
    m_magneticMarkDelta = coder.decodeDouble(kMagneticDelta, m_magneticMarkDelta);
    if (coder.contains(kMarks)) {
        m_marks.clear();
        const PropertyValue marks = coder.decodeValue(kMarks);
        for (const PropertyValue& mark : marks.asArray())
            m_marks.push_back(markOf(mark));
    }
    const PropertyValue texts = coder.decodeValue(kTexts);
    if (texts.asArray().size() == 3) {
        m_unit = texts.asArray()[0].asString();
        m_minimumLabel = texts.asArray()[1].asString();
        m_maximumLabel = texts.asArray()[2].asString();
    }
    relayOut();
}

void QkSliderCell::encodeWithCoder(KeyedCoder& coder) const {
    QkLogSliderCell::encodeWithCoder(coder);
    encodeOwn(coder);
}

// The value is one that was kept before: no mark captures it now.
void QkSliderCell::decodeWithCoder(const KeyedCoder& coder) {
    std::vector<double> marks = std::exchange(m_magneticMarks, {});
    const WeakPointer<Cell> self(this);
    QkLogSliderCell::decodeWithCoder(coder);
    if (!self) return;
    m_magneticMarks = std::move(marks);
    decodeOwn(coder);
}

void QkSliderCell::myInit() {
    KeyedCoder fresh;
    QkSliderCell().encodeOwn(fresh);
    m_tickMarkColor.reset();
    m_tickMarkDisabledColor.reset();
    decodeOwn(fresh);
    m_formatter = nullptr;
    setMovableToolTip(nullptr, 0);
    m_sendActionMask = QkSliderCell().m_sendActionMask;
}

void QkSliderCell::initWithPropertiesOfSliderCell(const SliderCell& other) {
    if (&other == this) return;
    KeyedCoder properties;
    other.encodeWithCoder(properties);
    setVertical(std::nullopt);  // which no archive says
    const WeakPointer<Cell> self(this);
    decodeWithCoder(properties);
    if (!self) return;
    setTarget(other.target());
    setAction(other.action());
    const auto* const own = dynamic_cast<const QkSliderCell*>(&other);
    sendActionOn(own != nullptr ? own->m_sendActionMask : other.sendActionMask());
    if (own == nullptr) return;
    m_formatter = own->m_formatter;
    const bool isItself = own->m_toolTipObject.get() == own;
    setMovableToolTip(isItself ? this : own->m_toolTipObject.get(), own->m_toolTipTag);
}

QkSliderCell& QkSliderCell::replacedCellInSlider(Slider& slider) {
    auto owned = std::make_unique<QkSliderCell>();
    QkSliderCell& cell = *owned;
    cell.initWithPropertiesOfSliderCell(slider.sliderCell());
    slider.setCell(std::move(owned));
    return cell;
}

}  // namespace veltra

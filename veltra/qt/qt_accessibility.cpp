// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_accessibility.h"

#include "veltra/platform/localization.h"
#include "veltra/qt/qt_surface.h"
#include "veltra/qt/qt_types.h"
#include "veltra/qt/qt_ui_port.h"

#include <QAccessibleWidget>
#include <QWidget>
#include <algorithm>

namespace veltra {

namespace {

// The topmost elements of a window.
std::vector<AccessibilityElement*> topElements(const Window& window) {
    View* const content = window.contentView();
    if (content == nullptr) return {};
    if (content->accessibilityRole() != AccessibilityRole::Ignored) return {content};
    return shownAccessibilityChildren(*content);
}

QAccessible::Role roleOf(AccessibilityRole role) {
    switch (role) {
        case AccessibilityRole::Ignored:
            break;
        case AccessibilityRole::Group:
            return QAccessible::Grouping;
        case AccessibilityRole::Slider:
            return QAccessible::Slider;
        case AccessibilityRole::LevelIndicator:
            return QAccessible::ProgressBar;
        case AccessibilityRole::Button:
        case AccessibilityRole::ToggleButton:
            return QAccessible::Button;
        case AccessibilityRole::StaticText:
            return QAccessible::StaticText;
    }
    return QAccessible::NoRole;
}

QString nameOf(AccessibilityAction action) {
    switch (action) {
        case AccessibilityAction::Increment:
            return QAccessibleActionInterface::increaseAction();
        case AccessibilityAction::Decrement:
            return QAccessibleActionInterface::decreaseAction();
        case AccessibilityAction::Press:
            break;
    }
    return QAccessibleActionInterface::pressAction();
}

// Qt has no place for the orientation and for the value in words.
QString descriptionOf(const AccessibilityElement& element) {
    QStringList parts;
    if (element.accessibilityOrientation() == AccessibilityOrientation::Horizontal) {
        parts << toQt(localizedString("horizontal"));
    } else if (element.accessibilityOrientation() == AccessibilityOrientation::Vertical) {
        parts << toQt(localizedString("vertical"));
    }
    const QString value = toQt(element.accessibilityValueText());
    if (!value.isEmpty()) parts << value;
    const QString help = toQt(element.accessibilityHelp());
    if (!help.isEmpty()) parts << help;
    return parts.join(QStringLiteral(", "));
}

QAccessibleInterface* hostOf(const QtSurface& surface) {
    return QAccessible::queryAccessibleInterface(surface.widget());
}

int indexIn(QtAccessibility& all, const std::vector<AccessibilityElement*>& elements,
            const QAccessibleInterface* child) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (all.interfaceOf(*elements[i]) == child) return static_cast<int>(i);
    }
    return -1;
}

AccessibilityElement* elementAt(const std::vector<AccessibilityElement*>& elements, int index) {
    const bool isIn = index >= 0 && static_cast<std::size_t>(index) < elements.size();
    return isIn ? elements[static_cast<std::size_t>(index)] : nullptr;
}

Point inWindow(const QtSurface& surface, int x, int y) {
    const QPoint point = surface.widget()->mapFromGlobal(QPoint(x, y));
    return {static_cast<float>(point.x()),
            surface.window().contentSize().height - static_cast<float>(point.y())};
}

}  // namespace

class QtAccessibility::Element final : public QAccessibleInterface,
                                       public QAccessibleValueInterface,
                                       public QAccessibleActionInterface {
public:
    Element(QtAccessibility& all, AccessibilityElement& element)
        : m_all(all), m_element(&element), m_key(&element) {}
    ~Element() override { m_all.interfaceDied(*this, *m_key); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    AccessibilityElement* element() const noexcept { return m_element.get(); }
    QAccessible::Id id = 0;

    bool isValid() const override { return surface() != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        const QtSurface* const place = surface();
        return place != nullptr ? place->widget()->window()->windowHandle() : nullptr;
    }

    QAccessibleInterface* parent() const override {
        if (!m_element) return nullptr;
        if (auto* const above = shownAccessibilityParent(*m_element.get())) {
            return m_all.interfaceOf(*above);
        }
        const QtSurface* const place = surface();
        return place != nullptr ? hostOf(*place) : nullptr;
    }
    int childCount() const override { return static_cast<int>(children().size()); }
    QAccessibleInterface* child(int index) const override {
        return m_all.interfaceFor(elementAt(children(), index));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return indexIn(m_all, children(), child);
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const QtSurface* const place = surface();
        if (place == nullptr) return nullptr;
        auto* const found = accessibilityElementAt(*m_element.get(), inWindow(*place, x, y));
        return found != m_element.get() ? m_all.interfaceFor(found) : nullptr;
    }

    QString text(QAccessible::Text which) const override {
        if (!m_element) return {};
        switch (which) {
            case QAccessible::Name:
                return toQt(m_element->accessibilityName());
            case QAccessible::Description:
                return descriptionOf(*m_element.get());
            case QAccessible::Value: {
                const QString words = toQt(m_element->accessibilityValueText());
                return words.isEmpty() && hasNumber() ? currentValue().toString() : words;
            }
            case QAccessible::Help:
                return toQt(m_element->accessibilityHelp());
            default:
                return {};
        }
    }
    void setText(QAccessible::Text /*which*/, const QString& /*text*/) override {}

    QRect rect() const override {
        const QtSurface* const place = surface();
        if (place == nullptr) return {};
        const Rect frame = accessibilityFrameInWindow(*m_element.get());
        const float top = place->window().contentSize().height - frame.maxY();
        const QRect inWidget = around(Rect{{frame.minX(), top}, frame.size});
        return {place->widget()->mapToGlobal(inWidget.topLeft()), inWidget.size()};
    }
    QAccessible::Role role() const override {
        return m_element ? roleOf(m_element->accessibilityRole()) : QAccessible::NoRole;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        const QtSurface* const place = surface();
        state.invalid = place == nullptr;
        if (place == nullptr) return state;
        state.offscreen = accessibilityVisibleFrameInWindow(*m_element.get()).isEmpty();
        state.invisible = state.offscreen || !place->widget()->isVisible();
        state.disabled = !m_element->accessibilityIsEnabled();
        state.focusable = m_element->accessibilityIsFocusable();
        state.focused = m_element->accessibilityIsFocused();
        state.checkable = m_element->accessibilityRole() == AccessibilityRole::ToggleButton;
        state.checked = m_element->accessibilityIsChecked();
        return state;
    }

    // Qt uses the answer as that very base: the casts must be static.
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface && hasNumber()) {
            return static_cast<QAccessibleValueInterface*>(this);
        }
        if (type == QAccessible::ActionInterface && !actionNames().isEmpty()) {
            return static_cast<QAccessibleActionInterface*>(this);
        }
        return nullptr;
    }

    QVariant currentValue() const override { return number().value; }
    // Readers may try it on a meter too; the element refuses.
    void setCurrentValue(const QVariant& value) override {
        const Use use;
        if (m_element) m_element->setAccessibilityNumber(value.toDouble());
    }
    QVariant maximumValue() const override { return number().maximum; }
    QVariant minimumValue() const override { return number().minimum; }
    QVariant minimumStepSize() const override { return number().step; }

    QStringList actionNames() const override {
        QStringList names;
        if (!m_element) return names;
        for (const AccessibilityAction action : m_element->accessibilityActions())
            names << nameOf(action);
        return names;
    }
    void doAction(const QString& name) override {
        const Use use;
        if (!m_element) return;
        for (const AccessibilityAction action : m_element->accessibilityActions()) {
            if (nameOf(action) != name) continue;
            m_element->performAccessibilityAction(action);  // may delete the element
            return;
        }
    }
    QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    std::vector<AccessibilityElement*> children() const {
        return m_element ? shownAccessibilityChildren(*m_element.get())
                         : std::vector<AccessibilityElement*>();
    }
    bool hasNumber() const { return m_element && m_element->accessibilityNumber().has_value(); }
    AccessibilityNumber number() const {
        return m_element ? m_element->accessibilityNumber().value_or(AccessibilityNumber())
                         : AccessibilityNumber();
    }

    QtSurface* surface() const { return m_all.surfaceOf(m_element.get()); }

    QtAccessibility& m_all;
    const WeakPointer<AccessibilityElement> m_element;
    const AccessibilityElement* const m_key;
};

// The widget itself. Widgets that a host puts into it come behind the elements.
class QtAccessibility::Host final : public QAccessibleWidget {
public:
    explicit Host(QWidget& widget)
        : QAccessibleWidget(&widget,
                            widget.isWindow() ? QAccessible::Window : QAccessible::Grouping) {}

    int childCount() const override {
        return static_cast<int>(children().size()) + QAccessibleWidget::childCount();
    }
    QAccessibleInterface* child(int index) const override {
        const auto elements = children();
        if (auto* const element = elementAt(elements, index)) return interfaceOf(*element);
        return QAccessibleWidget::child(index - static_cast<int>(elements.size()));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto elements = children();
        QtUiPort* const port = QtUiPort::installed();
        const int index = port != nullptr ? indexIn(port->accessibility(), elements, child) : -1;
        if (index >= 0) return index;
        const int behind = QAccessibleWidget::indexOfChild(child);
        return behind >= 0 ? behind + static_cast<int>(elements.size()) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        if (auto* const inner = QAccessibleWidget::childAt(x, y)) return inner;
        const QtSurface* const place = surface();
        if (place == nullptr) return nullptr;
        const auto elements = children();
        for (auto at = elements.rbegin(); at != elements.rend(); ++at) {
            if (auto* const found = accessibilityElementAt(**at, inWindow(*place, x, y))) {
                return interfaceOf(*found);
            }
        }
        return nullptr;
    }

private:
    // The widget may outlive the port; without it there are no elements.
    static QAccessibleInterface* interfaceOf(AccessibilityElement& element) {
        return QtUiPort::installed()->accessibility().interfaceOf(element);
    }
    QtSurface* surface() const {
        QtUiPort* const port = QtUiPort::installed();
        return port != nullptr ? port->surfaceOf(object()) : nullptr;
    }
    std::vector<AccessibilityElement*> children() const {
        const QtSurface* const place = surface();
        return place != nullptr ? topElements(place->window())
                                : std::vector<AccessibilityElement*>();
    }
};

QtAccessibility::Use::Use() {
    if (QtUiPort* const port = QtUiPort::installed()) ++port->accessibility().m_uses;
}

QtAccessibility::Use::~Use() {
    QtUiPort* const port = QtUiPort::installed();
    if (port == nullptr) return;
    QtAccessibility& all = port->accessibility();
    if (--all.m_uses > 0 || all.m_retired.empty()) return;
    // The reader has yet to return through the interface.
    all.m_later.start(0);
}

QAccessibleInterface* QtAccessibility::make(const QString& /*className*/, QObject* object) {
    QtUiPort* const port = QtUiPort::installed();
    QtSurface* const surface = port != nullptr ? port->surfaceOf(object) : nullptr;
    return surface != nullptr ? new Host(*surface->widget()) : nullptr;
}

QtAccessibility::QtAccessibility(QtUiPort& port) : m_port(port) {
    QAccessible::installFactory(&QtAccessibility::make);
    m_later.setSingleShot(true);
    QObject::connect(&m_later, &QTimer::timeout, &m_later, [this] { deleteRetired(); });
}

QtAccessibility::~QtAccessibility() {
    QAccessible::removeFactory(&QtAccessibility::make);
    for (const auto& [element, shown] : m_elements)
        m_retired.push_back(shown);
    deleteRetired();
}

QtSurface* QtAccessibility::surfaceOf(const AccessibilityElement* element) const {
    const View* const view = element != nullptr ? element->accessibilityView() : nullptr;
    return view != nullptr ? m_port.surfaceOf(view->window()) : nullptr;
}

QAccessibleInterface* QtAccessibility::interfaceFor(AccessibilityElement* element) {
    return element != nullptr ? interfaceOf(*element) : nullptr;
}

QAccessibleInterface* QtAccessibility::interfaceOf(AccessibilityElement& element) {
    const auto found = m_elements.find(&element);
    if (found != m_elements.end()) {
        if (found->second->element() == &element) return found->second;
        elementDied(element);  // one before it at the same address, while another port was in force
    }
    auto* const shown = new Element(*this, element);
    shown->id = QAccessible::registerAccessibleInterface(shown);
    m_elements.emplace(&element, shown);
    return shown;
}

void QtAccessibility::elementDied(const AccessibilityElement& element) {
    const auto found = m_elements.find(&element);
    if (found == m_elements.end()) return;
    m_retired.push_back(found->second);
    m_elements.erase(found);
    if (m_uses == 0) deleteRetired();
}

void QtAccessibility::interfaceDied(const Element& shown, const AccessibilityElement& element) {
    const auto found = m_elements.find(&element);
    if (found != m_elements.end() && found->second == &shown) m_elements.erase(found);
    m_retired.erase(std::remove(m_retired.begin(), m_retired.end(), &shown), m_retired.end());
}

void QtAccessibility::deleteRetired() {
    while (!m_retired.empty()) {
        const Element* const shown = m_retired.back();
        m_retired.pop_back();
        QAccessible::deleteAccessibleInterface(shown->id);
    }
}

void QtAccessibility::changed(AccessibilityElement& element,
                              AccessibilityNotification notification) {
    if (!QAccessible::isActive()) return;
    const QtSurface* const surface = surfaceOf(&element);
    if (surface == nullptr) return;
    const bool isShown = element.accessibilityRole() != AccessibilityRole::Ignored;
    if (notification == AccessibilityNotification::ChildrenChanged) {
        auto* const parent = isShown ? &element : shownAccessibilityParent(element);
        auto* const shown = parent != nullptr ? interfaceOf(*parent) : hostOf(*surface);
        if (shown == nullptr) return;
        QAccessibleEvent event(shown, QAccessible::ObjectReorder);
        return QAccessible::updateAccessibility(&event);
    }
    // What stands in for a view that is not shown speaks for it.
    std::vector<AccessibilityElement*> targets{&element};
    if (!isShown) targets = shownAccessibilityChildren(element);
    for (AccessibilityElement* target : targets) {
        QAccessibleInterface* const shown = interfaceOf(*target);
        switch (notification) {
            case AccessibilityNotification::ValueChanged: {
                QAccessibleValueInterface* const number = shown->valueInterface();
                if (number == nullptr) break;
                QAccessibleValueChangeEvent event(shown, number->currentValue());
                QAccessible::updateAccessibility(&event);
                break;
            }
            case AccessibilityNotification::StateChanged: {
                QAccessible::State changed;
                changed.disabled = true;
                changed.checked = true;
                QAccessibleStateChangeEvent event(shown, changed);
                QAccessible::updateAccessibility(&event);
                break;
            }
            case AccessibilityNotification::NameChanged:
            case AccessibilityNotification::FocusGained: {
                const bool isFocus = notification == AccessibilityNotification::FocusGained;
                QAccessibleEvent event(shown,
                                       isFocus ? QAccessible::Focus : QAccessible::NameChanged);
                QAccessible::updateAccessibility(&event);
                if (isFocus) return;  // one thing has the focus
                break;
            }
            case AccessibilityNotification::ChildrenChanged:
                break;
        }
    }
}

}  // namespace veltra

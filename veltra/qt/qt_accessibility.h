// SPDX-License-Identifier: MIT
// Shows the elements of a window as children of its widget: one interface of Qt's for each element
// that was asked for, made on first use and deleted with the element.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/ui/accessibility.h"

#include <QAccessible>
#include <QTimer>
#include <unordered_map>
#include <vector>

namespace veltra {

class QtSurface;
class QtUiPort;

class QtAccessibility {
public:
    // Of the windows of this port, which owns it.
    explicit QtAccessibility(QtUiPort& port);
    QtAccessibility(const QtAccessibility&) = delete;
    QtAccessibility& operator=(const QtAccessibility&) = delete;
    ~QtAccessibility();

    QAccessibleInterface* interfaceOf(AccessibilityElement& element);
    QAccessibleInterface* interfaceFor(AccessibilityElement* element);  // null for null

    void changed(AccessibilityElement& element, AccessibilityNotification notification);
    void elementDied(const AccessibilityElement& element);

    // Around what a reader does through an interface: the interface outlives its element until the
    // reader has left it.
    class Use {
    public:
        Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();
    };

private:
    class Element;
    class Host;

    static QAccessibleInterface* make(const QString& className, QObject* object);
    void interfaceDied(const Element& shown, const AccessibilityElement& element);
    void deleteRetired();
    QtSurface* surfaceOf(const AccessibilityElement* element) const;

    QtUiPort& m_port;
    std::unordered_map<const AccessibilityElement*, Element*> m_elements;
    std::vector<Element*> m_retired;
    QTimer m_later;
    int m_uses = 0;
};

}  // namespace veltra

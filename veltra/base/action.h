// SPDX-License-Identifier: MIT
// An action is a member function as a small value: what a control or timer calls on its target.
//
//   slider.setAction(action<&Editor::levelChanged>());
//
//   void Editor::levelChanged();                   // does not ask who sent it
//   void Editor::levelChanged(Slider& sender);     // only ever called by a Slider
//   void Editor::levelChanged(Slider* sender);     // null when something else sends it
//
// The target is set separately and may be of any class; one without the member function does not
// respond.
#pragma once

#include "veltra/base/weak_anchor.h"

#include <cstddef>
#include <typeinfo>

namespace veltra {

namespace detail {

struct ActionEntry {
    const std::type_info* name;
    bool (*respondsTo)(Anchored* target);
    bool (*send)(Anchored* target, Anchored* sender);
};

template <typename H, typename... Parameter>
struct ActionSignature {
    using Host = H;

    template <auto Method>
    static bool send(Anchored* target, Anchored* sender) {
        auto* const host = dynamic_cast<Host*>(target);
        return host != nullptr && Call<Parameter...>::template send<Method>(*host, sender);
    }

private:
    template <typename... Any>
    struct Call {
        static_assert(sizeof...(Any) == 0, "an action takes the sender or nothing");
        template <auto Method>
        static bool send(Host& host, Anchored* /*sender*/) {
            static_cast<void>((host.*Method)());
            return true;
        }
    };

    template <typename Sender>
    struct Call<Sender*> {
        template <auto Method>
        static bool send(Host& host, Anchored* sender) {
            static_cast<void>((host.*Method)(dynamic_cast<Sender*>(sender)));
            return true;
        }
    };

    template <typename Sender>
    struct Call<Sender&> {
        template <auto Method>
        static bool send(Host& host, Anchored* sender) {
            auto* const typed = dynamic_cast<Sender*>(sender);
            if (typed == nullptr) return false;
            static_cast<void>((host.*Method)(*typed));
            return true;
        }
    };
};

template <typename Method>
struct ActionMethod;
template <typename Host, typename R, typename... P>
struct ActionMethod<R (Host::*)(P...)> : ActionSignature<Host, P...> {};
template <typename Host, typename R, typename... P>
struct ActionMethod<R (Host::*)(P...) const> : ActionSignature<Host, P...> {};
template <typename Host, typename R, typename... P>
struct ActionMethod<R (Host::*)(P...) noexcept> : ActionSignature<Host, P...> {};
template <typename Host, typename R, typename... P>
struct ActionMethod<R (Host::*)(P...) const noexcept> : ActionSignature<Host, P...> {};

template <typename Method>
using ActionHost = typename ActionMethod<Method>::Host;

// The host is named besides the method: by the method alone the compiler would not keep apart two
// classes of one name in the unnamed namespaces of two sources.
template <typename Host, auto Method>
struct ActionName {};

template <typename Host>
bool respondsToAction(Anchored* target) {
    return dynamic_cast<Host*>(target) != nullptr;
}

// Each library of a process may have a copy of its own; the name is the same in all of them.
template <typename Host, auto Method>
inline constexpr ActionEntry actionEntry{&typeid(ActionName<Host, Method>), &respondsToAction<Host>,
                                         &ActionMethod<decltype(Method)>::template send<Method>};

}  // namespace detail

// Null, or one member function. Equal when it is the same member function.
// Thread: the target's. Realtime-safe: as the member function.
class Action {
public:
    constexpr Action() noexcept = default;

    // The null action, as the default is: it sends nothing.
    constexpr Action(std::nullptr_t) noexcept {}

    // Calls the member function on `target`. Returns false, and calls nothing, when the action or
    // the target is null, when the target is of a class without this member function, or when the
    // function takes a reference and `sender` is null or of another class. The call may delete the
    // target and the sender; what it throws passes through.
    bool send(Anchored* target, Anchored* sender) const {
        return m_entry != nullptr && m_entry->send(target, sender);
    }

    // Whether `target` has the member function; false for a null action or target.
    bool respondsTo(Anchored* target) const noexcept {
        return m_entry != nullptr && m_entry->respondsTo(target);
    }

    // False for the null action.
    constexpr explicit operator bool() const noexcept { return m_entry != nullptr; }

    // Whether both call the same member function, also when different libraries of the process made
    // them. Two null actions are equal.
    friend bool operator==(Action left, Action right) noexcept {
        if (left.m_entry == right.m_entry) return true;
        return left && right && *left.m_entry->name == *right.m_entry->name;
    }

private:
    template <auto Method>
    friend constexpr Action action() noexcept;

    constexpr explicit Action(const detail::ActionEntry& entry) noexcept : m_entry(&entry) {}

    const detail::ActionEntry* m_entry = nullptr;
};

// The action that calls `Method`, a pointer to a member function that takes a reference to the
// sender, a pointer to it, or nothing. What the function returns is dropped.
template <auto Method>
constexpr Action action() noexcept {
    return Action(detail::actionEntry<detail::ActionHost<decltype(Method)>, Method>);
}

}  // namespace veltra

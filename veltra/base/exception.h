// SPDX-License-Identifier: MIT
// The base of all exceptions of the framework, and the one function that raises them.
//
// An exception has a name for programs, a reason for people, and a user info that all its copies
// share: what is added to one copy is seen in every other.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace veltra {

// Copying never fails and shares name, reason and user info.
// Thread: any, one thread at a time for exceptions that share their user info.
// Realtime-safe: no.
class VELTRA_EXPORT Exception : public std::exception {
public:
    // What belongs to an exception besides its two texts, by key: a code, a path, the exception
    // that led to it.
    using UserInfo = PropertyValue::Dictionary;

    // `userInfo` is shared, not copied, and may be null. Throws std::bad_alloc.
    Exception(std::string_view name, std::string_view reason,
              std::shared_ptr<UserInfo> userInfo = nullptr);

    // The copy shares name, reason and user info.
    Exception(const Exception&) noexcept = default;
    Exception& operator=(const Exception&) noexcept = default;
    ~Exception() override;

    // For programs: the kind of failure, the same in every language. May be empty.
    const std::string& name() const noexcept;

    // For people: what went wrong, in a sentence. May be empty.
    const std::string& reason() const noexcept;

    // Null when none was given. What it points to may be changed, for all copies at once.
    const std::shared_ptr<UserInfo>& userInfo() const noexcept { return m_userInfo; }

    // "name: reason", or the one of them that is not empty.
    const char* what() const noexcept override;

    // Throws this object as the class that it is; on a caught exception, throws it again. A class
    // that has something to do first (to report, say) overrides this, does it and calls
    // throwSelf(). `throw exception;` is not the same: it throws a copy of the static type.
    [[noreturn]] virtual void raise();

protected:
    // Throws this object as the class that it is.
    [[noreturn]] void throwSelf() const;

    // `throw *this;` in each class, so that no object is thrown as its base; RaisedAs writes it. A
    // class without one is thrown as the nearest base that has one.
    virtual void throwThis() const;

private:
    struct Text;

    std::shared_ptr<const Text> m_text;
    std::shared_ptr<UserInfo> m_userInfo;
};

// A base for exception classes which throws them as themselves:
//
//     class DeviceException : public RaisedAs<DeviceException> {
//     public:
//         using RaisedAs::RaisedAs;
//     };
//
// With a second argument it stands between a class and the base of its choice, whose raise() it
// keeps:
// class UsbException : public RaisedAs<UsbException, DeviceException>.
template <class Derived, class Base = Exception>
class RaisedAs : public Base {
public:
    using Base::Base;

protected:
    // Throws a copy as a Derived.
    void throwThis() const override { throw static_cast<const Derived&>(*this); }
};

// Makes the object that raiseException() raises. When it returns null, a plain Exception is raised.
using ExceptionFactory = std::unique_ptr<Exception> (*)(
    std::string_view name, std::string_view reason, std::shared_ptr<Exception::UserInfo> userInfo);

// Lets `factory` make the exceptions of the whole process; null goes back to plain ones. Returns
// what was installed before, null for plain exceptions.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT ExceptionFactory installExceptionFactory(ExceptionFactory factory) noexcept;

// Raises an exception of the class that the installed factory makes. All exceptions of the
// framework are raised here. Without memory for one, std::bad_alloc is thrown instead. Thread: any.
// Realtime-safe: no.
[[noreturn]] VELTRA_EXPORT void raiseException(
    std::string_view name, std::string_view reason,
    std::shared_ptr<Exception::UserInfo> userInfo = nullptr);

}  // namespace veltra

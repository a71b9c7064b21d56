// SPDX-License-Identifier: MIT
#include "veltra/base/exception.h"

#include <atomic>
#include <utility>

namespace veltra {

struct Exception::Text {
    std::string name;
    std::string reason;
    std::string what;
};

namespace {

std::atomic<ExceptionFactory> installedFactory{nullptr};

std::string joined(std::string_view name, std::string_view reason) {
    std::string text(name);
    if (!name.empty() && !reason.empty()) text += ": ";
    return text += reason;
}

}  // namespace

Exception::Exception(std::string_view name, std::string_view reason,
                     std::shared_ptr<UserInfo> userInfo)
    : m_text(std::make_shared<const Text>(
          Text{std::string(name), std::string(reason), joined(name, reason)})),
      m_userInfo(std::move(userInfo)) {}

Exception::~Exception() = default;

const std::string& Exception::name() const noexcept {
    return m_text->name;
}

const std::string& Exception::reason() const noexcept {
    return m_text->reason;
}

const char* Exception::what() const noexcept {
    return m_text->what.c_str();
}

void Exception::raise() {
    throwSelf();
}

void Exception::throwSelf() const {
    throwThis();
    throw Exception(*this);  // for an override that forgets to throw
}

void Exception::throwThis() const {
    throw Exception(*this);
}

ExceptionFactory installExceptionFactory(ExceptionFactory factory) noexcept {
    return installedFactory.exchange(factory, std::memory_order_acq_rel);  // with raiseException()
}

void raiseException(std::string_view name, std::string_view reason,
                    std::shared_ptr<Exception::UserInfo> userInfo) {
    const ExceptionFactory factory =
        installedFactory.load(std::memory_order_acquire);  // with installExceptionFactory()
    if (factory != nullptr) {
        if (const std::unique_ptr<Exception> made = factory(name, reason, userInfo)) made->raise();
    }
    Exception(name, reason, std::move(userInfo)).raise();
}

}  // namespace veltra

// SPDX-License-Identifier: MIT
#include "veltra/base/exception.h"

#include "veltra/base/testing/prelude.h"

#include <typeindex>

namespace veltra {
namespace {

struct DeviceException : RaisedAs<DeviceException> {
    using RaisedAs::RaisedAs;
    void raise() override {
        PropertyValue& trace = (*userInfo())["Trace"];
        trace = std::string(trace.asString()) + "raised;";
        throwSelf();
    }
};

struct UsbException : RaisedAs<UsbException, DeviceException> {
    using RaisedAs::RaisedAs;
};

std::unique_ptr<Exception> makeUsbException(std::string_view name, std::string_view reason,
                                            std::shared_ptr<Exception::UserInfo> userInfo) {
    if (name.empty()) return nullptr;
    return std::make_unique<UsbException>(name, reason, std::move(userInfo));
}

TEST(Exception, IsRaisedAsWhatTheFactoryMakesAgainAndAgainWithOneUserInfo) {
    const auto userInfo = std::make_shared<Exception::UserInfo>();
    const auto raised = [&](std::string_view name) {
        std::type_index type = typeid(void);
        try {
            try {
                raiseException(name, "reason", userInfo);
            } catch (Exception& caught) {
                caught.raise();
            }
        } catch (const Exception& caught) {
            EXPECT_EQ(caught.name(), name);
            EXPECT_EQ(caught.reason(), "reason");
            EXPECT_EQ(caught.userInfo(), userInfo);
            type = typeid(caught);
        }
        return type;
    };
    EXPECT_EQ(raised("A"), typeid(Exception));
    EXPECT_EQ(installExceptionFactory(makeUsbException), nullptr);
    EXPECT_EQ(raised("A"), typeid(UsbException));
    EXPECT_EQ((*userInfo)["Trace"], "raised;raised;");
    EXPECT_EQ(raised(""), typeid(Exception));
    EXPECT_EQ(installExceptionFactory(nullptr), &makeUsbException);
    EXPECT_STREQ(Exception("Name", "Reason").what(), "Name: Reason");
    EXPECT_STREQ(Exception("Name", "").what(), "Name");
    EXPECT_STREQ(Exception("", "Reason").what(), "Reason");
}

}  // namespace
}  // namespace veltra

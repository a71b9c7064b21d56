#include "veltra/platform/exception.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

class DeviceException : public RaisedAs<DeviceException> {
public:
    using RaisedAs::RaisedAs;
    void raise() override {
        PropertyValue& trace = (*userInfo())["Trace"];
        trace = std::string(trace.asString()) + "raised;";
        throwSelf();
    }
};

class UsbException : public RaisedAs<UsbException, DeviceException> {
public:
    using RaisedAs::RaisedAs;
};

std::unique_ptr<Exception> makeUsbException(std::string_view name, std::string_view reason,
                                            std::shared_ptr<Exception::UserInfo> userInfo) {
    if (name.empty()) return nullptr;
    if (!userInfo) userInfo = std::make_shared<Exception::UserInfo>();
    return std::make_unique<UsbException>(name, reason, std::move(userInfo));
}

TEST(Exception, IsRaisedAsItsOwnClassAgainAndAgainWithOneUserInfo) {
    const auto userInfo = std::make_shared<Exception::UserInfo>();
    UsbException original("Unplugged", "The device is gone", userInfo);
    Exception& seenAsBase = original;
    try {
        try {
            seenAsBase.raise();
        } catch (Exception& caught) {
            caught.raise();
        }
    } catch (const UsbException& caught) {
        EXPECT_EQ(caught.name(), "Unplugged");
        EXPECT_EQ(caught.reason(), "The device is gone");
        EXPECT_STREQ(caught.what(), "Unplugged: The device is gone");
        EXPECT_EQ(caught.userInfo(), userInfo);
    }
    EXPECT_EQ((*userInfo)["Trace"], "raised;raised;");
    EXPECT_STREQ(Exception("Name", "").what(), "Name");
    EXPECT_STREQ(Exception("", "Reason").what(), "Reason");
}

TEST(Exception, TheRaisePathMakesWhatTheInstalledFactoryMakes) {
    const auto raisedType = [](std::string_view name) -> const std::type_info* {
        try {
            raiseException(name, "reason");
        } catch (const Exception& caught) {
            EXPECT_EQ(caught.name(), name);
            EXPECT_EQ(caught.reason(), "reason");
            return &typeid(caught);
        }
    };
    EXPECT_EQ(*raisedType("A"), typeid(Exception));
    EXPECT_EQ(installExceptionFactory(makeUsbException), nullptr);
    EXPECT_EQ(*raisedType("A"), typeid(UsbException));
    EXPECT_EQ(*raisedType(""), typeid(Exception));
    EXPECT_EQ(installExceptionFactory(nullptr), &makeUsbException);
    EXPECT_EQ(*raisedType("A"), typeid(Exception));
}

}  // namespace
}  // namespace veltra

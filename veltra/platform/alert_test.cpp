#include "veltra/platform/alert.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::AllOf;
using ::testing::Field;
using ::testing::Return;

class MockPresenter : public AlertPresenter {
public:
    // NOLINTNEXTLINE(bugprone-exception-escape): nothing here throws
    MOCK_METHOD(AlertAnswer, present, (const Alert&), (noexcept, override));
};

class AlertTest : public ::testing::Test {
protected:
    AlertTest() : m_before(AlertPresenter::install(&m_presenter)) {}
    ~AlertTest() override { AlertPresenter::install(m_before); }

    ::testing::StrictMock<MockPresenter> m_presenter;
    AlertPresenter* m_before;
};

TEST_F(AlertTest, InstalledPresenterGetsTheWholeQuestionAndItsAnswerComesBack) {
    const Alert alert{"header", "message", "first", "second", "third", 12.5};
    EXPECT_CALL(m_presenter,
                present(AllOf(
                    Field(&Alert::header, "header"), Field(&Alert::message, "message"),
                    Field(&Alert::defaultButton, "first"), Field(&Alert::alternateButton, "second"),
                    Field(&Alert::otherButton, "third"), Field(&Alert::timeoutSeconds, 12.5))))
        .WillOnce(Return(AlertAnswer::Other));
    EXPECT_EQ(presentAlert(alert), AlertAnswer::Other);

    EXPECT_EQ(&AlertPresenter::current(), &m_presenter);
    EXPECT_EQ(AlertPresenter::install(nullptr), &m_presenter);
    EXPECT_EQ(&AlertPresenter::current(), &AlertPresenter::platform());
}

TEST_F(AlertTest, AnswersThatWereNotOfferedCountAsTimedOut) {
    const struct {
        std::string_view alternate, other;
        AlertAnswer given, taken;
    } cases[] = {
        {"b", "c", AlertAnswer::Default, AlertAnswer::Default},
        {"b", "", AlertAnswer::Alternate, AlertAnswer::Alternate},
        {"b", "", AlertAnswer::Other, AlertAnswer::TimedOut},
        {"", "c", AlertAnswer::Alternate, AlertAnswer::TimedOut},
        {"b", "c", static_cast<AlertAnswer>(-1), AlertAnswer::TimedOut},
        {"b", "c", static_cast<AlertAnswer>(4), AlertAnswer::TimedOut},
    };
    for (const auto& one : cases) {
        EXPECT_CALL(m_presenter, present).WillOnce(Return(one.given));
        EXPECT_EQ(presentAlert({"", "", "a", one.alternate, one.other, 1.0}), one.taken);
    }
}

TEST_F(AlertTest, TimeOutsAreBoundedAndNoneMeansNothingIsShown) {
    for (const double none : {0.0, -1.0, std::nan("")}) {
        EXPECT_EQ(presentAlert({"", "", "a", "", "", none}), AlertAnswer::TimedOut);
    }
    EXPECT_CALL(m_presenter, present(AllOf(Field(&Alert::timeoutSeconds, 86400.0),
                                           Field(&Alert::defaultButton, "OK"))))
        .WillOnce(Return(AlertAnswer::Default));
    EXPECT_EQ(presentAlert({"", "", "", "", "", std::numeric_limits<double>::infinity()}),
              AlertAnswer::Default);
}

}  // namespace
}  // namespace veltra

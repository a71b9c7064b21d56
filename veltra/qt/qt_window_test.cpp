// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_window.h"

#include "veltra/platform/termination.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/panel.h"

#include <QTimer>
#include <QWindow>

namespace veltra::testing {
namespace {

struct Running {
    int count = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QApplication application{count, arguments};
    const bool isInstalled = installQtPort();
};

// Puts a window with a probe in front.
QWidget* show(Window& window) {
    window.setContentView(std::make_unique<Probe>(Rect{}));
    window.makeKeyAndOrderFront();
    QWidget* const top = QApplication::topLevelWidgets().constFirst();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(top, kPatience));
    return top;
}

// A display tells sizes late: those of before may come in between.
bool comesTo(const QWidget& top, const Window& window, QSize size) {
    QCoreApplication::processEvents();
    const auto width = static_cast<float>(size.width());
    return comesTrue([&] {
        return top.size() == size && window.frame().size.width == width &&
               window.contentView()->frame().size.width == width;
    });
}

TEST(QtPort, WindowsOutliveTheApplication) {
    struct Closing final : Panel {
        using Panel::Panel;
        void didClose() override { wasClosed = true; }
        bool wasClosed = false;
    };
    std::unique_ptr<Closing> window;
    EXPECT_FALSE(installQtPort());
    for (int round = 0; round < 2; ++round) {
        const Running running;
        ASSERT_TRUE(running.isInstalled);
        window = std::make_unique<Closing>(Rect{{100, 100}, {200, 80}});
        window->setMinSize({150, 60});
        QWidget* const top = show(*window);
        EXPECT_TRUE(window->isVisible());
        window->setFrame({{120, 90}, {10, 300}});
        EXPECT_EQ(top->size(), QSize(150, 300));
        EXPECT_EQ(window->contentView()->frame().size, (Size{150, 300}));
        top->close();
        EXPECT_TRUE(window->wasClosed);
        EXPECT_FALSE(window->isVisible());
        window->orderFront();
        EXPECT_TRUE(window->isVisible());
    }
    EXPECT_FALSE(window->isVisible());
    window->contentView()->setNeedsDisplay();
    window->makeKeyAndOrderFront();
    window->setFrame({{0, 0}, {300, 300}});
}

TEST(QtPort, LimitsHoldFromTheNextSizeOn) {
    const Running running;
    Window window(Rect{{100, 100}, {200, 100}});
    QWidget* const top = show(window);
    const struct {
        Size minimum, maximum;
        QSize kept;       // by the limits alone
        QSize wish, got;  // by the next change
    } rows[] = {{{230, 50}, {900, 900}, {200, 100}, {210, 100}, {230, 100}},
                {{0, 0}, {170, 900}, {230, 100}, {200, 100}, {170, 100}},
                {{0, 0}, {900, 900}, {170, 100}, {300, 300}, {300, 300}}};
    for (const auto& row : rows) {
        window.setMinSize(row.minimum);
        window.setMaxSize(row.maximum);
        EXPECT_TRUE(comesTo(*top, window, row.kept)) << top->width();
        top->resize(row.wish);  // as the user does
        EXPECT_TRUE(comesTo(*top, window, row.got)) << top->width();
    }
}

TEST(QtPort, WindowsAreAsTheirStyleSays) {
    const Running running;
    for (const WindowStyle& style :
         {WindowStyle{.isTitled = false}, WindowStyle{.isClosable = false, .isResizable = false}}) {
        Window window({{100, 100}, {200, 100}}, style);
        window.setTitle("Mixer");
        window.setMaxSize({250, 250});
        QWidget* const top = show(window);
        EXPECT_EQ(top->windowFlags().testFlag(Qt::FramelessWindowHint), !style.isTitled);
        EXPECT_FALSE(style.isTitled && top->windowFlags().testFlag(Qt::WindowCloseButtonHint));
        EXPECT_EQ(top->windowTitle(), "Mixer");
        window.setFrame({{100, 100}, {220, 120}});
        EXPECT_TRUE(comesTo(*top, window, {220, 120}));
        top->resize(400, 400);  // as the user does
        EXPECT_TRUE(comesTo(*top, window, style.isResizable ? QSize(250, 250) : QSize(220, 120)));
        window.miniaturize();
        EXPECT_TRUE(top->isMinimized());
    }
}

TEST(QtPort, EndsTheEventLoopUnlessTheHostHasItsOwnWay) {
    static int asked = 0;
    const Terminator hosts = []() noexcept { ++asked; };
    installTerminator(hosts);
    {
        const Running running;
        askToTerminate();
    }
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(installTerminator(nullptr), hosts);
    const Running running;
    QTimer::singleShot(0, [] { Application::current().terminate(); });
    EXPECT_EQ(QApplication::exec(), 0);
    askToTerminate();
    EXPECT_EQ(asked, 1);
}

TEST(QtPort, OnlyWindowsThatWorkWhenModalHearOfClicksBesideAModalOne) {
    const Running running;
    for (const bool works : {false, true}) {
        Window window(Rect{{100, 100}, {200, 100}});
        window.setWorksWhenModal(works);
        QWidget* const top = show(window);
        QWidget modal;
        modal.setWindowModality(Qt::ApplicationModal);
        modal.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&modal, kPatience));
        QTest::mouseClick(top->windowHandle(), Qt::LeftButton, {}, {5, 5});
        QCoreApplication::processEvents();
        EXPECT_EQ(static_cast<Probe&>(*window.contentView()).events.empty(), !works);
    }
}

}  // namespace
}  // namespace veltra::testing

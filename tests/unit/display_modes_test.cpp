#include "base/run_time_error.h"
#include "platform/unix/x11_display_modes.h"

#include <QProcess>
#include <QTest>
#include <cstdlib>
#include <string>
#include <xcb/randr.h>

namespace {

/// Gives the display's monitor a further mode, as the owner of a monitor can.
void AddMode(const QByteArray& display, QSize size)
{
    xcb_connection_t* x = xcb_connect(display.constData(), nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    auto* resources = xcb_randr_get_screen_resources_reply(x, xcb_randr_get_screen_resources(x, root), nullptr);
    const xcb_randr_output_t output = xcb_randr_get_screen_resources_outputs(resources)[0];
    const std::string name = std::to_string(size.width()) + "x" + std::to_string(size.height()) + "-test";
    xcb_randr_mode_info_t mode = {};
    mode.width = static_cast<std::uint16_t>(size.width());
    mode.height = static_cast<std::uint16_t>(size.height());
    mode.htotal = static_cast<std::uint16_t>(size.width() + 100);
    mode.vtotal = static_cast<std::uint16_t>(size.height() + 30);
    mode.dot_clock = 60u * mode.htotal * mode.vtotal;
    mode.name_len = static_cast<std::uint16_t>(name.size());
    const auto asked = xcb_randr_create_mode(x, root, mode, static_cast<std::uint32_t>(name.size()), name.data());
    auto* made = xcb_randr_create_mode_reply(x, asked, nullptr);
    if (made == nullptr) qFatal("The mode cannot be made");
    free(xcb_request_check(x, xcb_randr_add_output_mode_checked(x, output, made->mode)));
    free(made);
    free(resources);
    xcb_disconnect(x);
}

/// The size of the whole screen, on which windows lie.
QSize RootSize(const QByteArray& display)
{
    xcb_connection_t* x = xcb_connect(display.constData(), nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    auto* geometry = xcb_get_geometry_reply(x, xcb_get_geometry(x, root), nullptr);
    const QSize size(geometry->width, geometry->height);
    free(geometry);
    xcb_disconnect(x);
    return size;
}

}  // namespace

/// The resolution of a real X11 display of the test's own.
class DisplayModesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void TheSizeIsTheDisplays();
    void AnOfferedModeIsTaken();
    void AModeThatIsNotOfferedChangesNothing();
    void TheCurrentModeStays();
    void WithoutADisplayItFails();

private:
    QProcess Server;
    QByteArray Display;
};

void DisplayModesTest::initTestCase()
{
    Server.setStandardErrorFile(QProcess::nullDevice());
    Server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"});
    QVERIFY2(Server.waitForStarted(), "Xvfb is needed");
    QVERIFY(Server.waitForReadyRead());
    Display = ":" + Server.readLine().trimmed();
}

void DisplayModesTest::cleanupTestCase()
{
    Server.terminate();
    Server.waitForFinished();
}

void DisplayModesTest::TheSizeIsTheDisplays()
{
    QCOMPARE(X11DisplayModes(Display).Current(), QSize(1280, 1024));
    QCOMPARE(X11DisplayModes(Display).Obstacle(), QString());
}

void DisplayModesTest::AnOfferedModeIsTaken()
{
    X11DisplayModes modes(Display);
    for (const QSize size : {QSize(640, 480), QSize(800, 600), QSize(1024, 768)}) AddMode(Display, size);
    for (const QSize size : {QSize(800, 600), QSize(640, 480), QSize(1024, 768), QSize(1280, 1024)}) {
        modes.Change(size);
        QCOMPARE(modes.Current(), size);
        QCOMPARE(RootSize(Display), size);
    }
}

void DisplayModesTest::AModeThatIsNotOfferedChangesNothing()
{
    X11DisplayModes modes(Display);
    modes.Change({1111, 777});
    QCOMPARE(modes.Current(), QSize(1280, 1024));
}

void DisplayModesTest::TheCurrentModeStays()
{
    X11DisplayModes modes(Display);
    modes.Change({1280, 1024});
    QCOMPARE(modes.Current(), QSize(1280, 1024));
}

void DisplayModesTest::WithoutADisplayItFails()
{
    X11DisplayModes none(":no-such-display");
    QCOMPARE(none.Current(), QSize());
    QVERIFY_EXCEPTION_THROWN(none.Change({800, 600}), RuntimeError);
}

QTEST_GUILESS_MAIN(DisplayModesTest)
#include "display_modes_test.moc"

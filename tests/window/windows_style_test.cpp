#include "app/windows_start.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTest>

/// The style of the windows follows the desktop between light and dark.
class WindowsStyleTest : public QObject {
    Q_OBJECT

private slots:
    void ADarkDesktopGetsAStyleThatCanBeDark();
    void AChangeIsFollowedBothWays();
    void ButtonsStandOutInTheDark();

private:
    static QString Style() { return QApplication::style()->name(); }

    /// What a button of the kind is drawn with.
    template <typename Widget>
    static QColor ColourOf()
    {
        Widget widget;
        widget.ensurePolished();
        return widget.palette().color(QPalette::Button);
    }

    /// What the toolkit sends when the desktop's colours have changed.
    static void ChangeColours()
    {
        QEvent change(QEvent::ApplicationPaletteChange);
        QCoreApplication::sendEvent(qApp, &change);
    }
};

void WindowsStyleTest::ADarkDesktopGetsAStyleThatCanBeDark()
{
    QApplication::setStyle("windowsvista");
    const WindowsStyle style(*qApp, [] { return true; });
    QCOMPARE(Style(), QString("fusion"));
}

void WindowsStyleTest::AChangeIsFollowedBothWays()
{
    QApplication::setStyle("windowsvista");
    bool dark = false;
    const WindowsStyle style(*qApp, [&] { return dark; });
    QCOMPARE(Style(), QString("windowsvista"));
    dark = true;
    ChangeColours();
    QTRY_COMPARE(Style(), QString("fusion"));
    dark = false;
    ChangeColours();
    QTRY_COMPARE(Style(), QString("windowsvista"));
}

void WindowsStyleTest::ButtonsStandOutInTheDark()
{
    QPalette colours;
    colours.setColor(QPalette::Window, QColor(32, 32, 32));
    colours.setColor(QPalette::Button, QColor(32, 32, 32));
    QApplication::setPalette(colours);
    bool dark = true;
    const WindowsStyle style(*qApp, [&] { return dark; });
    QVERIFY(ColourOf<QPushButton>().lightness() > ColourOf<QLabel>().lightness());
    dark = false;
    ChangeColours();
    QTRY_COMPARE(Style(), QString("windowsvista"));
    QCOMPARE(ColourOf<QPushButton>(), ColourOf<QLabel>());
}

QTEST_MAIN(WindowsStyleTest)
#include "windows_style_test.moc"

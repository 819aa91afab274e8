#include "sites/clipboard_watch.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <ctime>
#include <memory>

namespace {

/// What another program has put on the clipboard: counts what it is asked for.
class Offer : public QMimeData {
public:
    Offer(QStringList announced, QByteArray content, int& asked)
        : Announced(std::move(announced)), Content(std::move(content)), Asked(asked)
    {
    }

    QStringList formats() const override { return Announced; }

    bool hasFormat(const QString& type) const override { return Announced.contains(type); }

protected:
    QVariant retrieveData(const QString&, QMetaType) const override
    {
        ++Asked;
        return Content;
    }

private:
    QStringList Announced;
    QByteArray Content;
    int& Asked;
};

struct Desk {
    Desk() : Watch({mnuWatchClip, cmdPaste, cmdPaste2, txtURL, txtCom}, Address, Source, [this] { ++Beeps; })
    {
        auto* layout = new QVBoxLayout(&Window);
        for (QWidget* widget : std::initializer_list<QWidget*>{&txtURL, &txtCom, &cmdPaste, &cmdPaste2})
            layout->addWidget(widget);
        txtURL.setEditable(true);
        txtCom.setEditable(true);
        txtCom.setEditText("ftp://");
        mnuWatchClip.setCheckable(true);
        cmdPaste.setEnabled(false);
        cmdPaste2.setEnabled(false);
        QObject::connect(&cmdPaste, &QPushButton::clicked, &Watch, &ClipboardWatch::cmdPaste_Click);
        QObject::connect(&cmdPaste2, &QPushButton::clicked, &Watch, &ClipboardWatch::cmdPaste2_Click);
        Window.show();
    }

    void Copy(const QString& text)
    {
        QGuiApplication::clipboard()->setText(text);
        Watch.ClipBoardTimer_Timer();
    }

    bool Offers() const { return cmdPaste.isEnabled() && cmdPaste2.isEnabled(); }

    QWidget Window;
    QAction mnuWatchClip{&Window};
    QPushButton cmdPaste{&Window};
    QPushButton cmdPaste2{&Window};
    QComboBox txtURL{&Window};
    QComboBox txtCom{&Window};
    AddressState Address;
    DesktopClipboard Source{*QGuiApplication::clipboard()};
    int Beeps = 0;
    ClipboardWatch Watch;
};

}  // namespace

class ClipboardWatchTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AnAddressBeepsTwiceAndEnablesBothButtons_data();
    void AnAddressBeepsTwiceAndEnablesBothButtons();
    void OtherTextsAreNotAccepted_data();
    void OtherTextsAreNotAccepted();
    void TheSameAddressTwiceInARowBeepsOnce();
    void AnAddressThatComesBackIsNewAgain();
    void OtherTextsKeepTheLastAddress();
    void TrailingBreaksAndBlanksAreRemoved_data();
    void TrailingBreaksAndBlanksAreRemoved();

    void PastingFillsTheAddressBoxAndAnnouncesTheChange();
    void PastingIntoTheCommandLineAnnouncesAChangeToo();

    void TheMenuEntrySwitchesTheWatchOnAndOff();
    void TheTimerLooksAboutThreeTimesASecond();
    void WhatWasCopiedWhileTheWatchWasOffIsSeen();

    void AnEmptyClipboardIsNoAddress();
    void APictureIsNotAskedFor();
    void AnUnchangedClipboardIsNotAskedFor();
    void FiftyMegabytesOfTextHoldNobodyUp();
    void ATextLongerThanABoxTakesIsNoAddress();

private:
    std::unique_ptr<Desk> My;
};

void ClipboardWatchTest::init()
{
    QGuiApplication::clipboard()->clear();
    My = std::make_unique<Desk>();
}

void ClipboardWatchTest::cleanup()
{
    My.reset();
}

void ClipboardWatchTest::AnAddressBeepsTwiceAndEnablesBothButtons_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("web") << "http://example.org";
    QTest::newRow("FTP") << "ftp://ftp.example.org/pub";
    QTest::newRow("nothing behind the scheme") << "ftp://";
}

void ClipboardWatchTest::AnAddressBeepsTwiceAndEnablesBothButtons()
{
    QFETCH(QString, text);
    My->Copy(text);
    QCOMPARE(My->Beeps, 2);
    QVERIFY(My->cmdPaste.isEnabled());
    QVERIFY(My->cmdPaste2.isEnabled());
    QCOMPARE(My->Address.ClippedAddress, text);
}

void ClipboardWatchTest::OtherTextsAreNotAccepted_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("capitals") << "FTP://ftp.example.org";
    QTest::newRow("one capital") << "Http://example.org";
    QTest::newRow("leading blank") << " ftp://ftp.example.org";
    QTest::newRow("leading line break") << "\nhttp://example.org";
    QTest::newRow("secure web") << "https://example.org";
    QTest::newRow("secure FTP") << "ftps://example.org";
    QTest::newRow("no scheme") << "ftp.example.org";
    QTest::newRow("cut scheme") << "ftp:/";
    QTest::newRow("address inside") << "see http://example.org";
}

void ClipboardWatchTest::OtherTextsAreNotAccepted()
{
    QFETCH(QString, text);
    My->Copy(text);
    QCOMPARE(My->Beeps, 0);
    QVERIFY(!My->cmdPaste.isEnabled());
    QVERIFY(!My->cmdPaste2.isEnabled());
}

void ClipboardWatchTest::TheSameAddressTwiceInARowBeepsOnce()
{
    My->Copy("ftp://a");
    QTest::mouseClick(&My->cmdPaste, Qt::LeftButton);
    My->Copy("ftp://a");
    My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(My->Beeps, 2);
    QVERIFY(!My->cmdPaste.isEnabled());
}

void ClipboardWatchTest::AnAddressThatComesBackIsNewAgain()
{
    My->Copy("ftp://a");
    My->Copy("something else");
    My->Copy("ftp://a");
    QCOMPARE(My->Beeps, 4);
}

void ClipboardWatchTest::OtherTextsKeepTheLastAddress()
{
    My->Copy("ftp://a");
    My->Copy("something else");
    QVERIFY(My->Offers());
    QTest::mouseClick(&My->cmdPaste, Qt::LeftButton);
    QCOMPARE(My->txtURL.currentText(), QString("ftp://a"));
}

void ClipboardWatchTest::TrailingBreaksAndBlanksAreRemoved_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::newRow("line break") << "ftp://a\r\n"
                                << "ftp://a";
    QTest::newRow("several of all kinds") << "ftp://a \n\r  \r\n"
                                          << "ftp://a";
    QTest::newRow("blank inside") << "ftp://a/b c \n"
                                  << "ftp://a/b c";
    QTest::newRow("tab stays") << "ftp://a\t"
                               << "ftp://a\t";
}

void ClipboardWatchTest::TrailingBreaksAndBlanksAreRemoved()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    My->Copy(text);
    QTest::mouseClick(&My->cmdPaste, Qt::LeftButton);
    QCOMPARE(My->txtURL.currentText(), address);
}

void ClipboardWatchTest::PastingFillsTheAddressBoxAndAnnouncesTheChange()
{
    My->Copy("ftp://a");
    bool announced = false;
    connect(&My->txtURL, &QComboBox::editTextChanged, this, [&] { announced = My->Address.AddressRestored; });
    QTest::mouseClick(&My->cmdPaste, Qt::LeftButton);
    QVERIFY(announced);
    QCOMPARE(My->txtURL.currentText(), QString("ftp://a"));
    QVERIFY(!My->cmdPaste.isEnabled());
    QVERIFY(My->cmdPaste2.isEnabled());
    QCOMPARE(My->txtCom.currentText(), QString("ftp://"));
}

void ClipboardWatchTest::PastingIntoTheCommandLineAnnouncesAChangeToo()
{
    My->Copy("http://a");
    My->cmdPaste2.setFocus();
    QTest::keyClick(&My->cmdPaste2, Qt::Key_Space);
    QVERIFY(My->Address.AddressRestored);
    QCOMPARE(My->txtCom.currentText(), QString("http://a"));
    QCOMPARE(My->txtURL.currentText(), QString());
    QVERIFY(!My->cmdPaste2.isEnabled());
    QVERIFY(My->cmdPaste.isEnabled());
}

void ClipboardWatchTest::TheMenuEntrySwitchesTheWatchOnAndOff()
{
    const auto& timer = *My->Watch.findChild<QTimer*>("ClipBoardTimer");
    QVERIFY(!timer.isActive());
    My->Watch.mnuWatchClip_Click();
    QVERIFY(timer.isActive());
    QVERIFY(My->mnuWatchClip.isChecked());
    My->Watch.mnuWatchClip_Click();
    QVERIFY(!timer.isActive());
    QVERIFY(!My->mnuWatchClip.isChecked());
}

void ClipboardWatchTest::TheTimerLooksAboutThreeTimesASecond()
{
    QCOMPARE(My->Watch.findChild<QTimer*>("ClipBoardTimer")->interval(), 330);
    My->Watch.mnuWatchClip_Click();
    QGuiApplication::clipboard()->setText("ftp://a");
    QCOMPARE(My->Beeps, 0);
    QTRY_COMPARE(My->Beeps, 2);
}

void ClipboardWatchTest::WhatWasCopiedWhileTheWatchWasOffIsSeen()
{
    QGuiApplication::clipboard()->setText("ftp://a");
    QGuiApplication::clipboard()->setText("ftp://b");
    My->Watch.mnuWatchClip_Click();
    QTRY_COMPARE(My->Address.ClippedAddress, QString("ftp://b"));
    QCOMPARE(My->Beeps, 2);
}

void ClipboardWatchTest::AnEmptyClipboardIsNoAddress()
{
    My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(My->Beeps, 0);
    My->Copy("ftp://a");
    QGuiApplication::clipboard()->clear();
    My->Watch.ClipBoardTimer_Timer();
    My->Copy("ftp://a");
    QCOMPARE(My->Beeps, 4);
}

void ClipboardWatchTest::APictureIsNotAskedFor()
{
    int asked = 0;
    QGuiApplication::clipboard()->setMimeData(new Offer({"image/png", "application/x-qt-image"}, "ftp://a", asked));
    My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(asked, 0);
    QGuiApplication::clipboard()->setImage(QImage(2000, 2000, QImage::Format_RGB32));
    My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(My->Beeps, 0);
}

void ClipboardWatchTest::AnUnchangedClipboardIsNotAskedFor()
{
    int asked = 0;
    QGuiApplication::clipboard()->setMimeData(new Offer({"text/plain"}, "ftp://a", asked));
    My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(My->Beeps, 2);
    const int first = asked;
    QVERIFY(first > 0);
    for (int tick = 0; tick < 100; ++tick) My->Watch.ClipBoardTimer_Timer();
    QCOMPARE(asked, first);
}

void ClipboardWatchTest::FiftyMegabytesOfTextHoldNobodyUp()
{
    QGuiApplication::clipboard()->setText("ftp://" + QString(50'000'000, u'x'));
    const std::clock_t start = std::clock();
    for (int tick = 0; tick < 100; ++tick) My->Watch.ClipBoardTimer_Timer();
    // Of the processor. Had each look fetched the text, 5 GB would have been copied.
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    QVERIFY2(seconds < 1, qPrintable(QString::number(seconds)));
    QVERIFY(My->Source.NewText() == std::nullopt);
    QCOMPARE(My->Beeps, 0);
    My->Copy("ftp://a");
    QCOMPARE(My->Beeps, 2);
}

void ClipboardWatchTest::ATextLongerThanABoxTakesIsNoAddress()
{
    My->Copy("ftp://" + QString(ClipboardSource::MaxLength - 5, u'x'));
    QCOMPARE(My->Beeps, 0);
    My->Copy("ftp://" + QString(ClipboardSource::MaxLength - 6, u'x'));
    QCOMPARE(My->Beeps, 2);
    QTest::mouseClick(&My->cmdPaste, Qt::LeftButton);
    QCOMPARE(My->txtURL.currentText(), My->Address.ClippedAddress);
}

QTEST_MAIN(ClipboardWatchTest)

#include "clipboard_watch_test.moc"

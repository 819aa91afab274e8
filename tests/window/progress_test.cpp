#include "support/panel_driver.h"
#include "transfer/progress_view.h"

#include <QAbstractButton>
#include <QLocale>
#include <QProgressBar>

/// How far a transfer has come, in the window.
class ProgressTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheRateAndTheTimeLeftAreTold_data();
    void TheRateAndTheTimeLeftAreTold();
    void TheBarFollowsATransfer();
    void AConfirmedSizeIsTold();
    void AnUnconfirmedEndHidesTheBar();
    void ATransferThatFailsHidesTheBar_data();
    void ATransferThatFailsHidesTheBar();
    void TheComponentHearsWhetherMoreIsToCome();
    void TheComponentGetsReadyForWhatIsSelected();

private:
    QProgressBar& Bar() const { return Driver->Control<QProgressBar>("TransferProgress"); }

    std::unique_ptr<PanelDriver> Driver;
};

void ProgressTest::init()
{
    QLocale::setDefault(QLocale::c());
    Driver = std::make_unique<PanelDriver>();
    Driver->Open();
}

void ProgressTest::cleanup()
{
    Driver.reset();
}

void ProgressTest::TheRateAndTheTimeLeftAreTold_data()
{
    QTest::addColumn<Inet::Progress>("progress");
    QTest::addColumn<QString>("text");
    QTest::newRow("no size") << Inet::Progress{100, -1, 2048} << "2.0 kB/s";
    QTest::newRow("seconds") << Inet::Progress{1'000'000, 5'000'000, 1'000'000} << "976.6 kB/s  0:04";
    QTest::newRow("a part of one") << Inet::Progress{0, 1, 1'000'000} << "976.6 kB/s  0:01";
    QTest::newRow("hours") << Inet::Progress{0, 3'723'000, 1000} << "1000 bytes/s  1:02:03";
    QTest::newRow("stands still") << Inet::Progress{1, 5, 0} << "0 bytes/s";
    QTest::newRow("more than announced") << Inet::Progress{9, 5, 1024} << "1.0 kB/s";
}

void ProgressTest::TheRateAndTheTimeLeftAreTold()
{
    QFETCH(Inet::Progress, progress);
    QFETCH(QString, text);
    QCOMPARE(ProgressText(progress), text);
}

void ProgressTest::TheBarFollowsATransfer()
{
    QVERIFY(Bar().isHidden());
    emit Driver->Inet1().Progressed({250, 1000, 1024});
    QVERIFY(!Bar().isHidden());
    QCOMPARE(Bar().value() * 4, Bar().maximum());
    QCOMPARE(Bar().text(), QString("1.0 kB/s  0:01"));
    emit Driver->Inet1().Progressed({5000, 1000, 1024});
    QCOMPARE(Bar().value(), Bar().maximum());
}

void ProgressTest::AConfirmedSizeIsTold()
{
    emit Driver->Inet1().Progressed({250, 1000, 1024});
    emit Driver->Inet1().Transferred({1000, true});
    Driver->Inet1().Report(Inet::ResponseCompleted);
    QVERIFY(!Bar().isHidden());
    QCOMPARE(Bar().value(), Bar().maximum());
    QCOMPARE(Bar().text(), QString("Size confirmed"));
}

void ProgressTest::AnUnconfirmedEndHidesTheBar()
{
    emit Driver->Inet1().Progressed({250, -1, 1024});
    emit Driver->Inet1().Transferred({1000, false});
    QVERIFY(Bar().isHidden());
}

void ProgressTest::ATransferThatFailsHidesTheBar_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("error") << int(Inet::Error);
    QTest::newRow("canceled") << int(Inet::None);
    QTest::newRow("disconnected") << int(Inet::Disconnected);
}

void ProgressTest::ATransferThatFailsHidesTheBar()
{
    QFETCH(int, state);
    emit Driver->Inet1().Progressed({250, 1000, 1024});
    Driver->Inet1().Report(state);
    QVERIFY(Bar().isHidden());
}

void ProgressTest::TheComponentHearsWhetherMoreIsToCome()
{
    Driver->Connect({"a", "b"});
    QList<bool> told;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Requesting) told += Driver->Inet1().MoreToCome;
    });
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Control<QAbstractButton>("Image2").click();
    QTRY_COMPARE(told, (QList<bool>{true, false}));
    Driver->WaitUntilIdle();
    QVERIFY(!Driver->Inet1().MoreToCome);
}

void ProgressTest::TheComponentGetsReadyForWhatIsSelected()
{
    Driver->MakeFile("here", "bytes");
    Driver->Connect({"a", "b"});
    QTRY_COMPARE(Driver->Files().Count(), 1);
    const int& times = Driver->Inet1().TimesReady;
    for (ListBox* list : {&Driver->Remote(), &Driver->Files()}) {
        const int before = times;
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, list->viewport()->rect().center());
        QCOMPARE(times, before);  // nothing is selected
        PanelDriver::Select(*list, {0});
        QCOMPARE(times, before + 1);
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, list->viewport()->rect().center());
        QCOMPARE(times, before + 2);
    }
}

QTEST_MAIN(ProgressTest)
#include "progress_test.moc"

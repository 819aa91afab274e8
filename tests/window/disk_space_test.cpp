#include "base/formats.h"
#include "base/run_time_error.h"
#include "local/disk_space.h"

#include <QTest>

class DiskSpaceTest : public QObject {
    Q_OBJECT

private slots:
    void AFigureOf32BitsIsShownWithSeparators();
    void TheLargestFigureOf32BitsStillFits();
    void ALargerFigureIsAnOverflowAndTheTrueOneIsShown();
    void ADriveThatCannotBeAskedLeavesTheLabelsAlone();
    void AFullDriveShowsZero();
    void TheLabelsChangePlaces();

private:
    std::optional<FreeSpace> Space;
    QLabel Small;
    QLabel True;
    ErrorRecord Errors;
    DiskSpace Shown{{Small, True}, Errors, [this](const QString&) { return Space; }};
};

void DiskSpaceTest::AFigureOf32BitsIsShownWithSeparators()
{
    Space = FreeSpace{8, 512, 300'000};
    QCOMPARE(Shown.ShowDiskSpace("/"), 1'228'800'000.0);
    QCOMPARE(Small.text(), Thousands(1'228'800'000));
    QVERIFY(!Small.isHidden());
    QVERIFY(True.isHidden());
}

void DiskSpaceTest::TheLargestFigureOf32BitsStillFits()
{
    Space = FreeSpace{1, 1, 2'147'483'647};
    QCOMPARE(Shown.ShowDiskSpace("/"), 2'147'483'647.0);
    QCOMPARE(Small.text(), Thousands(2'147'483'647));
}

void DiskSpaceTest::ALargerFigureIsAnOverflowAndTheTrueOneIsShown()
{
    Small.setText("as before");
    Space = FreeSpace{1, 1, 2'147'483'648};
    QCOMPARE(Shown.ShowDiskSpace("/"), -1.0);
    QCOMPARE(Small.text(), QString("as before"));
    QCOMPARE(Errors.Description(), QString("Overflow"));
    QCOMPARE(True.text(), Thousands(2'147'483'648));
    QVERIFY(Small.isHidden());
    QVERIFY(!True.isHidden());
}

void DiskSpaceTest::ADriveThatCannotBeAskedLeavesTheLabelsAlone()
{
    Small.setText("as before");
    Small.show();
    True.hide();
    Space.reset();
    QCOMPARE(Shown.ShowDiskSpace("/"), -1.0);
    QCOMPARE(Small.text(), QString("as before"));
    QVERIFY(!Small.isHidden());
    QVERIFY(True.isHidden());
}

void DiskSpaceTest::AFullDriveShowsZero()
{
    Space = FreeSpace{8, 512, 0};
    QCOMPARE(Shown.ShowDiskSpace("/"), 0.0);
    QCOMPARE(Small.text(), QString("0"));
}

void DiskSpaceTest::TheLabelsChangePlaces()
{
    Space = FreeSpace{8, 512, 1ULL << 32};
    Shown.ShowDiskSpace("/");
    QVERIFY(Small.isHidden());
    Space = FreeSpace{8, 512, 1};
    Shown.ShowDiskSpace("/");
    QVERIFY(!Small.isHidden());
    QVERIFY(True.isHidden());
    QCOMPARE(Small.text(), Thousands(4096));
}

QTEST_MAIN(DiskSpaceTest)
#include "disk_space_test.moc"

#include "controls/list_box.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>
#include <ctime>
#include <limits>

namespace {

QStringList Lines(int count)
{
    QStringList lines;
    lines.reserve(count);
    for (int number = 0; number < count; ++number)
        lines += QString("-rw-r--r--    1 1000     1000         4096 Mar 09 17:05 file number %1.txt").arg(number);
    return lines;
}

/// Of the processor, so that a busy machine does not count.
double Milliseconds()
{
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// Runs the event loop pass by pass until the list has laid out all of its entries. The longest step counts.
double LongestStep(ListBox& list, const QStringList& lines)
{
    double longest = 0;
    const auto step = [&longest](const auto& action) {
        const double start = Milliseconds();
        action();
        longest = std::max(longest, Milliseconds() - start);
    };
    QElapsedTimer patience;
    patience.start();
    step([&] { list.SetEntries(lines); });
    const QModelIndex last = list.model()->index(list.Count() - 1, 0);
    const auto laidOut = [&] { return list.visualRect(last).isValid() && list.verticalScrollBar()->maximum() > 0; };
    do {
        step([] { QCoreApplication::processEvents(QEventLoop::AllEvents, 0); });
        if (patience.hasExpired(60000)) return std::numeric_limits<double>::infinity();
    } while (!laidOut());
    step([&] { list.scrollToBottom(); });
    step([] { QCoreApplication::processEvents(); });
    return longest;
}

}  // namespace

class LongListTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void TwoHundredThousandEntriesCauseNoPause();
    void TheLastOfManyEntriesCanBeReached();
    void SelectingAllOfManyEntriesIsQuick();
    void LongEntriesCanBeScrolledTo();
    void AScreenReaderHearsTheEntries();

private:
    ListBox List;
};

void LongListTest::init()
{
    List.Clear();
    List.resize(400, 300);
    List.show();
    QVERIFY(QTest::qWaitForWindowExposed(&List));
}

void LongListTest::TwoHundredThousandEntriesCauseNoPause()
{
    const double longest = LongestStep(List, Lines(200000));
    qInfo("longest step: %.1f ms of processor time", longest);
    QCOMPARE(List.Count(), 200000);
    // A tenth of a second is what a user may feel; sanitizers take several times as long.
    QVERIFY2(longest < 1000, qPrintable(QString::number(longest)));
}

void LongListTest::TheLastOfManyEntriesCanBeReached()
{
    LongestStep(List, Lines(50000));
    QTest::keyClick(&List, Qt::Key_Home);
    QTest::keyClick(&List, Qt::Key_End);
    QCOMPARE(List.ListIndex(), 49999);
    QVERIFY(List.viewport()->rect().intersects(List.visualRect(List.currentIndex())));
}

void LongListTest::SelectingAllOfManyEntriesIsQuick()
{
    LongestStep(List, Lines(100000));
    const double start = Milliseconds();
    QTest::keyClick(&List, Qt::Key_A, Qt::ControlModifier);
    const QStringList selected = List.SelectedEntries();
    const double taken = Milliseconds() - start;
    QCOMPARE(selected.size(), 100000);
    QVERIFY2(taken < 10000, qPrintable(QString::number(taken)));
}

void LongListTest::LongEntriesCanBeScrolledTo()
{
    const QString longName(200, 'W');
    List.SetEntries({"short", longName});
    const auto reach = [this] { return List.horizontalScrollBar()->maximum() + List.viewport()->width(); };
    const int needed = List.fontMetrics().horizontalAdvance(longName);
    QTRY_VERIFY(reach() >= needed);
    List.SetEntries({"short"});
    QTRY_COMPARE(List.horizontalScrollBar()->maximum(), 0);
    List.Append(longName);
    QTRY_VERIFY(reach() >= needed);
}

void LongListTest::AScreenReaderHearsTheEntries()
{
    List.SetEntries({"one", "two"});
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&List);
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->childCount(), 2);
    QCOMPARE(list->child(1)->text(QAccessible::Name), QString("two"));
}

QTEST_MAIN(LongListTest)
#include "long_list_test.moc"

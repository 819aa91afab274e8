#include "controls/list_box.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <ctime>
#include <memory>
#include <vector>

class ListBoxTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ALeftPressSelectsAtOnce();
    void ControlAddsAndTakesAwayAndShiftSelectsARange();
    void APlainPressOnASelectedEntryLeavesOnlyThatOne();
    void AListWithSingleSelectionHoldsOneEntry();
    void ARightPressNeverChangesTheSelection();
    void AMiddlePressNeverChangesTheSelection();
    void AMoveWithTheButtonDownSelectsNothingMore();

    void APressBeginsADragAndItsReleaseEndsIt_data();
    void APressBeginsADragAndItsReleaseEndsIt();
    void TheReleaseDropsOnTheListUnderThePointer();
    void TheReleaseOverTheOwnListDropsThere();
    void TheReleaseBesideAllListsDropsNowhere();
    void TheReleaseOfAnotherButtonEndsNothing();
    void AHiddenListDragsNoLonger();
    void ClickedComesBeforeTheDrop();
    void EveryPressTellsThatADragHasBegun_data();
    void EveryPressTellsThatADragHasBegun();
    void ADragIsShownByThePointer();

    void ALeftPressBelowTheEntriesIsNoClick();
    void ARightPressIsNoClick();
    void KeysMoveTheSelectionAndAreNoClick();
    void ReturnAndADoubleClickMeanTheSame();
    void ReturnInAnEmptyListMeansNothing();
    void DeleteIsReported();

    void EntriesGoBackAsTheyCame();
    void NewEntriesLoseTheSelection();
    void TheSelectionIsInListOrder();
    void ManyEntriesCostInProportionToTheirNumber();

private:
    static QPoint Middle(const ListBox& list, int row)
    {
        const QRect shown = list.visualRect(list.model()->index(row, 0));
        return {8, shown.center().y()};
    }

    void Press(Qt::MouseButton button, int row, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mousePress(Left->viewport(), button, keys, Middle(*Left, row));
    }

    void Release(Qt::MouseButton button, const QWidget& over) const
    {
        QWidget* viewport = Left->viewport();
        QTest::mouseRelease(viewport, button, Qt::NoModifier,
                            viewport->mapFromGlobal(over.mapToGlobal(over.rect().center())));
    }

    void Click(int row, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        Press(Qt::LeftButton, row, keys);
        Release(Qt::LeftButton, *Left);
    }

    std::unique_ptr<QWidget> Window;
    ListBox* Left = nullptr;
    ListBox* Right = nullptr;
    QWidget* Beside = nullptr;
};

void ListBoxTest::init()
{
    Window = std::make_unique<QWidget>();
    auto* row = new QHBoxLayout(Window.get());
    Left = new ListBox;
    Right = new ListBox;
    Beside = new QWidget;
    for (QWidget* widget : {static_cast<QWidget*>(Left), static_cast<QWidget*>(Right), Beside}) row->addWidget(widget);
    Left->SetEntries({"one", "two", "three", "four", "five"});
    Window->resize(600, 300);
    Window->show();
    QVERIFY(QTest::qWaitForWindowActive(Window.get()));
}

void ListBoxTest::cleanup()
{
    Window.reset();
}

void ListBoxTest::ALeftPressSelectsAtOnce()
{
    QSignalSpy clicked(Left, &ListBox::Clicked);
    Press(Qt::LeftButton, 1);
    QCOMPARE(Left->SelectedEntries(), QStringList{"two"});
    QCOMPARE(Left->ListIndex(), 1);
    QCOMPARE(clicked.count(), 1);
    Release(Qt::LeftButton, *Left);
    QCOMPARE(Left->SelectedEntries(), QStringList{"two"});
    QCOMPARE(clicked.count(), 1);
}

void ListBoxTest::ControlAddsAndTakesAwayAndShiftSelectsARange()
{
    Click(0);
    Click(3, Qt::ControlModifier);
    QCOMPARE(Left->SelectedEntries(), (QStringList{"one", "four"}));
    Click(0, Qt::ControlModifier);
    QCOMPARE(Left->SelectedEntries(), QStringList{"four"});
    Click(1);
    Click(3, Qt::ShiftModifier);
    QCOMPARE(Left->SelectedEntries(), (QStringList{"two", "three", "four"}));
}

void ListBoxTest::APlainPressOnASelectedEntryLeavesOnlyThatOne()
{
    Click(0);
    Click(2, Qt::ShiftModifier);
    Press(Qt::LeftButton, 1);
    QCOMPARE(Left->SelectedEntries(), QStringList{"two"});
}

void ListBoxTest::AListWithSingleSelectionHoldsOneEntry()
{
    Left->setSelectionMode(QAbstractItemView::SingleSelection);
    Click(0);
    Click(2, Qt::ControlModifier);
    QCOMPARE(Left->SelectedEntries(), QStringList{"three"});
}

void ListBoxTest::ARightPressNeverChangesTheSelection()
{
    Click(0);
    Click(2, Qt::ControlModifier);
    for (const Qt::KeyboardModifiers keys : {Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}) {
        Press(Qt::RightButton, 4, keys);
        Release(Qt::RightButton, *Left);
        QCOMPARE(Left->SelectedEntries(), (QStringList{"one", "three"}));
        QCOMPARE(Left->ListIndex(), 2);
    }
}

void ListBoxTest::AMiddlePressNeverChangesTheSelection()
{
    Click(0);
    Press(Qt::MiddleButton, 4);
    Release(Qt::MiddleButton, *Left);
    QCOMPARE(Left->SelectedEntries(), QStringList{"one"});
}

void ListBoxTest::AMoveWithTheButtonDownSelectsNothingMore()
{
    Press(Qt::LeftButton, 0);
    for (int row = 1; row < 4; ++row) QTest::mouseMove(Left->viewport(), Middle(*Left, row));
    QCOMPARE(Left->SelectedEntries(), QStringList{"one"});
    Release(Qt::LeftButton, *Left);
    QCOMPARE(Left->SelectedEntries(), QStringList{"one"});
}

void ListBoxTest::APressBeginsADragAndItsReleaseEndsIt_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("right") << Qt::RightButton;
}

void ListBoxTest::APressBeginsADragAndItsReleaseEndsIt()
{
    QFETCH(const Qt::MouseButton, button);
    QSignalSpy dropped(Right, &ListBox::DragDropped);
    QVERIFY(!Left->IsDragging());
    Press(button, 1);
    QVERIFY(Left->IsDragging());
    QCOMPARE(dropped.count(), 0);
    Release(button, *Right);
    QVERIFY(!Left->IsDragging());
    QCOMPARE(dropped.count(), 1);
}

void ListBoxTest::TheReleaseDropsOnTheListUnderThePointer()
{
    QSignalSpy own(Left, &ListBox::DragDropped);
    QSignalSpy other(Right, &ListBox::DragDropped);
    Press(Qt::RightButton, 0);
    Release(Qt::RightButton, *Right->viewport());
    QCOMPARE(own.count(), 0);
    QCOMPARE(other.count(), 1);
    QCOMPARE(other[0][0].value<QWidget*>(), Left);
    QCOMPARE(other[0][1].toPoint(), Right->viewport()->rect().center());
}

void ListBoxTest::TheReleaseOverTheOwnListDropsThere()
{
    QSignalSpy own(Left, &ListBox::DragDropped);
    Press(Qt::LeftButton, 0);
    Release(Qt::LeftButton, *Left);
    QCOMPARE(own.count(), 1);
    QCOMPARE(own[0][0].value<QWidget*>(), Left);
}

void ListBoxTest::TheReleaseBesideAllListsDropsNowhere()
{
    QSignalSpy own(Left, &ListBox::DragDropped);
    QSignalSpy other(Right, &ListBox::DragDropped);
    Press(Qt::RightButton, 0);
    Release(Qt::RightButton, *Beside);
    QVERIFY(!Left->IsDragging());
    QCOMPARE(own.count() + other.count(), 0);
}

void ListBoxTest::TheReleaseOfAnotherButtonEndsNothing()
{
    QSignalSpy other(Right, &ListBox::DragDropped);
    Press(Qt::RightButton, 0);
    Press(Qt::LeftButton, 2);
    Release(Qt::LeftButton, *Right);
    QVERIFY(Left->IsDragging());
    QCOMPARE(other.count(), 0);
    QCOMPARE(Left->SelectedEntries(), QStringList());
    Release(Qt::RightButton, *Right);
    QCOMPARE(other.count(), 1);
}

void ListBoxTest::AHiddenListDragsNoLonger()
{
    QSignalSpy other(Right, &ListBox::DragDropped);
    Press(Qt::LeftButton, 0);
    Left->hide();
    QVERIFY(!Left->IsDragging());
    Release(Qt::LeftButton, *Right);
    QCOMPARE(other.count(), 0);
}

void ListBoxTest::ClickedComesBeforeTheDrop()
{
    QStringList order;
    connect(Left, &ListBox::Clicked, Left, [&] { order += "clicked"; });
    connect(Right, &ListBox::DragDropped, Right, [&] { order += "dropped"; });
    Press(Qt::LeftButton, 0);
    Release(Qt::LeftButton, *Right);
    QCOMPARE(order, (QStringList{"clicked", "dropped"}));
}

void ListBoxTest::EveryPressTellsThatADragHasBegun_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<QStringList>("selected");
    QTest::newRow("left") << Qt::LeftButton << QStringList{"two"};
    QTest::newRow("right") << Qt::RightButton << QStringList{"one"};
    QTest::newRow("middle") << Qt::MiddleButton << QStringList{"one"};
}

void ListBoxTest::EveryPressTellsThatADragHasBegun()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(QStringList, selected);
    Click(0);
    QList<QStringList> selections;
    connect(Left, &ListBox::DragBegun, Left, [&] { selections += Left->SelectedEntries(); });
    Press(button, 1);
    QCOMPARE(selections, QList<QStringList>{selected});
    Release(button, *Left);
    QCOMPARE(selections.size(), 1);
}

void ListBoxTest::ADragIsShownByThePointer()
{
    QWidget* viewport = Left->viewport();
    const Qt::CursorShape before = viewport->cursor().shape();
    Press(Qt::RightButton, 0);
    QTest::mouseMove(viewport, viewport->mapFromGlobal(Right->mapToGlobal(Right->rect().center())));
    QCOMPARE(viewport->cursor().shape(), Qt::DragCopyCursor);
    QTest::mouseMove(viewport, viewport->mapFromGlobal(Beside->mapToGlobal(Beside->rect().center())));
    QCOMPARE(viewport->cursor().shape(), Qt::ForbiddenCursor);
    Release(Qt::RightButton, *Beside);
    QCOMPARE(viewport->cursor().shape(), before);
}

void ListBoxTest::ALeftPressBelowTheEntriesIsNoClick()
{
    QSignalSpy clicked(Left, &ListBox::Clicked);
    QTest::mouseClick(Left->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(8, Left->viewport()->height() - 3));
    QCOMPARE(clicked.count(), 0);
}

void ListBoxTest::ARightPressIsNoClick()
{
    QSignalSpy clicked(Left, &ListBox::Clicked);
    Press(Qt::RightButton, 0);
    Release(Qt::RightButton, *Left);
    QCOMPARE(clicked.count(), 0);
}

void ListBoxTest::KeysMoveTheSelectionAndAreNoClick()
{
    Click(0);
    QSignalSpy clicked(Left, &ListBox::Clicked);
    QTest::keyClick(Left, Qt::Key_Down);
    QCOMPARE(Left->SelectedEntries(), QStringList{"two"});
    QTest::keyClick(Left, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(Left->SelectedEntries(), (QStringList{"two", "three"}));
    QTest::keyClick(Left, Qt::Key_Space);
    QTest::keyClick(Left, Qt::Key_End);
    QCOMPARE(Left->SelectedEntries(), QStringList{"five"});
    QCOMPARE(clicked.count(), 0);
    QVERIFY(!Left->IsDragging());
}

void ListBoxTest::ReturnAndADoubleClickMeanTheSame()
{
    QSignalSpy doubled(Left, &ListBox::DblClicked);
    Click(2);
    QTest::keyClick(Left, Qt::Key_Return);
    QCOMPARE(doubled.count(), 1);
    QTest::keyClick(Left, Qt::Key_Enter);
    QCOMPARE(doubled.count(), 2);
    QTest::mouseDClick(Left->viewport(), Qt::LeftButton, Qt::NoModifier, Middle(*Left, 2));
    QCOMPARE(doubled.count(), 3);
    QTest::mouseDClick(Left->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(8, Left->viewport()->height() - 3));
    QTest::mouseDClick(Left->viewport(), Qt::RightButton, Qt::NoModifier, Middle(*Left, 2));
    QCOMPARE(doubled.count(), 3);
}

void ListBoxTest::ReturnInAnEmptyListMeansNothing()
{
    QSignalSpy doubled(Left, &ListBox::DblClicked);
    Left->Clear();
    Left->setFocus();
    QTest::keyClick(Left, Qt::Key_Return);
    QCOMPARE(doubled.count(), 0);
}

void ListBoxTest::DeleteIsReported()
{
    QSignalSpy deleted(Left, &ListBox::DeletePressed);
    Click(2);
    QTest::keyClick(Left, Qt::Key_Delete);
    QCOMPARE(deleted.count(), 1);
    QCOMPARE(Left->Count(), 5);
}

void ListBoxTest::EntriesGoBackAsTheyCame()
{
    const QString odd = QString::fromUtf8("caf\xC3\xA9 \t\x01 ") + QChar(0xDC80) + "  end ";
    Left->SetEntries({odd});
    Left->Append("second");
    Left->Append(QStringList{"third", odd});
    QCOMPARE(Left->Entries(), (QStringList{odd, "second", "third", odd}));
    QCOMPARE(Left->Entry(3), odd);
    Left->SetListIndex(3);
    QCOMPARE(Left->SelectedEntries(), QStringList{odd});
}

void ListBoxTest::NewEntriesLoseTheSelection()
{
    Click(2);
    Left->SetEntries({"a", "b", "c", "d"});
    QCOMPARE(Left->SelectedEntries(), QStringList());
    QCOMPARE(Left->ListIndex(), -1);
}

void ListBoxTest::TheSelectionIsInListOrder()
{
    for (const int row : {4, 0, 2}) Click(row, Qt::ControlModifier);
    QCOMPARE(Left->SelectedEntries(), (QStringList{"one", "three", "five"}));
}

void ListBoxTest::ManyEntriesCostInProportionToTheirNumber()
{
    const auto milliseconds = [this](int count) {
        QStringList entries;
        entries.reserve(count);
        for (int n = 0; n < count; ++n) entries += QString("-rw-r--r-- 1 ann ann %1 Mar 09 17:05 file %1").arg(n);
        std::vector<double> runs;
        for (int run = 0; run < 3; ++run) {
            Left->Clear();
            QApplication::processEvents();
            const std::clock_t start = std::clock();
            Left->SetEntries(entries);
            // The rows are laid out a batch at a time, with events in between.
            while (!Left->visualRect(Left->model()->index(count - 1, 0)).isValid())
                QApplication::processEvents(QEventLoop::WaitForMoreEvents);
            runs.push_back(1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
        }
        if (Left->Count() != count) qFatal("Entries are missing");
        return *std::min_element(runs.begin(), runs.end());
    };
    const double few = milliseconds(20000);
    const double many = milliseconds(200000);
    qInfo("20,000 entries: %.1f ms, 200,000 entries: %.1f ms", few, many);
    // Ten times as many: four times that leaves room for a busy machine; a square would be a hundred.
    QVERIFY2(many < 40 * few + 20, qPrintable(QString("%1 ms and %2 ms").arg(few).arg(many)));
    QCOMPARE(Left->Entry(199999).right(6), QString("199999"));
    Left->scrollToBottom();
    QVERIFY(Left->viewport()->rect().intersects(Left->visualRect(Left->model()->index(199999, 0))));
}

QTEST_MAIN(ListBoxTest)
#include "list_box_test.moc"

#include "controls/list_box.h"

#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

/// What ends a drag besides the release that drops.
class DragEndTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EscapeEndsItWhereverTheFocusIs();
    void TheLossOfTheFocusEndsIt();
    void AnotherWindowEndsIt();
    void AReleaseOutsideTheWindowDropsNowhere();
    void AfterAnEndedDragTheNextOneWorks();
    void EscapeWithoutADragGoesToWhoHasTheFocus();

private:
    void BeginOver(QWidget& onto);

    void Release() { QTest::mouseRelease(From->viewport(), Qt::RightButton, Qt::NoModifier, Pointer); }

    std::unique_ptr<QWidget> Window;
    ListBox* From = nullptr;
    ListBox* Onto = nullptr;
    QLineEdit* Field = nullptr;
    QPoint Pointer;
    int Drops = 0;
};

void DragEndTest::init()
{
    Window = std::make_unique<QWidget>();
    auto* column = new QVBoxLayout(Window.get());
    column->addWidget(From = new ListBox);
    column->addWidget(Onto = new ListBox);
    column->addWidget(Field = new QLineEdit);
    From->SetEntries({"one", "two"});
    Drops = 0;
    connect(Onto, &ListBox::DragDropped, this, [this] { ++Drops; });
    Window->resize(300, 400);
    Window->show();
    Window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(Window.get()));
}

void DragEndTest::cleanup()
{
    Window.reset();
}

void DragEndTest::BeginOver(QWidget& onto)
{
    QTest::mousePress(From->viewport(), Qt::RightButton, Qt::NoModifier, QPoint(5, 5));
    Pointer = From->viewport()->mapFromGlobal(onto.mapToGlobal(onto.rect().center()));
    QTest::mouseMove(From->viewport(), Pointer);
    QVERIFY(From->IsDragging());
    QCOMPARE(From->viewport()->cursor().shape(), Qt::DragCopyCursor);
}

void DragEndTest::EscapeEndsItWhereverTheFocusIs()
{
    BeginOver(*Onto);
    QTest::keyClick(Window.get(), Qt::Key_Escape);
    QVERIFY(!From->IsDragging());
    QVERIFY(From->viewport()->cursor().shape() != Qt::DragCopyCursor);
    Release();
    QCOMPARE(Drops, 0);
}

void DragEndTest::TheLossOfTheFocusEndsIt()
{
    BeginOver(*Onto);
    Field->setFocus();
    QVERIFY(!From->IsDragging());
    Release();
    QCOMPARE(Drops, 0);
}

void DragEndTest::AnotherWindowEndsIt()
{
    BeginOver(*Onto);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QVERIFY(!From->IsDragging());
    Release();
    QCOMPARE(Drops, 0);
}

void DragEndTest::AReleaseOutsideTheWindowDropsNowhere()
{
    BeginOver(*Onto);
    Pointer = QPoint(-900, -900);
    Release();
    QVERIFY(!From->IsDragging());
    QCOMPARE(Drops, 0);
}

void DragEndTest::AfterAnEndedDragTheNextOneWorks()
{
    BeginOver(*Onto);
    QTest::keyClick(Window.get(), Qt::Key_Escape);
    Release();
    BeginOver(*Onto);
    Release();
    QCOMPARE(Drops, 1);
}

void DragEndTest::EscapeWithoutADragGoesToWhoHasTheFocus()
{
    BeginOver(*Onto);
    Release();
    int escapes = 0;

    struct Counter : QObject {
        explicit Counter(int& count) : Count(count) {}

        bool eventFilter(QObject*, QEvent* event) override
        {
            Count += event->type() == QEvent::KeyPress ? 1 : 0;
            return false;
        }

        int& Count;
    } counter(escapes);

    Field->installEventFilter(&counter);
    Field->setFocus();
    QTest::keyClick(Field, Qt::Key_Escape);
    QCOMPARE(escapes, 1);
    QVERIFY(!From->IsDragging());
}

QTEST_MAIN(DragEndTest)
#include "drag_end_test.moc"

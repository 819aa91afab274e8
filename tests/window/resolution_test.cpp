#include "support/window_fixture.h"

#include <QMenu>

/// The menu that changes the resolution of the desktop.
class ResolutionTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ARightPressOnTheFreeAreaShowsTheMenu();
    void OtherButtonsShowNothing();
    void ControlsAreNoFreeArea_data();
    void ControlsAreNoFreeArea();
    void TheMenuKeyShowsItToo();
    void ThereAreFourResolutionsAndCancel();
    void TheCurrentResolutionIsMarked();
    void At1280By1024NothingIsMarked();
    void PickingChangesTheMode_data();
    void PickingChangesTheMode();
    void TheMarksShowTheResolutionFromBefore();
    void ARefusedModeChangesNothingAndSaysNothing();
    void ADisplayThatCannotBeTalkedToIsReported();
    void CancelUnloadsTheWindow();
    void WhereNothingCanBeChangedTheEntriesSayWhy();
    void TheWindowItselfIsNeverShown();
    void EscapeClosesTheMenu();

private:
    QPoint FreePlace() const;
    QMenu* OpenMenu() const;
    QAction& Entry(const char* name) const;
    QStringList Marked() const;

    QMenu* Menu() const { return Program->Window->findChild<QMenu*>("mnuScreen"); }

    std::unique_ptr<WindowFixture> Program;
};

void ResolutionTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void ResolutionTest::cleanup()
{
    Program.reset();
}

/// A place on the window that no control covers.
QPoint ResolutionTest::FreePlace() const
{
    const QWidget& frame = Program->Control<QWidget>("SiteFrame");
    return frame.mapTo(Program->Window.get(), QPoint(2, 2));
}

QMenu* ResolutionTest::OpenMenu() const
{
    QTest::mousePress(Program->Window.get(), Qt::RightButton, {}, FreePlace());
    return Menu();
}

QAction& ResolutionTest::Entry(const char* name) const
{
    auto* entry = Program->Window->findChild<QAction*>(name);
    if (entry == nullptr) qFatal("The menu has no entry %s", name);
    return *entry;
}

QStringList ResolutionTest::Marked() const
{
    QStringList marked;
    for (const QAction* entry : Menu()->actions())
        if (entry->isChecked()) marked += entry->objectName();
    return marked;
}

void ResolutionTest::ARightPressOnTheFreeAreaShowsTheMenu()
{
    QVERIFY(Menu() == nullptr);
    QVERIFY(OpenMenu() != nullptr);
    QVERIFY(Menu()->isVisible());
    QCOMPARE(Menu()->pos(), Program->Window->mapToGlobal(FreePlace()));
}

void ResolutionTest::OtherButtonsShowNothing()
{
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton})
        QTest::mouseClick(Program->Window.get(), button, {}, FreePlace());
    QVERIFY(Menu() == nullptr);
}

void ResolutionTest::ControlsAreNoFreeArea_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"cmdConnect", "Command4", "Check2", "Slider1", "txtUserName", "Combo1", "lstRemoteFiles",
                             "List1", "Image1", "lblURL", "sbFTP"})
        QTest::newRow(name) << name;
}

void ResolutionTest::ControlsAreNoFreeArea()
{
    QFETCH(const QString, name);
    auto& control = Program->Control<QWidget>(qPrintable(name));
    // Through the window, as the system delivers it.
    QTest::mouseClick(Program->Window->windowHandle(), Qt::RightButton, {},
                      control.mapTo(Program->Window.get(), control.rect().center()));
    QVERIFY(Menu() == nullptr);
    for (QWidget* popup : QApplication::topLevelWidgets())
        if (popup->windowType() == Qt::Popup) popup->close();
}

void ResolutionTest::TheMenuKeyShowsItToo()
{
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(20, 20), Program->Window->mapToGlobal(QPoint(20, 20)));
    QApplication::sendEvent(Program->Window.get(), &key);
    QVERIFY(Menu() != nullptr && Menu()->isVisible());
}

void ResolutionTest::ThereAreFourResolutionsAndCancel()
{
    QStringList entries;
    for (const QAction* entry : OpenMenu()->actions())
        entries += entry->objectName() + (entry->isSeparator() ? QString() : ' ' + entry->text());
    QCOMPARE(entries, (QStringList{"Res640x480 640x480", "Res800x600 800x600", "Res1024x768 1024x768",
                                   "Res1152x864 1152x864", "sep1", "mnuCancel &Cancel"}));
}

void ResolutionTest::TheCurrentResolutionIsMarked()
{
    Program->Screen.Size = {1024, 768};
    OpenMenu();
    QCOMPARE(Marked(), QStringList{"Res1024x768"});
}

void ResolutionTest::At1280By1024NothingIsMarked()
{
    Program->Screen.Size = {1280, 1024};
    OpenMenu();
    QCOMPARE(Marked(), QStringList());
}

void ResolutionTest::PickingChangesTheMode_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QSize>("size");
    QTest::newRow("640") << "Res640x480" << QSize(640, 480);
    QTest::newRow("800") << "Res800x600" << QSize(800, 600);
    QTest::newRow("1024") << "Res1024x768" << QSize(1024, 768);
    QTest::newRow("1152") << "Res1152x864" << QSize(1152, 864);
}

void ResolutionTest::PickingChangesTheMode()
{
    QFETCH(const QString, entry);
    QFETCH(const QSize, size);
    QMenu* menu = OpenMenu();
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(&Entry(qPrintable(entry))).center());
    QCOMPARE(Program->Screen.Asked, QList<QSize>{size});
    QVERIFY(Program->Questions.Questions.empty());
}

void ResolutionTest::TheMarksShowTheResolutionFromBefore()
{
    Program->Screen.Size = {1024, 768};
    OpenMenu();
    Entry("Res800x600").trigger();
    QCOMPARE(Program->Screen.Size, QSize(800, 600));
    QCOMPARE(Marked(), QStringList{"Res1024x768"});
    Entry("Res640x480").trigger();
    QCOMPARE(Marked(), QStringList{"Res800x600"});
}

void ResolutionTest::ARefusedModeChangesNothingAndSaysNothing()
{
    Program->Screen.Size = {1024, 768};
    OpenMenu();
    Entry("Res1152x864").trigger();
    QCOMPARE(Program->Screen.Asked, QList<QSize>{QSize(1152, 864)});
    QCOMPARE(Program->Screen.Size, QSize(1024, 768));
    QVERIFY(Program->Questions.Questions.empty());
    QCOMPARE(Marked(), QStringList{"Res1024x768"});
}

void ResolutionTest::ADisplayThatCannotBeTalkedToIsReported()
{
    Program->Screen.Complaint = "The display cannot change its resolution.";
    OpenMenu();
    Entry("Res800x600").trigger();
    QCOMPARE(Program->Questions.Texts(), QStringList{"Resolution not supported!"});
    QCOMPARE(Program->Questions.Questions[0].Title, QString("Resolution Error!"));
    QCOMPARE(Program->Questions.Questions[0].Choice, Question::Ok);
}

void ResolutionTest::CancelUnloadsTheWindow()
{
    OpenMenu();
    Program->Screen.Size = {800, 600};
    Entry("mnuCancel").trigger();
    QTRY_VERIFY(Menu() == nullptr);
    QVERIFY(Program->Window->findChild<QWidget*>("ScreenRes") == nullptr);
    QVERIFY(Program->Screen.Asked.isEmpty());
    // Loaded anew, it looks anew.
    OpenMenu();
    QCOMPARE(Marked(), QStringList{"Res800x600"});
}

void ResolutionTest::WhereNothingCanBeChangedTheEntriesSayWhy()
{
    Program->Screen.Why = "On this desktop only its own settings change the resolution.";
    QVERIFY(OpenMenu()->toolTipsVisible());
    for (const char* name : {"Res640x480", "Res800x600", "Res1024x768", "Res1152x864"}) {
        QVERIFY2(!Entry(name).isEnabled(), name);
        QCOMPARE(Entry(name).toolTip(), Program->Screen.Why);
    }
    QVERIFY(Entry("mnuCancel").isEnabled());
}

void ResolutionTest::TheWindowItselfIsNeverShown()
{
    OpenMenu();
    QVERIFY(Program->Control<QWidget>("ScreenRes").isHidden());
}

void ResolutionTest::EscapeClosesTheMenu()
{
    QTest::keyClick(OpenMenu(), Qt::Key_Escape);
    QVERIFY(!Menu()->isVisible());
    QVERIFY(Program->Screen.Asked.isEmpty());
}

QTEST_MAIN(ResolutionTest)
#include "resolution_test.moc"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "support/clipping.h"
#include "support/sample_form.h"

#include <QApplication>
#include <QHash>
#include <QLayout>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <memory>

class FormTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EveryControlIsThereWithItsNumbers_data();
    void EveryControlIsThereWithItsNumbers();
    void EveryControlHasTheKindItsHandlersNeed();
    void MenuEntriesHoldTheirNumbersInOrder();
    void TheDesignValuesAreThere();
    void TheFilterOffersTenPatternsInOrder();
    void ThereAreThirtyPicturesInOnePlace();
    void HiddenControlsWaitForTheirTime();

    void TheWindowKeepsItsHeights();
    void TheLowerHeightCoversTheCommandLineWithoutMovingAnything();
    void CoveredControlsLeaveTheTabOrder();
    void TheLogCoversTheListsWithoutMovingAnything();

    void TabFollowsTheLayout();
    void MnemonicsReachTheirFields();
    void MnemonicsAreUniqueAmongButtonsAndMenus();
    void EveryControlHasANameToBeReadOut();
    void EveryPictureButtonHasAPicture();

    void NothingIsClipped_data();
    void NothingIsClipped();

private:
    void Speak();
    void Show();
    QList<QWidget*> TabOrder() const;

    QFont FontBefore;
    std::unique_ptr<SampleForm> Form;
};

namespace {

struct Numbers {
    const char* Name;
    const char* Tag;
    const char* ToolTip;
};

const Numbers Labels[] = {
    {"LblSiteFiles", "20", ""},   {"LblYourFiles", "21", ""}, {"LblYourFolders", "22", ""},
    {"LblDoubleClick", "23", ""}, {"LblStatus", "24", ""},    {"LblSpace", "25", ""},
    {"LblCommandLine", "26", ""}, {"lblURL", "27", ""},       {"LblPort", "29", ""},
    {"lblUserID", "30", ""},      {"lblPassword", "31", ""},  {"LblAccess", "32", ""},
    {"LblProxy", "33", ""},       {"Label13", "34", ""},      {"Label1", "36", ""},
    {"Label15", "37", ""},        {"LblTimer", "999", ""},    {"DrvSpace", "999", "63"},
    {"DrvSpaceTrue", "", ""},     {"Label2_0", "", ""},       {"Label2_1", "", ""},
    {"SlideVal", "", ""},         {"sbFTP", "", ""},          {"sbFTP2", "", ""},
    {"lblAds", "", ""},
};

const Numbers Buttons[] = {
    {"cmdConnect", "40", "58"},
    {"Command1", "41", "59"},
    {"Command2", "39", "68"},
    {"Command3", "38", "64"},
    {"Command4", "999", "53"},
    {"Command5", "999", "52"},
    {"Command6", "999", "51"},
    {"Command7", "999", "50"},
    {"Command8", "999", "56"},
    {"Command9", "999", "47"},
    {"Command10", "999", "48"},
    {"Command11", "999", "65"},
    {"Command12", "999", "55"},
    {"Command13", "999", "67"},
    {"Command14", "28", "70"},
    {"Command15", "999", "62"},
    {"Command16", "999", "49"},
    {"Command17", "999", "71"},
    {"Command18", "999", "74"},
    {"Command19", "999", "49"},
    {"Command20", "999", "50"},
    {"Command21", "999", "51"},
    {"cmdPaste", "999", "54"},
    {"cmdPaste2", "999", "69"},
    {"cmdPause", "999", "66"},
    {"Image1", "", "61"},
    {"Image2", "", "60"},
    {"Image3", "999", "76"},
    {"Command22", "777", "Show or hide the activity log"},
    {"Command23", "777", "Save the activity log"},
    {"Command25", "777", "Clear the activity log"},
};

const Numbers Fields[] = {
    {"txtURL", "999", ""},
    {"txtUserName", "", ""},
    {"txtPassword", "", ""},
    {"txtPort", "", ""},
    {"txtProxy", "57", ""},
    {"txtCom", "", ""},
    {"Combo1", "46", ""},
    {"Combo2", "42", ""},
    {"Drive1", "999", ""},
    {"Dir1", "999", ""},
    {"List1", "999", ""},
    {"lstRemoteFiles", "999", ""},
    {"Slider1", "777", "Set Request Timeout"},
    {"Check1", "35", ""},
    {"Check2", "", ""},
    {"List2", "", ""},
};

const QStringList Patterns = {
    "*.html;*.htm*",
    "*.gif;*.jpg;*.bmp*",
    "*.mpg;*.mov;*.avi;*.mpeg*",
    "*.txt;*.doc*",
    "*.html;*.htm;*.gif;*.jpg;*.bmp;*.mpeg;*.mpg;*.mov;*.avi;*.txt;*.doc;*.wav;*.mid*",
    "*.zip;*.wav;*.mid;*.midi;*.mp3;*.exe*",
    "*.gif;*.jpg*",
    "*.gif*",
    "*.jpg*",
    "*.*",
};

/// The controls that only the greater height uncovers.
const QStringList CommandLine = {"txtCom", "cmdPaste2", "Command14"};

bool CanBeReached(const QWidget& widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) && widget.isVisible() && widget.isEnabled() &&
           widget.focusProxy() == nullptr;
}

QString Words(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
    return {};
}

QStringList EntryNames(const QMenu& menu)
{
    QStringList names;
    for (const QAction* entry : menu.actions())
        if (!entry->isSeparator()) names += entry->objectName() + ' ' + entry->text();
    return names;
}

QHash<QString, QRect> Places(const QWidget& form)
{
    QHash<QString, QRect> places;
    for (const QWidget* widget : form.findChildren<QWidget*>())
        if (widget->isVisible() && !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_"))
            places.insert(widget->objectName(), {widget->mapTo(&form, QPoint()), widget->size()});
    return places;
}

}  // namespace

void FormTest::init()
{
    FontBefore = QApplication::font();
    Form = std::make_unique<SampleForm>();
}

void FormTest::cleanup()
{
    Form.reset();
    QApplication::setFont(FontBefore);
}

void FormTest::Speak()
{
    ErrorRecord errors;
    SetCaptions(*Form, Language(), errors);
    SetAccessibleNames(*Form);
}

void FormTest::Show()
{
    Form->show();
    QVERIFY(QTest::qWaitForWindowActive(Form.get()));
}

/// Where the Tab key leads from the first control until it comes back.
QList<QWidget*> FormTest::TabOrder() const
{
    QList<QWidget*> order;
    Form->txtURL->setFocus();
    while (!order.contains(QApplication::focusWidget())) {
        order += QApplication::focusWidget();
        QTest::keyClick(Form.get(), Qt::Key_Tab);
    }
    return order;
}

void FormTest::EveryControlIsThereWithItsNumbers_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("toolTip");
    const auto add = [](const Numbers& numbers) {
        QTest::newRow(numbers.Name) << QString(numbers.Tag) << QString(numbers.ToolTip);
    };
    std::for_each(std::begin(Labels), std::end(Labels), add);
    std::for_each(std::begin(Buttons), std::end(Buttons), add);
    std::for_each(std::begin(Fields), std::end(Fields), add);
}

void FormTest::EveryControlIsThereWithItsNumbers()
{
    QFETCH(const QString, tag);
    QFETCH(const QString, toolTip);
    const auto* control = Form->findChild<QWidget*>(QTest::currentDataTag());
    QVERIFY(control != nullptr);
    QCOMPARE(control->property("Tag").toString(), tag);
    QCOMPARE(control->toolTip(), toolTip);
}

void FormTest::EveryControlHasTheKindItsHandlersNeed()
{
    QCOMPARE(Form->objectName(), QString("Tolvane"));
    for (const Numbers& numbers : Labels) QVERIFY2(Form->findChild<QLabel*>(numbers.Name), numbers.Name);
    for (const Numbers& numbers : Buttons) QVERIFY2(Form->findChild<QAbstractButton*>(numbers.Name), numbers.Name);
    for (const char* name : {"Image1", "Image2", "Image3"}) QVERIFY2(Form->findChild<Picture*>(name), name);
    for (const char* name : {"List1", "lstRemoteFiles", "Dir1"}) QVERIFY2(Form->findChild<ListBox*>(name), name);
    QVERIFY(!Form->findChild<QWidget*>("Command24"));
    QCOMPARE(Form->Dir1->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(Form->List1->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(Form->lstRemoteFiles->selectionMode(), QAbstractItemView::ExtendedSelection);
    for (const QComboBox* box : {Form->txtURL, Form->txtCom, Form->Combo2}) {
        QVERIFY2(box->isEditable(), qPrintable(box->objectName()));
        QCOMPARE(box->insertPolicy(), QComboBox::NoInsert);
    }
    QVERIFY(!Form->Combo1->isEditable());
    QCOMPARE(Form->txtPassword->echoMode(), QLineEdit::Password);
}

void FormTest::MenuEntriesHoldTheirNumbersInOrder()
{
    QStringList menus;
    for (const QAction* action : Form->MenuBar->actions())
        menus += action->menu()->objectName() + ' ' + action->menu()->title();
    QCOMPARE(menus, (QStringList{"mnuOps 0", "Proto 9", "mnuChkMesg 14", "mnuHelp1 16"}));
    QCOMPARE(EntryNames(*Form->mnuOps),
             (QStringList{"mnuWatchClip 1", "mnuCommand 2", "mnuNT 3", "mnuConvertLower 4", "mnuSavFTPAddress 5",
                          "mnuSaveFolder 6", "mnuUNIX 7", "mnuAlarm Alarm", "mnuLamguage 45", "mnuExit 8"}));
    QCOMPARE(EntryNames(*Form->Proto),
             (QStringList{"Protocol2_1 10", "Protocol2_2 11", "Protocol2_3 12", "Protocol2_4 13"}));
    QCOMPARE(EntryNames(*Form->mnuChkMesg), QStringList{"mnuMesgUpdate 15"});
    QCOMPARE(EntryNames(*Form->mnuHelp1), (QStringList{"mnuHelp2 17", "mnuAbout 18", "mnuFree 19"}));
    QStringList checked;
    for (const QAction* action : Form->findChildren<QAction*>())
        if (action->isChecked()) checked += action->objectName();
    QCOMPARE(checked, QStringList{"Protocol2_2"});
}

void FormTest::TheDesignValuesAreThere()
{
    QCOMPARE(Form->txtURL->currentText(), QString());
    QCOMPARE(Form->txtPort->text(), QString("21"));
    QCOMPARE(Form->txtProxy->text(), QString("Enter proxy address here"));
    QVERIFY(!Form->txtProxy->isEnabled());
    QCOMPARE(Form->txtCom->currentText(), QString("ftp://"));
    QCOMPARE(Form->Combo1->currentIndex(), -1);
    QCOMPARE(Form->Combo1->count(), 3);
    QCOMPARE(Form->Combo1->itemText(0), QString("Default"));
    QCOMPARE(Form->Combo1->itemText(1), QString("Direct Connection"));
    QCOMPARE(Form->Combo1->itemText(2), QString("Use Proxy"));
    QCOMPARE(Form->Slider1->minimum(), 5);
    QCOMPARE(Form->Slider1->maximum(), 300);
    QCOMPARE(Form->Slider1->value(), 30);
    QCOMPARE(Form->SlideVal->text(), QString("30"));
    QCOMPARE(Form->sbFTP->text(), QString("Waiting ..."));
    QCOMPARE(Form->Check1->text(), QString("Disconnect when done."));
    QVERIFY(!Form->Check1->isEnabled());
    QCOMPARE(Form->Check2->text(), QString("Check for duplicates"));
    QCOMPARE(Form->Command22->text(), QString("L"));
    QCOMPARE(Form->Label2_0->text(), QString("0"));
    QCOMPARE(Form->Label2_1->text(), QString("0"));
    QVERIFY(!Form->cmdPaste->isEnabled());
    QVERIFY(!Form->cmdPaste2->isEnabled());
}

void FormTest::TheFilterOffersTenPatternsInOrder()
{
    QStringList offered;
    for (int index = 0; index < Form->Combo2->count(); ++index) offered += Form->Combo2->itemText(index);
    QCOMPARE(offered, Patterns);
    QCOMPARE(Form->Combo2->currentText(), QString("Filter"));
}

void FormTest::ThereAreThirtyPicturesInOnePlace()
{
    Show();
    for (int index = 0; index < 30; ++index) {
        const auto* picture = Form->findChild<Picture*>(QString("ads_%1").arg(index));
        QVERIFY(picture != nullptr);
        QCOMPARE(picture->parentWidget(), static_cast<QWidget*>(Form->AdsStrip));
        QCOMPARE(picture->geometry(), Form->AdsStrip->rect());
    }
    QVERIFY(!Form->findChild<QWidget*>("ads_30"));
}

void FormTest::HiddenControlsWaitForTheirTime()
{
    Show();
    for (const char* name : {"List2", "Command23", "Command25", "LblCommandLine", "Label15", "cmdPaste2", "LblTimer",
                             "cmdPause", "Command13", "DrvSpaceTrue", "TransferProgress"})
        QVERIFY2(Form->findChild<QWidget*>(name)->isHidden(), name);
}

void FormTest::TheWindowKeepsItsHeights()
{
    Show();
    QCOMPARE(Form->width(), SampleForm::FullSize.width());
    QVERIFY(Form->height() < SampleForm::FullSize.height());
    Form->resize(Form->width(), SampleForm::FullSize.height());
    QCOMPARE(Form->height(), 571);
    Form->resize(2000, 2000);
    QCOMPARE(Form->size(), SampleForm::FullSize);
}

void FormTest::TheLowerHeightCoversTheCommandLineWithoutMovingAnything()
{
    Show();
    const QHash<QString, QRect> before = Places(*Form);
    for (const QString& name : {QString("txtCom"), QString("Command14")})
        QVERIFY2(before.value(name).top() >= Form->height(), qPrintable(name));
    QVERIFY(before.value("StatusFrame").bottom() < Form->height());
    Form->UncoverCommandLine();
    QTRY_COMPARE(Form->height(), SampleForm::FullSize.height());
    QCoreApplication::sendPostedEvents();
    const QHash<QString, QRect> after = Places(*Form);
    for (const QString& name : CommandLine) QVERIFY2(after.value(name).bottom() < Form->height(), qPrintable(name));
    for (auto place = before.begin(); place != before.end(); ++place) {
        const auto* widget = Form->findChild<QWidget*>(place.key());
        if (widget == Form->Central || Form->CommandLineStrip->isAncestorOf(widget)) continue;
        QVERIFY2(after.value(place.key()) == place.value(), qPrintable(place.key()));
    }
}

void FormTest::CoveredControlsLeaveTheTabOrder()
{
    Show();
    QList<QWidget*> order = TabOrder();
    for (const QWidget* widget : order) QVERIFY2(!CommandLine.contains(widget->objectName()), "covered");
    const int lower = Form->height();
    Form->UncoverCommandLine();
    Form->cmdPaste2->setEnabled(true);
    QTRY_COMPARE(Form->height(), SampleForm::FullSize.height());
    order = TabOrder();
    for (const QString& name : CommandLine) QVERIFY2(order.contains(Form->findChild<QWidget*>(name)), qPrintable(name));
    Form->txtCom->setFocus();
    QVERIFY(Form->txtCom->hasFocus());
    Form->resize(Form->width(), lower);
    QTRY_COMPARE(Form->height(), lower);
    QVERIFY(!Form->txtCom->hasFocus());
    for (const QWidget* widget : TabOrder()) QVERIFY2(!CommandLine.contains(widget->objectName()), "covered again");
}

void FormTest::TheLogCoversTheListsWithoutMovingAnything()
{
    Show();
    const QHash<QString, QRect> before = Places(*Form);
    Form->ShowLog();
    QApplication::processEvents();
    const QHash<QString, QRect> after = Places(*Form);
    for (auto place = before.begin(); place != before.end(); ++place)
        if (!place.key().startsWith("ads") && place.key() != "AdsStrip" && place.key() != "lblAds" &&
            place.key() != "sbFTP")
            QVERIFY2(after.value(place.key()) == place.value(), qPrintable(place.key()));
    const QRect log(Form->List2->mapTo(Form.get(), QPoint()), Form->List2->size());
    for (const char* list : {"Dir1", "List1", "lstRemoteFiles"}) QVERIFY2(log.contains(before.value(list)), list);
    QCOMPARE(Form->childAt(before.value("List1").center()), Form->List2->viewport());
}

void FormTest::TabFollowsTheLayout()
{
    Speak();
    Show();
    Form->UncoverCommandLine();
    Form->ShowStopwatch();
    for (QWidget* widget : {static_cast<QWidget*>(Form->cmdPaste), static_cast<QWidget*>(Form->cmdPaste2),
                            static_cast<QWidget*>(Form->txtProxy), static_cast<QWidget*>(Form->Check1)})
        widget->setEnabled(true);
    QApplication::processEvents();
    const QList<QWidget*> order = TabOrder();
    for (const QWidget* widget : Form->findChildren<QWidget*>())
        if (CanBeReached(*widget)) QVERIFY2(order.contains(widget), qPrintable(widget->objectName()));
    // Frame by frame from top to bottom, and in a frame's row of buttons from left to right.
    QStringList frames;
    const QWidget* last = nullptr;
    for (const QWidget* widget : order) {
        const QWidget* frame = widget->parentWidget();
        while (frame->parentWidget() != Form->Content) frame = frame->parentWidget();
        if (frames.isEmpty() || frames.last() != frame->objectName()) frames += frame->objectName();
        const QPoint at = widget->mapTo(Form.get(), widget->rect().center());
        if (last != nullptr && last->parentWidget() == widget->parentWidget() &&
            qobject_cast<const QToolButton*>(last) && qobject_cast<const QToolButton*>(widget)) {
            const QPoint before = last->mapTo(Form.get(), last->rect().center());
            QVERIFY2(at.x() > before.x() || at.y() > before.y(), qPrintable(widget->objectName()));
        }
        last = widget;
    }
    QCOMPARE(frames, (QStringList{"SiteFrame", "VerbFrame", "PanelFrame", "StatusFrame", "CommandLineStrip"}));
}

void FormTest::MnemonicsReachTheirFields()
{
    const QHash<QString, QWidget*> fields = {
        {"lblURL", Form->txtURL},           {"lblUserID", Form->txtUserName},
        {"lblPassword", Form->txtPassword}, {"LblPort", Form->txtPort},
        {"LblAccess", Form->Combo1},        {"LblProxy", Form->txtProxy},
        {"Label13", Form->Slider1},         {"LblYourFolders", Form->Dir1},
        {"LblYourFiles", Form->List1},      {"LblSiteFiles", Form->lstRemoteFiles},
        {"LblCommandLine", Form->txtCom},
    };
    for (auto field = fields.begin(); field != fields.end(); ++field)
        QCOMPARE(Form->findChild<QLabel*>(field.key())->buddy(), field.value());
    Form->lblPassword->setText("&Kennwort:");
    Show();
    Form->txtURL->setFocus();
    QTest::keyClick(Form.get(), Qt::Key_K, Qt::AltModifier);
    QVERIFY(Form->txtPassword->hasFocus());
}

void FormTest::MnemonicsAreUniqueAmongButtonsAndMenus()
{
    Speak();
    QSet<QKeySequence> taken;
    QStringList captions;
    for (const QPushButton* button : Form->findChildren<QPushButton*>()) captions += button->text();
    for (const QAction* menu : Form->MenuBar->actions()) captions += menu->text();
    for (const QString& caption : captions) {
        const QKeySequence key = QKeySequence::mnemonic(caption);
        QVERIFY2(key.isEmpty() || !taken.contains(key), qPrintable(caption));
        taken += key;
    }
}

void FormTest::EveryControlHasANameToBeReadOut()
{
    Speak();
    for (const QWidget* widget : Form->findChildren<QWidget*>()) {
        const bool nested = widget->focusProxy() != nullptr || widget->objectName().startsWith("qt_");
        if (widget->focusPolicy() == Qt::NoFocus || nested || widget->objectName().isEmpty()) continue;
        const QString name = widget->accessibleName().isEmpty() ? Words(*widget) : widget->accessibleName();
        QVERIFY2(name.size() > 1, qPrintable(widget->objectName()));
        QVERIFY2(!name.contains(QRegularExpression("^[0-9]+$|&|:$")) || !Words(*widget).isEmpty(),
                 qPrintable(widget->objectName() + ' ' + name));
    }
    QCOMPARE(Form->Command7->accessibleName(), QString("Erase Highlighted File"));
    QCOMPARE(Form->Image1->accessibleName(), QString("Click to SEND files to FTP site"));
    QCOMPARE(Form->Command22->accessibleName(), QString("Show or hide the activity log"));
    QCOMPARE(Form->txtUserName->accessibleName(), QString("User ID"));
    QCOMPARE(Form->Combo2->accessibleName(), QString("Filter"));
}

void FormTest::EveryPictureButtonHasAPicture()
{
    for (const QAbstractButton* button : Form->findChildren<QAbstractButton*>()) {
        const bool named = !button->objectName().isEmpty() && !button->objectName().startsWith("qt_");
        if (!named || button->objectName().startsWith("ads_") || !button->text().isEmpty()) continue;
        QVERIFY2(!button->icon().isNull(), qPrintable(button->objectName()));
        QVERIFY2(button->icon().availableSizes().contains(button->iconSize()) ||
                     button->icon().actualSize(button->iconSize()) == button->iconSize(),
                 qPrintable(button->objectName()));
    }
}

void FormTest::NothingIsClipped_data()
{
    QTest::addColumn<int>("percent");
    QTest::newRow("the usual font") << 100;
    QTest::newRow("a font 20 % wider") << 120;
}

void FormTest::NothingIsClipped()
{
    QFETCH(const int, percent);
    QFont font = QApplication::font();
    font.setStretch(percent);
    QApplication::setFont(font);
    Form = std::make_unique<SampleForm>();
    Speak();
    Form->FillIn();
    Show();
    Form->UncoverCommandLine();
    Form->ShowStopwatch();
    QApplication::processEvents();
    QCOMPARE(Clipping::Of(*Form).join("; "), QString());
}

QTEST_MAIN(FormTest)
#include "form_test.moc"

// Works the controls of a program from within, as a user would: a generic plugin of the toolkit, so that it is the
// finished executable that is tested. It takes its steps from TOLVANE_TYPIST, separated by "|":
//
//   type NAME TEXT     writes a text into a field
//   click NAME         presses a button
//   rows NAME COUNT    waits until a list has so many rows
//   pick NAME ROW      clicks on a row of a list
//   shows NAME TEXT    waits until a label shows a text
//   asks TEXT          waits until somebody asks a question that has a button of this name
//   answer TEXT        presses it
//   choose NAME        chooses an entry of the menu
//   close NAME         closes a window
//
// On Windows TOLVANE_TYPIST_KEY names the key that takes the place of the user's own, and with TOLVANE_TYPIST_LOCKS the
// program finds that it cannot write into the folder of its executable.

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGenericPlugin>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#ifdef Q_OS_WIN
#include <QDir>
#include <windows.h>
#endif

class Typist final : public QObject {
    Q_OBJECT

public:
    Typist() : Steps(qEnvironmentVariable("TOLVANE_TYPIST").split(u'|'))
    {
        connect(&Rest, &QTimer::timeout, this, &Typist::GoOn);
        Rest.start(20);
    }

private:
    /// Of a visible window, the window itself included.
    template <typename Kind>
    static Kind* Find(const QString& name)
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->isVisible()) continue;
            if (auto* self = qobject_cast<Kind*>(window); self != nullptr && self->objectName() == name) return self;
            if (auto* found = window->findChild<Kind*>(name)) return found;
        }
        return nullptr;
    }

    static QAbstractButton* FindAnswer(const QString& text)
    {
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            const auto* box = qobject_cast<const QMessageBox*>(window);
            if (box == nullptr || !box->isVisible()) continue;
            for (QAbstractButton* button : box->buttons())
                if (button->text().remove(u'&') == text) return button;
        }
        return nullptr;
    }

    /// What a step is about; nothing as long as it has to wait.
    static QObject* TargetOf(const QString& verb, const QString& name, const QString& rest)
    {
        if (verb == u"asks" || verb == u"answer") return FindAnswer(name);
        if (verb == u"choose") return Find<QAction>(name);
        QWidget* control = Find<QWidget>(name);
        if (control == nullptr) return nullptr;
        const auto* list = qobject_cast<QAbstractItemView*>(control);
        const auto* label = qobject_cast<QLabel*>(control);
        const bool waits = (verb == u"rows" && list->model()->rowCount() < rest.toInt()) ||
                           (verb == u"shows" && label->text() != rest);
        return waits ? nullptr : control;
    }

    // A step may not return before the program ends; the next ones are done meanwhile.
    void GoOn()
    {
        if (Next == Steps.size()) {
            Rest.stop();
            return;
        }
        const QString step = Steps[Next];
        const QString verb = step.section(u' ', 0, 0);
        const QString rest = step.section(u' ', 2);
        QObject* target = TargetOf(verb, step.section(u' ', 1, 1), rest);
        if (target == nullptr) return;
        ++Next;
        auto* control = qobject_cast<QWidget*>(target);
        if (verb == u"type") Type(*control, rest);
        if (verb == u"click" || verb == u"answer") QTest::mouseClick(control, Qt::LeftButton);
        if (verb == u"pick") Pick(*qobject_cast<QAbstractItemView*>(control), rest.toInt());
        if (verb == u"choose") qobject_cast<QAction*>(target)->trigger();
        if (verb == u"close") control->close();
    }

    static void Pick(const QAbstractItemView& list, int row)
    {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(row, 0)).center());
    }

    static void Type(QWidget& field, const QString& text)
    {
        const auto* box = qobject_cast<QComboBox*>(&field);
        QWidget* edit = box != nullptr ? box->lineEdit() : &field;
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(edit, text);
    }

    QStringList Steps;
    qsizetype Next = 0;
    QTimer Rest;
};

#ifdef Q_OS_WIN

namespace {

void LeadToOtherKey(const std::wstring& name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, key) != ERROR_SUCCESS)
        qFatal("no other key can stand in for the user's");
}

// The program tries with a file of its own, whose name is taken as long as it runs.
void TakeNameOfTrial()
{
    const QString name = QDir::toNativeSeparators(QCoreApplication::applicationDirPath()) +
                         QStringLiteral("\\tolvane-%1.tmp").arg(QCoreApplication::applicationPid());
    const HANDLE taken = CreateFileW(name.toStdWString().c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                     FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (taken == INVALID_HANDLE_VALUE) qFatal("the folder cannot be locked");
}

}  // namespace

#endif

class TypistPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "typist.json")

public:
    QObject* create(const QString&, const QString&) override
    {
#ifdef Q_OS_WIN
        const QString key = qEnvironmentVariable("TOLVANE_TYPIST_KEY");
        if (!key.isEmpty()) LeadToOtherKey(key.toStdWString());
        if (qEnvironmentVariableIsSet("TOLVANE_TYPIST_LOCKS")) TakeNameOfTrial();
#endif
        return new Typist;
    }
};

#include "typist.moc"

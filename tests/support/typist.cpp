// Works the controls of a program from within, as a user would: a generic plugin of the toolkit, so that it is the
// finished executable that is tested. It takes its steps from TOLVANE_TYPIST, separated by "|":
//
//   type NAME TEXT     writes a text into a field
//   click NAME         presses a button
//   rows NAME COUNT    waits until a list has so many rows
//   pick NAME ROW      clicks on a row of a list

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QGenericPlugin>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

class Typist final : public QObject {
    Q_OBJECT

public:
    Typist() : Steps(qEnvironmentVariable("TOLVANE_TYPIST").split(u'|'))
    {
        connect(&Rest, &QTimer::timeout, this, &Typist::GoOn);
        Rest.start(20);
    }

private:
    static QWidget* Find(const QString& name)
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = window->isVisible() ? window->findChild<QWidget*>(name) : nullptr) return found;
        return nullptr;
    }

    // A step may not return before the program ends; the next ones are done meanwhile.
    void GoOn()
    {
        if (Next == Steps.size()) {
            Rest.stop();
            return;
        }
        const QString step = Steps[Next];
        QWidget* control = Find(step.section(u' ', 1, 1));
        const QString rest = step.section(u' ', 2);
        const auto* list = qobject_cast<QAbstractItemView*>(control);
        if (control == nullptr || (step.startsWith("rows ") && list->model()->rowCount() < rest.toInt())) return;
        ++Next;
        if (step.startsWith("type ")) Type(*control, rest);
        if (step.startsWith("click ")) QTest::mouseClick(control, Qt::LeftButton);
        if (step.startsWith("pick "))
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualRect(list->model()->index(rest.toInt(), 0)).center());
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

class TypistPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "typist.json")

public:
    QObject* create(const QString&, const QString&) override { return new Typist; }
};

#include "typist.moc"

#pragma once

#include "support/list_mouse.h"
#include "support/window_fixture.h"

#include <QComboBox>
#include <QFile>
#include <QTimer>

/// The main window with its two lists at hand, connected to a recording component. User-interface thread.
class PanelDriver : public WindowFixture, public ListMouse {
public:
    ListBox& Remote() const { return Control<ListBox>("lstRemoteFiles"); }

    ListBox& Files() const { return Control<ListBox>("List1"); }

    static QStringList Entries(const ListBox& list)
    {
        QStringList entries;
        for (int index = 0; index < list.Count(); ++index) entries += list.Entry(index);
        return entries;
    }

    QString RemoteCount() const { return Control<QLabel>("Label2_0").text(); }

    QString LocalCount() const { return Control<QLabel>("Label2_1").text(); }

    QStringList Operations() const { return Inet1().Operations(); }

    /// The operations from the first one that begins like this on.
    QStringList OperationsFrom(const QString& beginning) const
    {
        QStringList operations = Operations();
        while (!operations.isEmpty() && !operations.first().startsWith(beginning)) operations.removeFirst();
        return operations;
    }

    void WaitUntilIdle() const { QTRY_VERIFY(!Inet1().StillExecuting()); }

    /// Connects, so that the remote list holds these lines, and starts the record anew.
    void Connect(const QStringList& lines)
    {
        Control<QComboBox>("txtURL").setEditText("ftp://host");
        SetListing(lines);
        Click("cmdConnect");
        WaitUntilIdle();
        QCOMPARE(Entries(Remote()), lines);
        Inet1().Forget();
    }

    /// What the next listings reply, however they are asked for.
    void SetListing(const QStringList& lines) const
    {
        QString reply;
        for (const QString& line : lines) reply += line + "\r\n";
        for (const char* operation : {"DIR", "LS", "DIR ", "LS "}) Inet1().Replies[operation] = reply;
    }

    /// Does something, once, in the event loop while this operation is running.
    void During(const QString& operation, std::function<void()> action) const
    {
        auto* guard = new QObject(&Inet1());
        QObject::connect(&Inet1(), &Inet::StateChanged, guard, [this, guard, operation, action](int state) {
            if (state != Inet::Requesting || Operations().last() != operation) return;
            QTimer::singleShot(0, &Inet1(), action);
            guard->deleteLater();
            guard->disconnect();
            QObject::disconnect(&Inet1(), nullptr, guard, nullptr);
        });
    }

    /// Makes a file in the local folder.
    void MakeFile(const QString& name, const QByteArray& bytes = "x") const
    {
        QFile file(LocalFolder() + '/' + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    void MakeFiles(const QStringList& names) const
    {
        for (const QString& name : names) MakeFile(name);
    }
};

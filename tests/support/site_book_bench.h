#pragma once

#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/connection_values.h"
#include "shell/options.h"
#include "shell/settings_store.h"
#include "shell/status_line.h"
#include "sites/site_book.h"
#include "support/scripted_asker.h"

#include <QAbstractItemView>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

inline const QDateTime Noon(QDate(2024, 5, 6), QTime(12, 0));

/// A window with the book's controls, and everything that the book works with.
struct Desk {
    explicit Desk(const QString& folder)
        : Settings(folder + "/settings.ini"),
          Log(
              {List2, Command22, Command23, Command25, List1}, folder, Pointer, [] {}, [] { return Noon; }),
          Book({txtURL, txtUserName, txtPassword, Command17, mnuSavFTPAddress},
               {Address, Chosen, Values, Settings, Questions, Status, Log, Errors,
                [](int number) { return QString("string %1").arg(number); }, [this] { ++Beeps; }},
               folder)
    {
        auto* layout = new QVBoxLayout(&Window);
        for (QWidget* widget : std::initializer_list<QWidget*>{&txtURL, &txtUserName, &txtPassword, &Command17})
            layout->addWidget(widget);
        mnuSavFTPAddress.setCheckable(true);
        mnuSavFTPAddress.setChecked(true);
        Chosen.SaveAllInformation = true;
        Window.show();
        Window.activateWindow();
    }

    void Connect(const QString& url, const QString& user, const QString& password)
    {
        Values.SavedUrl = url;
        Values.SavedUser = user;
        Values.SavedPassword = password;
        Book.AddCurrentSite();
    }

    QStringList List() const
    {
        QStringList entries;
        for (int entry = 0; entry < txtURL.count(); ++entry) entries += txtURL.itemText(entry);
        return entries;
    }

    void OpenList()
    {
        QTest::mouseClick(&txtURL, Qt::LeftButton, {}, QPoint(txtURL.width() - 5, txtURL.height() / 2));
        QTRY_VERIFY(txtURL.view()->isVisible());
    }

    void PickWithMouse(int entry)
    {
        OpenList();
        QAbstractItemView& view = *txtURL.view();
        const QPoint at = view.visualRect(view.model()->index(entry, 0)).center();
        QTest::mouseMove(view.viewport(), at);
        // The list takes no click as long as it may still belong to the one that opened it.
        QTRY_VERIFY((QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at), !view.isVisible()));
    }

    void Type(const QString& text)
    {
        txtURL.setFocus();
        QTest::keyClicks(txtURL.lineEdit(), text);
    }

    QStringList Boxes() const { return {txtURL.currentText(), txtUserName.text(), txtPassword.text()}; }

    QWidget Window;
    QComboBox txtURL{&Window};
    QLineEdit txtUserName{&Window};
    QLineEdit txtPassword{&Window};
    QPushButton Command17{&Window};
    QListView List2{&Window};
    QWidget List1{&Window};
    QPushButton Command22{&Window};
    QPushButton Command23{&Window};
    QPushButton Command25{&Window};
    QLabel sbFTP{"Waiting ...", &Window};
    QAction mnuSavFTPAddress{&Window};

    AddressState Address;
    Options Chosen;
    ConnectionValues Values;
    SettingsStore Settings;
    ScriptedAsker Questions;
    StatusLine Status{sbFTP};
    BusyPointer Pointer;
    ActivityLog Log;
    ErrorRecord Errors;
    int Beeps = 0;
    SiteBook Book;
};

inline const Site Ann{"ftp://a", "ann", "1"};
inline const Site Bob{"ftp://b", "bob", "2"};
inline const Site Cid{"ftp://c", "cid", "3"};

/// A folder with a site book, and the desk that it is worked at. User-interface thread.
class SiteBookBench {
protected:
    void SetUp()
    {
        Folder = std::make_unique<QTemporaryDir>();
        My = std::make_unique<Desk>(Folder->path());
    }

    void TearDown() { My.reset(); }

    QString Name() const { return Folder->filePath("Tolvane.dta"); }

    QByteArray Bytes() const
    {
        QFile file(Name());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    void Write(const QByteArray& bytes) const
    {
        QFile file(Name());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    void WriteThree() const { Write(EncodeSite(1, Ann) + EncodeSite(2, Bob) + EncodeSite(3, Cid)); }

    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<Desk> My;
};

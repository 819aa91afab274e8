#pragma once

#include <QDateTime>
#include <QListView>
#include <QPushButton>
#include <QString>
#include <QStringListModel>
#include <functional>

class BusyPointer;

/// The activity log: a dated record of the run, one list entry a line, without a limit. It can be shown, hidden,
/// cleared and appended to log.txt. User-interface thread.
class ActivityLog final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QListView& List2;
        QPushButton& Command22;  ///< shows and hides the log
        QPushButton& Command23;  ///< saves it
        QPushButton& Command25;  ///< clears it
        QWidget& List1;          ///< takes the focus when the log is hidden
    };

    /// `folder` is the program's folder; `beep` sounds the system beep; `now` tells the time.
    ActivityLog(Controls controls, QString folder, BusyPointer& pointer, std::function<void()> beep,
                std::function<QDateTime()> now = &QDateTime::currentDateTime);

    void Add(const QString& line);              ///< without a stamp; what cannot be shown becomes a mark
    void AddWithDateTime(const QString& text);  ///< text, eight blanks, date and time
    void AddWithTime(const QString& text);      ///< text, eight blanks, time of day

    QDateTime Now() const { return Clock(); }

    bool IsShown() const;
    int Count() const;
    QString Line(int index) const;  ///< as it is shown

    void Command22_Click();
    void Command23_Click();
    void Command25_Click();

private:
    void Show();
    void Hide();
    void AppendToFile();

    Controls Form;
    QString Folder;
    BusyPointer& Pointer;
    std::function<void()> Beep;
    std::function<QDateTime()> Clock;
    QStringListModel Lines;
};

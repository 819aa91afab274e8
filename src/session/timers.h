#pragma once

#include <QObject>
#include <QTimer>

/// The timers of the main window, made under their given names with their given intervals. None of them runs yet:
/// each is started by the one whose work it drives. User-interface thread.
class Timers final : public QObject {
    Q_OBJECT

public:
    /// The timers become children of `window` and are found there by their names.
    explicit Timers(QObject& window);

    QTimer& Timer1;          ///< 1.5 s after start-up, once
    QTimer& Timer2;          ///< idle watchdog
    QTimer& Timer3;          ///< stopwatch
    QTimer& Timer4;          ///< advertisements
    QTimer& Timer5;          ///< fetches the message file
    QTimer& Timer6;          ///< shows the message lines
    QTimer& MultiTimer;      ///< the short delay
    QTimer& ClipBoardTimer;  ///< clipboard watch

    /// The time after start-up is over.
    void Timer1_Timer() { Timer1.stop(); }
};

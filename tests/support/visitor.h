#pragma once

#include "inet/inet.h"

#include <QEventLoop>
#include <QList>
#include <QString>
#include <functional>

/// What one command of a transfer component came to.
struct Visit {
    QList<int> States;  ///< in order, the final one included; without a final one the command has not ended in time
    int Code = 0;
    QString Info;
    QString Reply;

    bool Good() const { return !States.isEmpty() && States.last() == Inet::ResponseCompleted; }

    /// For messages of tests: "5 6 7 11: 550 No such file".
    QString Account() const;
};

/// Gives a transfer component its commands, one after the other, as the program does.
class Visitor final : public QObject {
    Q_OBJECT

public:
    explicit Visitor(Inet& inet);

    /// Executes and returns when the command has ended.
    Visit Do(const QString& operation);

    /// The two halves of Do.
    void Begin(const QString& operation);
    Visit Finish();

    /// Lets events come until it holds, asked after each report and every few milliseconds; false when the command
    /// ends first.
    bool Until(const std::function<bool()>& holds);

private:
    bool HasEnded() const;

    Inet& Component;
    QList<int> States;
    QEventLoop Loop;
};

#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

/// Turns the system's requests to end (SIGTERM, SIGINT and SIGHUP) into a signal on the user-interface thread.
/// One object at a time. On systems without such signals it stays silent.
class EndRequests final : public QObject {
    Q_OBJECT

public:
    EndRequests();
    ~EndRequests() override;

signals:
    void Requested();

private:
    void TakeRequests();

    std::unique_ptr<QSocketNotifier> Notifier;
};

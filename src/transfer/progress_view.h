#pragma once

#include "inet/inet.h"

#include <QObject>
#include <QProgressBar>

/// Shows in a bar how far a transfer has come, how fast, and how long it will take; at its end, whether the server's
/// size is the one that was transferred. Hidden while there is nothing to tell. User-interface thread.
class ProgressView final : public QObject {
    Q_OBJECT

public:
    ProgressView(Inet& inet, QProgressBar& bar);

private:
    void Show(const Inet::Progress& progress);
    void ShowEnd(const Inet::Confirmation& confirmation);
    void React(int state);
    void Tell(int permille, const QString& text);

    QProgressBar& Bar;
};

/// "1.5 MB/s", and behind it the time left, such as "0:42" or "1:02:03", where the size is known.
QString ProgressText(const Inet::Progress& progress);

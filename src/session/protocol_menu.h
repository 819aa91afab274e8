#pragma once

#include <QAction>
#include <QLineEdit>
#include <QObject>
#include <array>

struct ConnectionValues;

/// The menu that chooses the protocol of the next connect. User-interface thread.
class ProtocolMenu final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        std::array<QAction*, 4> Protocol2;  ///< the entries 1 to 4: default, FTP, HTTP, secure HTTP
        QLineEdit& txtPort;
    };

    ProtocolMenu(Controls controls, ConnectionValues& values);

    /// Chooses by the entry's index, 1 to 4. FTP and HTTP put their usual port into the port box.
    void Protocol2_Click(int index);

private:
    Controls Form;
    ConnectionValues& Values;
};

#pragma once

#include "sites/address_box.h"
#include "sites/clipboard_source.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QTimer>
#include <functional>

/// Watches the clipboard for web and FTP addresses and pastes the last one that appeared. User-interface thread.
class ClipboardWatch final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QAction& mnuWatchClip;  ///< must not change its mark by itself when it is triggered
        QAbstractButton& cmdPaste;
        QAbstractButton& cmdPaste2;
        QComboBox& txtURL;
        QComboBox& txtCom;
    };

    ClipboardWatch(Controls controls, AddressState& address, ClipboardSource& source, std::function<void()> beep);

    void ClipBoardTimer_Timer();  ///< one look at the clipboard
    void mnuWatchClip_Click();    ///< switches the watch on and off; the choice is not stored
    void cmdPaste_Click();        ///< into the address box
    void cmdPaste2_Click();       ///< into the command line

private:
    void Paste(QComboBox& box, QAbstractButton& button);

    Controls Form;
    AddressState& Address;
    ClipboardSource& Source;
    std::function<void()> Beep;
    QTimer ClipBoardTimer;
    QString LastText;  ///< the clipboard's text at the previous look
};

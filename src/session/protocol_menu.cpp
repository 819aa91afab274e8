#include "session/protocol_menu.h"

#include "inet/inet.h"
#include "shell/connection_values.h"

ProtocolMenu::ProtocolMenu(Controls controls, ConnectionValues& values) : Form(controls), Values(values)
{
    for (int index = 1; index <= 4; ++index)
        connect(Form.Protocol2[index - 1], &QAction::triggered, this, [this, index] { Protocol2_Click(index); });
}

void ProtocolMenu::Protocol2_Click(int index)
{
    for (QAction* entry : Form.Protocol2) entry->setChecked(false);
    switch (index) {
    case 1:
        Values.ProtocolChoice = Inet::DefaultProtocol;
        break;
    case 2:
        Values.ProtocolChoice = Inet::Ftp;
        Form.txtPort.setText("21");
        break;
    case 3:
        Values.ProtocolChoice = Inet::Http;
        Form.txtPort.setText("80");
        break;
    case 4:
        Values.ProtocolChoice = Inet::SecureHttp;
        break;
    default:
        return;
    }
    Form.Protocol2[index - 1]->setChecked(true);
}

// Carries out operations with the transfer component as they come, and tells how each one ended.
//
//   carry ADDRESS USER PASSWORD SECONDS
//
// Reads one operation per line. Answers each with one line: "good", the memory in use in KiB and the size of the reply
// in bytes, after which the reply itself follows; or "bad", the memory, the code and the sentence. SECONDS is the
// request time-out.

#include "base/byte_text.h"
#include "inet/transfer_component.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <unistd.h>

namespace {

/// Resident memory in KiB.
long Memory()
{
    std::ifstream facts("/proc/self/statm");
    long all = 0;
    long resident = 0;
    facts >> all >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

QByteArray ReplyOf(Inet& component)
{
    constexpr int Piece = 4096;
    QString reply;
    for (QString piece = component.GetChunk(Piece); !piece.isEmpty(); piece = component.GetChunk(Piece)) reply += piece;
    return TextToBytes(reply);
}

bool Carry(Inet& component, const std::string& operation)
{
    QEventLoop loop;
    int end = 0;
    const auto connection = QObject::connect(&component, &Inet::StateChanged, &loop, [&](int state) {
        if (state != Inet::ResponseCompleted && state != Inet::Error) return;
        end = state;
        loop.quit();
    });
    component.Execute(component.URL(), BytesToText(QByteArray::fromStdString(operation)));
    loop.exec();
    QObject::disconnect(connection);
    return end == Inet::ResponseCompleted;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication program(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5) {
        std::fputs("Usage: carry ADDRESS USER PASSWORD SECONDS\n", stderr);
        return 2;
    }
    TransferComponent component;
    component.SetURL(arguments[1]);
    component.SetUserName(arguments[2]);
    component.SetPassword(arguments[3]);
    component.SetRequestTimeout(arguments[4].toInt());
    for (std::string operation; std::getline(std::cin, operation);) {
        if (Carry(component, operation)) {
            const QByteArray reply = ReplyOf(component);
            std::cout << "good " << Memory() << ' ' << reply.size() << '\n' << reply.toStdString();
        } else {
            const QString sentence = component.ResponseInfo().replace('\n', ' ');
            std::cout << "bad " << Memory() << ' ' << component.ResponseCode() << ' '
                      << TextToBytes(sentence).toStdString() << '\n';
        }
        std::cout.flush();
    }
    return 0;
}

// Carries out operations with the transfer component, the way the program does: each one when the one before has
// ended, driven by the event loop.
//
//   operate ADDRESS USER PASSWORD <operations
//
// Reads one operation per line. Prints the seconds between the first Execute and the last state, and the peak of the
// memory in use; ends with 1, and a sentence, at the first failure.

#include "base/byte_text.h"
#include "inet/transfer_component.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStringList>
#include <QTextStream>
#include <QTimer>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr int TimeoutSeconds = 60;

QString PeakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return QString::fromStdString(line.substr(6)).simplified();
    }
    return "unknown";
}

QStringList ReadOperations()
{
    QStringList operations;
    for (std::string line; std::getline(std::cin, line);) {
        operations.append(BytesToText(QByteArray::fromStdString(line)));
    }
    return operations;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication program(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("Usage: operate ADDRESS USER PASSWORD <operations\n", stderr);
        return 2;
    }
    const QStringList operations = ReadOperations();
    TransferComponent component;
    component.SetURL(arguments[1]);
    component.SetUserName(arguments[2]);
    component.SetPassword(arguments[3]);
    component.SetRequestTimeout(TimeoutSeconds);
    component.SetCertificateJudge([](const Inet::DoubtfulCertificate&) { return true; });

    QElapsedTimer watch;
    qsizetype next = 0;
    const auto executeNext = [&] {
        if (next == operations.size()) {
            QCoreApplication::exit(0);
        } else {
            component.SetMoreToCome(next + 1 < operations.size());
            component.Execute(component.URL(), operations[next++]);
        }
    };
    QObject::connect(&component, &Inet::StateChanged, &program, [&](int state) {
        if (state == Inet::ResponseCompleted) executeNext();
        if (state != Inet::Error) return;
        const QString report = QString("%1: %2 %3\n").arg(operations[next - 1]).arg(component.ResponseCode());
        std::fputs(qPrintable(report.arg(component.ResponseInfo())), stderr);
        QCoreApplication::exit(1);
    });
    watch.start();
    QTimer::singleShot(0, &program, executeNext);
    const int result = QCoreApplication::exec();
    std::printf("seconds %.3f\npeak memory %s\n", static_cast<double>(watch.nsecsElapsed()) / 1e9,
                qPrintable(PeakMemory()));
    return result;
}

// A text editor that only writes down the number of its process and its words, into the file that RECORDED_WORDS names.
#include <QByteArray>
#include <QCoreApplication>
#include <QFile>

int main(int count, char** words)
{
    const QCoreApplication program(count, words);
    const QString name = qEnvironmentVariable("RECORDED_WORDS");
    QFile file(name + ".part");
    if (!file.open(QIODevice::WriteOnly)) return 1;
    file.write(QByteArray::number(QCoreApplication::applicationPid()) + '\n');
    for (const QString& word : QCoreApplication::arguments().mid(1)) file.write('[' + word.toUtf8() + "]\n");
    return file.rename(name) ? 0 : 1;
}

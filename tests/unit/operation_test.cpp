#include "inet/ftp/operation.h"

#include <QByteArray>
#include <QTest>
#include <string>
#include <variant>

namespace {

struct Teller {
    std::string operator()(const Ftp::ListNames&) const { return "names"; }

    std::string operator()(const Ftp::ListFull&) const { return "full"; }

    std::string operator()(const Ftp::ChangeFolder& c) const { return "change|" + c.Name; }

    std::string operator()(const Ftp::FolderUp&) const { return "up"; }

    std::string operator()(const Ftp::Receive& r) const
    {
        return "receive|" + r.Remote + '|' + r.Local + (r.LocalGiven ? "|given" : "");
    }

    std::string operator()(const Ftp::Send& s) const { return "send|" + s.Local + '|' + s.Remote; }

    std::string operator()(const Ftp::Delete& d) const { return "delete|" + d.Name; }

    std::string operator()(const Ftp::Rename& r) const { return "rename|" + r.From + '|' + r.To; }

    std::string operator()(const Ftp::MakeFolder& m) const { return "make|" + m.Name; }

    std::string operator()(const Ftp::RemoveFolder& r) const { return "remove|" + r.Name; }

    std::string operator()(const Ftp::Size& s) const { return "size|" + s.Name; }

    std::string operator()(const Ftp::WorkingFolder&) const { return "where"; }

    std::string operator()(const Ftp::Close&) const { return "close"; }
};

}  // namespace

class OperationTest : public QObject {
    Q_OBJECT

private slots:
    void ATextIsItsCommand_data();
    void ATextIsItsCommand();
    void OneNameTwiceIsThatNameWhateverItHolds_data();
    void OneNameTwiceIsThatNameWhateverItHolds();
    void ATextNotUnderstoodIsRefused_data();
    void ATextNotUnderstoodIsRefused();
};

void OperationTest::ATextIsItsCommand_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const QByteArray& text, const QByteArray& told) {
        QTest::newRow(text.constData()) << text << told;
    };
    row("DIR", "full");
    row("DIR ", "full");
    row("dir", "full");
    row("LS", "names");
    row("LS ", "names");
    row("ls", "names");
    row("CDUP", "up");
    row("cdup ", "up");
    row("PWD", "where");
    row("QUIT", "close");
    row("CLOSE", "close");
    row("close", "close");

    row("CD pub", "change|pub");
    row("cd pub", "change|pub");
    row("CD my folder", "change|my folder");
    row("CD  lead", "change| lead");
    row("CD trail ", "change|trail ");
    row("CD  ", "change| ");
    row("CD \"quoted\"", "change|\"quoted\"");
    row("CD ..", "change|..");
    row("CD drwxr-xr-x 2 u g 4096 Jan 1 10:00 pub", "change|drwxr-xr-x 2 u g 4096 Jan 1 10:00 pub");
    row("CD 100%25", "change|100%25");
    row("CD \xff\xe4", "change|\xff\xe4");

    row("GET \"a\" \"a\"", "receive|a|a");
    row("GET \"a\" \"b\"", "receive|a|b|given");
    row("GET \"a b\" \"c d\"", "receive|a b|c d|given");
    row("GET \"a\"", "receive|a|a");
    row("GET \"a\" ", "receive|a|a");
    row("GET \"a b\" C:\\temp\\a b.txt", "receive|a b|C:\\temp\\a b.txt|given");
    row("GET \"a\" a", "receive|a|a");
    row("GET \"a\"b\"", "receive|a\"b|a\"b");
    row("GET \"a\"b\" \"c\"", "receive|a\"b|c|given");
    row("GET \"a\" \"b\"c\"", "receive|a|b\"c|given");
    row("GET \"a\" b\" /tmp/x", "receive|a\" b|/tmp/x|given");
    row("GET \"a\" b\" ", "receive|a\" b|a\" b");
    row("GET \"a\"  b", "receive|a| b|given");
    row("GET \"\"\" \"x\"", "receive|\"|x|given");
    row("GET a a", "receive|a|a");
    row("GET my file my file", "receive|my file|my file");
    row("GET a b", "receive|a|b|given");
    row("GET a \"b c\"", "receive|a|b c|given");
    row("GET a", "receive|a|a");
    row("GET a ", "receive|a|a");
    row("GET a\"b a\"b", "receive|a\"b|a\"b");
    row("get \"a\" \"a\"", "receive|a|a");
    row("GET \"x\" \"../evil\"", "receive|x|../evil|given");

    row("PUT \"a\" \"a\"", "send|a|a");
    row("PUT \"/home/me/a b\" \"a b\"", "send|/home/me/a b|a b");
    row("PUT \"a\"", "send|a|a");
    row("PUT a a", "send|a|a");
    row("PUT a b", "send|a|b");
    row("PUT \"a\" b c", "send|a|b c");

    row("DELETE \"a b\"", "delete|a b");
    row("DELETE a b", "delete|a b");
    row("DELETE \"a\" \"b\"", "delete|a\" \"b");
    row("DELETE \"\"\"", "delete|\"");
    row("DELETE a\"", "delete|a\"");
    row("MKDIR \"new folder\"", "make|new folder");
    row("RMDIR \"old folder\"", "remove|old folder");
    row("SIZE \"a.txt\"", "size|a.txt");
    row("SIZE a.txt", "size|a.txt");
    row("SIZE \" a \"", "size| a ");

    row("RENAME \"a\" \"b\"", "rename|a|b");
    row("RENAME \"a b\" \"c d\"", "rename|a b|c d");
    row("RENAME \"a\" \"a\"", "rename|a|a");
    row("RENAME \"a\"b\" \"c\"", "rename|a\"b|c");
    row("RENAME \"a\" b\" \"c\"", "rename|a\" b|c");
    row("RENAME \"a\" b", "rename|a|b");
    row("RENAME a b", "rename|a|b");
    row("RENAME a a", "rename|a|a");
}

void OperationTest::ATextIsItsCommand()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, told);
    const auto operation = Ftp::ParseOperation(text.toStdString());
    QVERIFY(operation);
    QCOMPARE(QByteArray::fromStdString(std::visit(Teller(), *operation)), told);
}

void OperationTest::OneNameTwiceIsThatNameWhateverItHolds_data()
{
    QTest::addColumn<QByteArray>("name");
    const QByteArray names[] = {"plain",
                                "two words",
                                "x\" \"../evil",
                                "\"",
                                "\" \"",
                                "\"quoted\"",
                                " lead",
                                "trail ",
                                "a\" b",
                                "a \"b",
                                "\" ",
                                " \"",
                                "x\" \"x",
                                "a\" \"b\" \"c",
                                "-rw-r--r-- 1 u g 5 Jan  1 10:00 a b",
                                "\xff\xfe\"",
                                "100% \"true\" %22"};
    for (const QByteArray& name : names) QTest::newRow(name.toPercentEncoding(" \"").constData()) << name;
}

void OperationTest::OneNameTwiceIsThatNameWhateverItHolds()
{
    QFETCH(QByteArray, name);
    const std::string quoted = '"' + name.toStdString() + '"';
    const auto received = Ftp::ParseOperation("GET " + quoted + ' ' + quoted);
    QVERIFY(received);
    QCOMPARE(std::get<Ftp::Receive>(*received).Remote, name.toStdString());
    QCOMPARE(std::get<Ftp::Receive>(*received).Local, name.toStdString());
    QVERIFY(!std::get<Ftp::Receive>(*received).LocalGiven);
    const auto sent = Ftp::ParseOperation("PUT " + quoted + ' ' + quoted);
    QVERIFY(sent);
    QCOMPARE(std::get<Ftp::Send>(*sent).Local, name.toStdString());
    QCOMPARE(std::get<Ftp::Send>(*sent).Remote, name.toStdString());
    const auto erased = Ftp::ParseOperation("DELETE " + quoted);
    QVERIFY(erased);
    QCOMPARE(std::get<Ftp::Delete>(*erased).Name, name.toStdString());
}

void OperationTest::ATextNotUnderstoodIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray texts[] = {"",
                                " ",
                                " DIR",
                                "FOO",
                                "DIRX",
                                "DI",
                                "DIR pub",
                                "LS -la",
                                "PWD x",
                                "CLOSE now",
                                "CD",
                                "CD ",
                                "GET",
                                "GET ",
                                "GET  b",
                                "GET \"\"",
                                "GET \"\" \"\"",
                                "GET \"\" \"a\"",
                                "GET \"a\" \"\"",
                                "GET \"",
                                "GET \"a",
                                "GET \"a\"b",
                                "GET \"a\"\"b",
                                "GET \"a\" \"b",
                                "GET \"a\" \"b\" \"c\"",
                                "GET \"a\" \"b\" c",
                                "GET a b c",
                                "GET a  b",
                                "GET a \"b",
                                "GET a \"b\"c\"",
                                "PUT",
                                "PUT \"\" \"\"",
                                "PUT a b c",
                                "DELETE",
                                "DELETE ",
                                "DELETE \"\"",
                                "DELETE \"",
                                "DELETE \"a",
                                "MKDIR \"\"",
                                "RMDIR \"a\" ",
                                "SIZE",
                                "RENAME",
                                "RENAME \"a\"",
                                "RENAME \"a\" ",
                                "RENAME \"a\" \"\"",
                                "RENAME \"\" \"b\"",
                                "RENAME \"a\" \"b\" \"c\"",
                                "RENAME \"a\" \"b\" \"a\" \"b\"",
                                "RENAME a",
                                "RENAME a b c",
                                "DIR\r\nDELE x",
                                "DIR\t"};
    for (const QByteArray& text : texts) QTest::newRow(("<" + text + ">").constData()) << text;
}

void OperationTest::ATextNotUnderstoodIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!Ftp::ParseOperation(text.toStdString()));
}

QTEST_GUILESS_MAIN(OperationTest)
#include "operation_test.moc"

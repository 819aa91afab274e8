#include "base/byte_text.h"
#include "base/local_name.h"

#include <QTest>

class LocalNameTest : public QObject {
    Q_OBJECT

private slots:
    void NamesThatWindowsTakes_data();
    void NamesThatWindowsTakes();
    void NamesThatWindowsRefuses_data();
    void NamesThatWindowsRefuses();
    void ThisSystemsOwnRuleHolds();
    void LongPathsGetTheirLongForm();
    void LongFormsBecomeUsualOnesAgain();
    void AFileInAFolderIsNamedByItsBytes();
};

void LocalNameTest::NamesThatWindowsTakes_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"a", "report.txt", ".htaccess", "..a", " in front", "com", "com10", "COM1x.txt", "console",
                             "nul-file", "a.nul", "caf\xC3\xA9", "caf\xE9", "100%", "$RECYCLE", "lpt", "con1"})
        QTest::newRow(name) << QByteArray(name);
}

void LocalNameTest::NamesThatWindowsTakes()
{
    QFETCH(QByteArray, name);
    QVERIFY(IsWindowsFileName(name.toStdString()));
}

void LocalNameTest::NamesThatWindowsRefuses_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("no name") << QByteArray();
    QTest::newRow("a line feed") << QByteArray("a\nb");
    QTest::newRow("a zero") << QByteArray("a\0b", 3);
    for (const char* name : {"CON",
                             "con",
                             "Nul",
                             "nul.txt",
                             "NUL .tar.gz",
                             "aux",
                             "prn.",
                             "COM1",
                             "com9.log",
                             "LPT0",
                             "lpt\xC2\xB2.txt",
                             "CONIN$",
                             "conout$",
                             "a.",
                             "a ",
                             "...",
                             " ",
                             ".",
                             "..",
                             "a:b",
                             "file.txt::$DATA",
                             "C:evil",
                             "a\\b",
                             "..\\a",
                             "a/b",
                             "a?",
                             "a*",
                             "a|b",
                             "a<b",
                             "a>b",
                             "say \"hi\"",
                             "-rw-r--r-- 1 ann ann 5 Jan  1 12:00 report.txt"})
        QTest::newRow(name) << QByteArray(name);
}

void LocalNameTest::NamesThatWindowsRefuses()
{
    QFETCH(QByteArray, name);
    QVERIFY(!IsWindowsFileName(name.toStdString()));
}

void LocalNameTest::ThisSystemsOwnRuleHolds()
{
    QVERIFY(IsFileNameHere("report.txt"));
#ifdef Q_OS_WIN
    QVERIFY(!IsFileNameHere("nul"));
#else
    QVERIFY(IsFileNameHere("nul"));
#endif
}

void LocalNameTest::LongPathsGetTheirLongForm()
{
    const QString tail = QString(300, u'x');
    QCOMPARE(LongForm("C:/a/" + tail), "\\\\?\\C:\\a\\" + tail);
    QCOMPARE(LongForm("C:\\a\\" + tail), "\\\\?\\C:\\a\\" + tail);
    QCOMPARE(LongForm("\\\\nas\\files\\" + tail), "\\\\?\\UNC\\nas\\files\\" + tail);
    QCOMPARE(LongForm("\\\\?\\C:\\" + tail), "\\\\?\\C:\\" + tail);
    QCOMPARE(LongForm(tail), tail);
    QCOMPARE(LongForm("C:\\a"), QString("C:\\a"));
    QCOMPARE(LongForm(""), QString());
}

void LocalNameTest::LongFormsBecomeUsualOnesAgain()
{
    QCOMPARE(ShortForm("\\\\?\\C:\\a"), QString("C:\\a"));
    QCOMPARE(ShortForm("\\\\?\\UNC\\nas\\files"), QString("\\\\nas\\files"));
    QCOMPARE(ShortForm("/home/ann"), QString("/home/ann"));
}

void LocalNameTest::AFileInAFolderIsNamedByItsBytes()
{
    const std::filesystem::path folder = FilePath("here");
    QCOMPARE(LocalPath(folder, "caf\xE9.txt").parent_path(), folder);
    QCOMPARE(PathBytes(LocalPath(folder, "caf\xE9.txt").filename()), std::string("caf\xE9.txt"));
    QCOMPARE(PathBytes(LocalPath(folder, "caf\xC3\xA9.txt").filename()), std::string("caf\xC3\xA9.txt"));
}

QTEST_GUILESS_MAIN(LocalNameTest)
#include "local_name_test.moc"

#include "inet/ftp/secret.h"
#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QUrl>
#include <QtTest>

/// The password is told to the server and to nobody else, though the server repeats it in all it says.
class SecretsTest : public QObject {
    Q_OBJECT

private slots:
    void NoTextHoldsAPasswordThatTheServerRepeats_data();
    void NoTextHoldsAPasswordThatTheServerRepeats();

    void NoTextHoldsAPasswordThatARefusalRepeats_data() { NoTextHoldsAPasswordThatTheServerRepeats_data(); }

    void NoTextHoldsAPasswordThatARefusalRepeats();
    void ASecretIsFoundInEveryForm_data();
    void ASecretIsFoundInEveryForm();
    void OtherWordsStay();
};

namespace {

std::string StringIn(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

/// The forms in which a server may repeat a password.
std::vector<std::string> FormsOf(const std::string& password)
{
    const std::string escaped = QUrl::toPercentEncoding(QString::fromStdString(password)).toStdString();
    const std::string lower = QString::fromStdString(escaped).toLower().toStdString();
    std::vector<std::string> forms{password, escaped};
    // What is a letter in the password stays as it is; only the escapes may be written in small letters.
    if (QUrl::fromPercentEncoding(QByteArray::fromStdString(lower)).toStdString() == password) forms.push_back(lower);
    return forms;
}

/// The script with each reply of the server followed, in its text and on lines of its own, by the given words.
std::string Repeating(const std::string& script, const std::string& words)
{
    std::string repeating;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find("S: ");
        const bool single = at != std::string::npos && line.size() >= at + 6 && isdigit(line[at + 3]) != 0 &&
                            (line.size() == at + 6 || line[at + 6] == ' ');
        const bool moved = line.find("227") != std::string::npos || line.find("229") != std::string::npos;
        if (single && !moved) {
            const std::string code = line.substr(at + 3, 3);
            repeating += "S: " + code + "-PASS " + words + "\nS: you said " + words + "\nS:  " + words + "\n";
            line += " (" + words + ") " + words;
        }
        repeating += line + '\n';
    }
    return repeating;
}

/// Everything that somebody may read later.
std::string Told(const Conversation& talk, const Ftp::Outcome& got)
{
    std::string told = got.Text;
    for (const std::string& line : talk.Remarks) told += '\n' + line;
    return told;
}

void CheckHidden(const std::string& told, const std::string& password)
{
    for (const std::string& form : FormsOf(password)) QVERIFY2(told.find(form) == std::string::npos, told.c_str());
}

}  // namespace

void SecretsTest::NoTextHoldsAPasswordThatTheServerRepeats_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("password");
    for (const SampleConversation& sample : SampleConversations()) {
        for (const char* password : {"opensesame", "p@ss/w%rd:1 x", "gr\xc3\xbcn-\"quoted\""}) {
            QTest::addRow("%s, %s", sample.Name, password)
                << QString(sample.Operation) << QString::fromStdString(sample.Script) << QString(password);
        }
    }
}

void SecretsTest::NoTextHoldsAPasswordThatTheServerRepeats()
{
    const std::string password = StringIn("password");
    const std::string plain = QString::fromStdString(StringIn("script"))
                                  .replace("PASS secret", "PASS " + QString::fromStdString(password))
                                  .toStdString();
    for (const std::string& form : FormsOf(password)) {
        Conversation talk(Repeating(plain, form) + "S: 200 by the way, " + form + "\nC: PWD\nS: 257 \"/\"");
        talk.Where.Password = password;
        talk.MakeLocalFile("sent", SampleSent);
        const Ftp::Outcome got = talk.Do(StringIn("operation"));
        QVERIFY_GOOD(got);
        (void)talk.Do("PWD");
        QVERIFY(!talk.Remarks.empty());
        CheckHidden(Told(talk, got), password);
    }
}

// Each reply in turn is a refusal in its place.
void SecretsTest::NoTextHoldsAPasswordThatARefusalRepeats()
{
    const std::string password = StringIn("password");
    const QString said = "PASS " + QString::fromStdString(password);
    const std::string script = QString::fromStdString(StringIn("script")).replace("PASS secret", said).toStdString();
    int refused = 0;
    for (std::size_t at = script.find("S: "); at != std::string::npos; at = script.find("S: ", at + 1)) {
        for (const std::string& form : FormsOf(password)) {
            for (const char* code : {"421", "550"}) {
                Conversation talk(Repeating(script.substr(0, at), form) + "S: " + code + "-no\nS: " + form +
                                  "\nS: " + code + " ftp://ann:" + form + "@server.test/\n-- silence");
                talk.Where.Password = password;
                talk.MakeLocalFile("sent", SampleSent);
                const Ftp::Outcome got = talk.Do(StringIn("operation"));
                CheckHidden(Told(talk, got), password);
                if (QTest::currentTestFailed()) return;
                ++refused;
            }
        }
    }
    QVERIFY(refused > 0);
}

void SecretsTest::ASecretIsFoundInEveryForm_data()
{
    QTest::addColumn<QString>("secret");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("told");
    QTest::newRow("plain") << "secret"
                           << "PASS secret"
                           << "PASS ****";
    QTest::newRow("twice") << "secret"
                           << "secretsecret secret"
                           << "******** ****";
    QTest::newRow("inside") << "secret"
                            << "xsecrety"
                            << "x****y";
    QTest::newRow("all escaped") << "abcd"
                                 << "%61%62%63%64!"
                                 << "****!";
    QTest::newRow("partly escaped") << "a@cd"
                                    << "a%40cd"
                                    << "****";
    QTest::newRow("small escapes") << "a/:d"
                                   << "a%2f%3ad"
                                   << "****";
    QTest::newRow("great escapes") << "a/:d"
                                   << "a%2F%3Ad"
                                   << "****";
    QTest::newRow("percent sign") << "a%41b"
                                  << "a%41b a%2541b"
                                  << "**** ****";
    QTest::newRow("short word") << "no"
                                << "no, not no"
                                << "****, not ****";
    QTest::newRow("short escape") << "@"
                                  << "a@b @ %40"
                                  << "a@b **** ****";
    QTest::newRow("none") << ""
                          << "text"
                          << "text";
    QTest::newRow("beginning only") << "secret"
                                    << "secre"
                                    << "secre";
    QTest::newRow("lines") << "secret"
                           << "a\nsecret\nb"
                           << "a\n****\nb";
}

void SecretsTest::ASecretIsFoundInEveryForm()
{
    QCOMPARE(Ftp::Without(StringIn("secret"), StringIn("text")), StringIn("told"));
}

void SecretsTest::OtherWordsStay()
{
    const std::string text = "230 User ann logged in; 100% of %20 stays %zz %";
    QCOMPARE(Ftp::Without("opensesame", text), text);
}

QTEST_GUILESS_MAIN(SecretsTest)
#include "secrets_test.moc"

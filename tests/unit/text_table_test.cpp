#include "i18n/text_table.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QHash>
#include <QRegularExpression>
#include <QTest>
#include <functional>
#include <vector>

/// The texts of the ten languages, and the check itself: each fault is put into a good table and must be found.
class TextTableTest : public QObject {
    Q_OBJECT

private slots:
    void EveryLanguageIsWhole_data();
    void EveryLanguageIsWhole();
    void AcceleratorsDoNotClash_data();
    void AcceleratorsDoNotClash();
    void TheHelpTextNamesTheFieldsAsTheWindowDoes_data();
    void TheHelpTextNamesTheFieldsAsTheWindowDoes();
    void NoLanguageRepeatsAnother();
    void AFaultIsFound_data();
    void AFaultIsFound();
};

namespace {

using Texts = std::vector<const char*>;

struct Block {
    const char* Name;
    const TextTable* Table;
};

const Block Blocks[] = {
    {"English", &EnglishTexts},     {"French", &FrenchTexts},         {"Spanish", &SpanishTexts},
    {"Danish", &DanishTexts},       {"German", &GermanTexts},         {"Italian", &ItalianTexts},
    {"Finnish", &FinnishTexts},     {"Portuguese", &PortugueseTexts}, {"Swedish", &SwedishTexts},
    {"Brazilian", &BrazilianTexts},
};

constexpr int WidestScreen = 1152;  // pixels, of the display modes that the program offers
constexpr int HelpText = 72;
constexpr int HelpCaption = 16;

/// What is shown beside each other and reached with Alt and a letter.
const std::vector<std::vector<int>> Groups = {
    {0, 9, 14, 16}, {1, 2, 3, 4, 5, 6, 7, 45, 8}, {10, 11, 12, 13}, {15}, {17, 18, 19}, {38, 39, 40, 41},
};

Texts TextsOf(const TextTable& table)
{
    return {table.begin(), table.end()};
}

QString Text(const Texts& texts, int n)
{
    return QString::fromUtf8(texts[static_cast<std::size_t>(n)]);
}

bool IsToolTip(int n)
{
    return (n >= 47 && n <= 71 && n != 57) || n == 73 || n == 74 || n == 76;
}

QString Accelerator(const QString& text)
{
    return text.mid(text.indexOf('&') + 1, 1).toUpper();
}

/// The sequence of line breaks and the brackets around the name of a list, which a translation must keep.
int Count(const QString& text, QChar mark)
{
    return static_cast<int>(text.count(mark));
}

QStringList FaultsOfOne(const QString& text, const QString& english, int n)
{
    QStringList faults;
    if (text.trimmed().isEmpty()) faults += "empty";
    if (Count(text, '&') != Count(english, '&')) faults += "accelerator";
    if (text.contains('&') && !Accelerator(text).contains(QRegularExpression("^\\w$"))) faults += "accelerator";
    if (Count(text, '\n') != Count(english, '\n')) faults += "line breaks";
    if (text.endsWith(':') != english.endsWith(':') && n != HelpText) faults += "colon";
    if (text != text.trimmed() || text.contains(QChar::ReplacementCharacter)) faults += "characters";
    if (IsToolTip(n) && QFontMetrics(QGuiApplication::font()).horizontalAdvance(text) > WidestScreen)
        faults += "too wide";
    return faults;
}

/// What is wrong with a language's texts: "number: fault" for each of them, or that their count is not right.
QStringList Faults(const Texts& texts)
{
    if (texts.size() != static_cast<std::size_t>(TextCount)) return {"count"};
    const Texts english = TextsOf(EnglishTexts);
    QStringList faults;
    for (int n = 0; n < TextCount; ++n) {
        if (texts[static_cast<std::size_t>(n)] == nullptr) {
            faults += QString("%1: missing").arg(n);
            continue;
        }
        for (const QString& fault : FaultsOfOne(Text(texts, n), Text(english, n), n))
            faults += QString("%1: %2").arg(n).arg(fault);
    }
    if (faults.isEmpty() && !Text(texts, HelpCaption).startsWith('&')) faults += "16: does not begin with its mark";
    return faults;
}

QStringList Clashes(const Texts& texts)
{
    QStringList clashes;
    for (const std::vector<int>& group : Groups) {
        QHash<QString, int> taken;
        for (const int n : group) {
            const QString key = Accelerator(Text(texts, n));
            if (taken.contains(key)) clashes += QString("%1 and %2: clash").arg(taken.value(key)).arg(n);
            taken.insert(key, n);
        }
    }
    return clashes;
}

void AddBlocks()
{
    QTest::addColumn<Texts>("texts");
    for (const Block& block : Blocks) QTest::newRow(block.Name) << TextsOf(*block.Table);
}

}  // namespace

void TextTableTest::EveryLanguageIsWhole_data()
{
    AddBlocks();
}

void TextTableTest::EveryLanguageIsWhole()
{
    QFETCH(const Texts, texts);
    QCOMPARE(Faults(texts), QStringList());
}

void TextTableTest::AcceleratorsDoNotClash_data()
{
    AddBlocks();
}

// The English texts are given, clashes and all; the buttons and the menu bar are reached in the same way.
void TextTableTest::AcceleratorsDoNotClash()
{
    QFETCH(const Texts, texts);
    if (QByteArray(QTest::currentDataTag()) == "English") {
        QCOMPARE(Clashes(texts), (QStringList{"2 and 4: clash", "3 and 5: clash", "4 and 45: clash"}));
        return;
    }
    QCOMPARE(Clashes(texts), QStringList());
    QStringList keys;
    for (const int n : {0, 9, 14, 16, 38, 39, 40, 41}) keys += Accelerator(Text(texts, n));
    QCOMPARE(keys.removeDuplicates(), 0);
}

void TextTableTest::TheHelpTextNamesTheFieldsAsTheWindowDoes_data()
{
    AddBlocks();
}

void TextTableTest::TheHelpTextNamesTheFieldsAsTheWindowDoes()
{
    QFETCH(const Texts, texts);
    const QString help = Text(texts, HelpText);
    QVERIFY(help.contains('[' + Text(texts, 21) + ']'));
    QString connect = Text(texts, 40);
    QVERIFY(help.contains(connect.remove('&')));
    QVERIFY(help.contains("anonymous"));
    QVERIFY(help.contains("ftp:"));
}

void TextTableTest::NoLanguageRepeatsAnother()
{
    // Short words are the same in many languages; whole sentences are not.
    for (const int n : {23, 43, 44, HelpText, 73}) {
        QStringList sentences;
        for (const Block& block : Blocks) sentences += Text(TextsOf(*block.Table), n);
        const bool portugueseAgree = sentences.at(7) == sentences.at(9);
        QCOMPARE(sentences.removeDuplicates(), portugueseAgree && n != HelpText ? 1 : 0);
    }
}

void TextTableTest::AFaultIsFound_data()
{
    using Change = std::function<void(Texts&)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("fault");
    static const QByteArray wide(300, 'w');
    const auto put = [](std::size_t n, const char* text) { return Change([=](Texts& texts) { texts[n] = text; }); };
    QTest::newRow("a text too few") << Change([](Texts& texts) { texts.pop_back(); }) << "count";
    QTest::newRow("a text too many") << Change([](Texts& texts) { texts.push_back("x"); }) << "count";
    QTest::newRow("a hole") << put(30, nullptr) << "30: missing";
    QTest::newRow("an empty text") << put(28, "") << "28: empty";
    QTest::newRow("a lost mark") << put(40, "Verbinden") << "40: accelerator";
    QTest::newRow("a doubled mark") << put(40, "Ver&binde&n") << "40: accelerator";
    QTest::newRow("a mark before nothing") << put(40, "Verbinden&") << "40: accelerator";
    QTest::newRow("a mark where none belongs") << put(28, "&Los") << "28: accelerator";
    QTest::newRow("a lost line break") << put(HelpText, "Hilfe\nund\nmehr\ndavon") << "72: line breaks";
    QTest::newRow("a line break too many") << put(20, "Server\ndateien") << "20: line breaks";
    QTest::newRow("a lost colon") << put(29, "Port") << "29: colon";
    QTest::newRow("a tool tip wider than the screen") << put(47, wide.constData()) << "47: too wide";
    QTest::newRow("text 16 with its mark inside") << put(HelpCaption, "H&ilfe") << "16: does not begin with its mark";
    QTest::newRow("two entries of one menu") << put(2, "&Zeile") << "1 and 2: clash";
    QTest::newRow("two of the main buttons") << put(39, "&Verlassen") << "39 and 40: clash";
}

void TextTableTest::AFaultIsFound()
{
    QFETCH(const std::function<void(Texts&)>, change);
    QFETCH(const QString, fault);
    Texts texts = TextsOf(GermanTexts);
    change(texts);
    QStringList faults = Faults(texts);
    if (faults.isEmpty()) faults = Clashes(texts);
    QCOMPARE(faults, QStringList{fault});
}

QTEST_MAIN(TextTableTest)
#include "text_table_test.moc"

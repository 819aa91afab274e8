#include "dialogs/picture_file.h"
#include "support/picture_bytes.h"

#include <QBuffer>
#include <QTest>

class PictureFactsTest : public QObject {
    Q_OBJECT

private slots:
    void TheFormatIsToldByTheContent_data();
    void TheFormatIsToldByTheContent();
    void ACutFileIsIncompleteOrNoPicture_data();
    void ACutFileIsIncompleteOrNoPicture();
    void BytesBehindThePictureDoNoHarm_data();
    void BytesBehindThePictureDoNoHarm();
    void AbsurdClaimsAreTooLarge_data();
    void AbsurdClaimsAreTooLarge();
    void OtherFilesAreNoPictures_data();
    void OtherFilesAreNoPictures();
    void FramesAreCounted();
    void TheLargestIconIsTaken();
    void AProgressivePictureMustBeKeptWhole();
    void NoChangedByteBreaksTheReader_data();
    void NoChangedByteBreaksTheReader();
    void PicturesFitTheirRoom_data();
    void PicturesFitTheirRoom();

private:
    static void AddPictures()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QSize>("size");
        QTest::newRow("bitmap") << FileOf(Plain(33, 20), "BMP") << QByteArray("bmp") << QSize(33, 20);
        QTest::newRow("bitmap of two colours")
            << FileOf(Plain(33, 20).convertToFormat(QImage::Format_Mono), "BMP") << QByteArray("bmp") << QSize(33, 20);
        QTest::newRow("still") << GifOf(12, 7, 1) << QByteArray("gif") << QSize(12, 7);
        QTest::newRow("moving") << GifOf(12, 7, 3) << QByteArray("gif") << QSize(12, 7);
        QTest::newRow("photograph") << FileOf(Plain(40, 30), "JPG") << QByteArray("jpg") << QSize(40, 30);
        QTest::newRow("icon") << FileOf(Plain(32, 32), "ICO") << QByteArray("ico") << QSize(32, 32);
    }
};

namespace {

PictureFacts FactsOf(QByteArray bytes)
{
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    return ReadPictureFacts(file);
}

}  // namespace

void PictureFactsTest::TheFormatIsToldByTheContent_data()
{
    AddPictures();
}

void PictureFactsTest::TheFormatIsToldByTheContent()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, format);
    QFETCH(QSize, size);
    const PictureFacts facts = FactsOf(file);
    QCOMPARE(facts.Fault, PictureFault::None);
    QCOMPARE(facts.Format, format);
    QCOMPARE(facts.Size, size);
}

void PictureFactsTest::ACutFileIsIncompleteOrNoPicture_data()
{
    AddPictures();
}

// Cut after every byte but the last: a GIF without its trailer alone is whole.
void PictureFactsTest::ACutFileIsIncompleteOrNoPicture()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, format);
    const bool trailer = format == "gif";
    for (qsizetype length = 0; length < file.size() - (trailer ? 1 : 0); ++length) {
        const PictureFacts facts = FactsOf(file.left(length));
        const bool betweenFrames = trailer && facts.Fault == PictureFault::None;
        if (!betweenFrames)
            QVERIFY2(facts.Fault == PictureFault::Incomplete || facts.Fault == PictureFault::NoPicture,
                     qPrintable(QString("cut after %1").arg(length)));
        if (betweenFrames) QVERIFY(facts.Frames < FactsOf(file).Frames || file.at(length - 1) == '\0');
    }
    QCOMPARE(FactsOf(file.left(file.size() / 2)).Fault, PictureFault::Incomplete);
}

void PictureFactsTest::BytesBehindThePictureDoNoHarm_data()
{
    AddPictures();
}

void PictureFactsTest::BytesBehindThePictureDoNoHarm()
{
    QFETCH(QByteArray, file);
    QFETCH(QSize, size);
    const PictureFacts facts = FactsOf(file + "something else");
    QCOMPARE(facts.Fault, PictureFault::None);
    QCOMPARE(facts.Size, size);
}

void PictureFactsTest::AbsurdClaimsAreTooLarge_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("bitmap") << BitmapHeader(60000, 60000, 24);
    QTest::newRow("bitmap, upside down") << BitmapHeader(60000, -60000, 8);
    QTest::newRow("bitmap beyond all numbers") << BitmapHeader(INT_MAX, INT_MIN, 32);
    QTest::newRow("bitmap, packed") << BitmapHeader(60000, 60000, 8, 1);
    QTest::newRow("GIF") << QByteArray(GifOf(2, 2, 1).replace(6, 4, "\xFF\xFF\xFF\xFF"));
    QTest::newRow("GIF whose frame is larger than its screen") << QByteArray(GifOf(2, 2, 1).replace(
        "\x2C" + QByteArray(4, '\0') + QByteArray("\x02\x00\x02\x00", 4), "\x2C" + QByteArray(8, '\xFF')));
    QTest::newRow("moving GIF") << QByteArray(GifOf(2, 2, 2).replace(6, 4, QByteArray("\x00\x20\x00\x20", 4)));
    QTest::newRow("photograph") << JpegClaim(65500, 65500, false);
    QTest::newRow("progressive photograph") << JpegClaim(65500, 65500, true);
    QTest::newRow("icon with a picture of its own") << IconOf(PngClaim(50000, 50000), 16, 16);
    QTest::newRow("icon with a bitmap of its own") << IconOf(BitmapHeader(50000, 100000, 32).mid(14), 16, 16);
}

void PictureFactsTest::AbsurdClaimsAreTooLarge()
{
    QFETCH(QByteArray, file);
    QCOMPARE(FactsOf(file).Fault, PictureFault::TooLarge);
}

void PictureFactsTest::OtherFilesAreNoPictures_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("Hello, world.\n");
    QTest::newRow("another picture format") << FileOf(Plain(4, 4), "PNG");
    QTest::newRow("pointer instead of an icon") << QByteArray(FileOf(Plain(4, 4), "ICO").replace(2, 1, "\x02"));
    QTest::newRow("icon file without an icon") << QByteArray("\x00\x00\x01\x00\x00\x00", 6);
    QTest::newRow("bitmap without pixels") << BitmapHeader(0, 10, 24);
    QTest::newRow("GIF without a frame") << GifOf(4, 4, 0);
    QTest::newRow("photograph without a frame") << QByteArray("\xFF\xD8\xFF\xD9");
}

void PictureFactsTest::OtherFilesAreNoPictures()
{
    QFETCH(QByteArray, file);
    QCOMPARE(FactsOf(file).Fault, PictureFault::NoPicture);
}

void PictureFactsTest::FramesAreCounted()
{
    QCOMPARE(FactsOf(GifOf(3, 3, 1)).Frames, 1);
    QCOMPARE(FactsOf(GifOf(3, 3, 5)).Frames, 5);
}

void PictureFactsTest::TheLargestIconIsTaken()
{
    const QByteArray small = FileOf(Plain(16, 16), "ICO").mid(22);
    const QByteArray large = FileOf(Plain(48, 48), "ICO").mid(22);
    const auto entry = [](char side, const QByteArray& content, qsizetype at) {
        return QByteArray(2, side) + QByteArray("\x00\x00\x01\x00\x20\x00", 6) +
               Little<quint32>(static_cast<quint32>(content.size())) + Little<quint32>(static_cast<quint32>(at));
    };
    const QByteArray file = QByteArray("\x00\x00\x01\x00\x02\x00", 6) + entry(16, small, 38) +
                            entry(48, large, 38 + small.size()) + small + large;
    const PictureFacts facts = FactsOf(file);
    QCOMPARE(facts.Size, QSize(48, 48));
    QCOMPARE(facts.Index, 1);
}

void PictureFactsTest::AProgressivePictureMustBeKeptWhole()
{
    QCOMPARE(FactsOf(JpegClaim(4000, 3000, false)).KeptBytes, 0);
    QCOMPARE(FactsOf(JpegClaim(4000, 3000, true)).KeptBytes, qint64{4000} * 3000 * 3 * 2);
    const QSize shown(800, 600);
    QVERIFY(DecodingCost(FactsOf(JpegClaim(12000, 9000, false)), shown) < 64 << 20);
    QVERIFY(DecodingCost(FactsOf(JpegClaim(12000, 9000, true)), shown) > 512 << 20);
}

void PictureFactsTest::NoChangedByteBreaksTheReader_data()
{
    AddPictures();
}

// Whatever a byte becomes, the reader ends and claims nothing absurd.
void PictureFactsTest::NoChangedByteBreaksTheReader()
{
    QFETCH(QByteArray, file);
    for (qsizetype at = 0; at < std::min<qsizetype>(file.size(), 300); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xD9, 0xDA, 0xFF}) {
            QByteArray changed = file;
            changed[at] = static_cast<char>(value);
            const PictureFacts facts = FactsOf(changed);
            if (facts.Fault != PictureFault::None) continue;
            QVERIFY(!facts.Size.isEmpty());
            QVERIFY(qint64{facts.Size.width()} * facts.Size.height() <= 200'000'000);
        }
    }
}

void PictureFactsTest::PicturesFitTheirRoom_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("room");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("smaller stays") << QSize(10, 20) << QSize(100, 100) << QSize(10, 20);
    QTest::newRow("equal stays") << QSize(100, 100) << QSize(100, 100) << QSize(100, 100);
    QTest::newRow("wide") << QSize(400, 100) << QSize(100, 100) << QSize(100, 25);
    QTest::newRow("tall") << QSize(100, 400) << QSize(100, 100) << QSize(25, 100);
    QTest::newRow("both") << QSize(800, 400) << QSize(100, 20) << QSize(40, 20);
    QTest::newRow("a line") << QSize(100000, 1) << QSize(100, 100) << QSize(100, 1);
}

void PictureFactsTest::PicturesFitTheirRoom()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, room);
    QFETCH(QSize, shown);
    QCOMPARE(FitInto(picture, room), shown);
}

QTEST_GUILESS_MAIN(PictureFactsTest)

#include "picture_facts_test.moc"

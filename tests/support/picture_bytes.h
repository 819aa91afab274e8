#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QtEndian>

/// Picture files made in memory.

template <typename Number>
QByteArray Little(Number number)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

template <typename Number>
QByteArray Big(Number number)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

inline QByteArray FileOf(const QImage& image, const char* format)
{
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    image.save(&file, format);
    return file.data();
}

inline QImage Plain(int width, int height, const QColor& colour = Qt::darkGreen)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// One frame of a GIF file, all of one colour (0 or 1). The codes are three bits wide; to keep them so the table is
/// cleared after every second pixel.
inline QByteArray GifFrame(int width, int height, int colour)
{
    constexpr int ClearCode = 4;
    constexpr int EndCode = 5;
    QByteArray packed;
    unsigned pending = 0;
    int bits = 0;
    const auto put = [&](int code) {
        pending |= static_cast<unsigned>(code) << bits;
        for (bits += 3; bits >= 8; bits -= 8) {
            packed += static_cast<char>(pending & 0xFF);
            pending >>= 8;
        }
    };
    for (int pixel = 0; pixel < width * height; ++pixel) {
        if (pixel % 2 == 0) put(ClearCode);
        put(colour);
    }
    put(EndCode);
    packed += static_cast<char>(pending & 0xFF);

    QByteArray frame("\x21\xF9\x04\x00\x02\x00\x00\x00", 8);  // shown for a fiftieth of a second
    frame += "\x2C" + QByteArray(4, '\0') + Little<quint16>(static_cast<quint16>(width)) +
             Little<quint16>(static_cast<quint16>(height)) + QByteArray("\x00\x02", 2);
    for (qsizetype at = 0; at < packed.size(); at += 255) {
        const QByteArray block = packed.mid(at, 255);
        frame += static_cast<char>(block.size()) + block;
    }
    return frame + '\0';
}

/// A GIF file of frames in turns red and blue, played for ever.
inline QByteArray GifOf(int width, int height, int frames)
{
    QByteArray file = "GIF89a" + Little<quint16>(static_cast<quint16>(width)) +
                      Little<quint16>(static_cast<quint16>(height)) + QByteArray("\x80\x00\x00", 3) +
                      QByteArray("\xFF\x00\x00\x00\x00\xFF", 6);
    file += QByteArray("\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00", 19);
    for (int frame = 0; frame < frames; ++frame) file += GifFrame(width, height, frame % 2);
    return file + ";";
}

/// A bitmap's header with a palette's worth of nothing behind it.
inline QByteArray BitmapHeader(qint32 width, qint32 height, quint16 depth, quint32 compression = 0)
{
    return "BM" + Little<quint32>(54) + Little<quint32>(0) + Little<quint32>(54) + Little<quint32>(40) + Little(width) +
           Little(height) + Little<quint16>(1) + Little(depth) + Little(compression) + Little<quint32>(0) +
           QByteArray(16, '\0');
}

/// The frame header of a JPEG file, progressive or not, and a scan of all components without data.
inline QByteArray JpegClaim(quint16 width, quint16 height, bool progressive)
{
    QByteArray file("\xFF\xD8\xFF", 3);
    file += progressive ? '\xC2' : '\xC0';
    file += Big<quint16>(17) + '\x08' + Big(height) + Big(width) + '\x03';
    for (const char component : {'\1', '\2', '\3'}) file += QByteArray(1, component) + QByteArray("\x11\x00", 2);
    file += QByteArray("\xFF\xDA\x00\x0C\x03\x01\x00\x02\x00\x03\x00\x00\x00\x00", 14);
    return file + QByteArray("\xFF\xD9", 2);
}

/// An icon file with one entry.
inline QByteArray IconOf(const QByteArray& content, quint8 width, quint8 height)
{
    return QByteArray("\x00\x00\x01\x00\x01\x00", 6) + static_cast<char>(width) + static_cast<char>(height) +
           QByteArray("\x00\x00\x01\x00\x20\x00", 6) + Little<quint32>(static_cast<quint32>(content.size())) +
           Little<quint32>(22) + content;
}

/// The beginning of a PNG file that claims a size.
inline QByteArray PngClaim(quint32 width, quint32 height)
{
    return QByteArray("\x89PNG\r\n\x1a\n\x00\x00\x00\x0dIHDR", 16) + Big(width) + Big(height) +
           QByteArray("\x08\x06\x00\x00\x00\x00\x00\x00\x00", 9);
}

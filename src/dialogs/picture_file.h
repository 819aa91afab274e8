#pragma once

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QSize>
#include <QString>

/// What picture files say about themselves, read before anything is decoded: a few bytes can claim a picture that no
/// memory holds. Any thread.

enum class PictureFault {
    None,
    Unreadable,  ///< no such file, no right to it, no regular file
    NoPicture,   ///< none of the four formats, or damaged
    Incomplete,  ///< the file ends before the picture does
    TooLarge,    ///< more than is worth its memory
};

struct PictureFacts {
    PictureFault Fault = PictureFault::NoPicture;
    QByteArray Format;       ///< "bmp", "gif", "jpg" or "ico", by the content
    QSize Size;              ///< pixels, of the largest picture in the file
    int Index = 0;           ///< that picture's number
    int Frames = 1;          ///< more than one: the picture moves
    qint64 KeptBytes = 0;    ///< what the decoder must keep of the whole picture, whatever size it is shown in
    bool Reducible = false;  ///< the decoder itself reduces the picture in steps of an eighth
};

/// Reads the facts of an open file, from its beginning to its end.
PictureFacts ReadPictureFacts(QIODevice& file);

/// The memory that decoding a picture takes when it is shown in the given size, in bytes; an upper bound.
qint64 DecodingCost(const PictureFacts& facts, const QSize& shown);

/// A picture ready to be shown.
struct LoadedPicture {
    PictureFault Fault = PictureFault::None;
    QSize Shown;          ///< in device-independent pixels
    QImage Still;         ///< up to that size in device pixels; null for a moving picture
    bool Moving = false;  ///< the file is to be played, in `Pixels`
    QSize Pixels;         ///< the size in device pixels, never larger than the picture's own
};

/// The size of a picture that must fit into a room: its own, or reduced with the aspect kept. At least one pixel.
QSize FitInto(const QSize& picture, const QSize& room);

/// Opens a regular file for reading; false when that is refused. The name is byte-true.
bool OpenPicture(QFile& file, const QString& name);

/// Reads a picture file for a room of the screen, in device-independent pixels of `ratio` device pixels each.
LoadedPicture LoadPicture(const QString& name, const QSize& room, qreal ratio);

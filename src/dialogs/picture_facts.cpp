#include "dialogs/picture_file.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

namespace {

constexpr qint64 MaxFileBytes = qint64{1} << 30;
constexpr qint64 MaxPixels = 200'000'000;  ///< of a picture that is never held whole
constexpr int MaxIconSide = 1024;
constexpr qint64 MaxMovingPixels = qint64{8} << 20;  ///< every frame is decoded between two frames on the screen

qint64 Pixels(const QSize& size)
{
    return qint64{size.width()} * size.height();
}

/// Reads forward through a file, in small steps over a block in memory. Once the file has ended everything reads as 0.
class Scanner {
public:
    explicit Scanner(QIODevice& file) : File(file) { Seek(0); }

    bool Ended() const { return PastEnd; }

    qint64 At() const { return BlockStart + Next; }

    void Seek(qint64 offset)
    {
        BlockStart = offset;
        Next = 0;
        Block = offset < File.size() && File.seek(offset) ? File.read(BlockSize) : QByteArray();
    }

    void Skip(qint64 count)
    {
        if (count <= 0) return;
        if (Next + count <= Block.size())
            Next += count;
        else if (At() + count <= File.size())
            Seek(At() + count);
        else
            PastEnd = true;
    }

    int Byte()
    {
        if (Next == Block.size()) Seek(At());
        if (Block.isEmpty()) PastEnd = true;
        return PastEnd ? 0 : static_cast<unsigned char>(Block[Next++]);
    }

    int BigEndian16()
    {
        const int high = Byte();
        return high << 8 | Byte();
    }

    int LittleEndian16()
    {
        const int low = Byte();
        return low | Byte() << 8;
    }

    qint64 LittleEndian32()
    {
        const qint64 low = LittleEndian16();
        return low | qint64{LittleEndian16()} << 16;
    }

    qint64 BigEndian32()
    {
        const qint64 high = BigEndian16();
        return high << 16 | BigEndian16();
    }

    QByteArray Bytes(int count)
    {
        QByteArray bytes;
        while (count-- > 0) bytes += static_cast<char>(Byte());
        return bytes;
    }

private:
    static constexpr qint64 BlockSize = qint64{64} * 1024;

    QIODevice& File;
    QByteArray Block;
    qint64 BlockStart = 0;
    qint64 Next = 0;
    bool PastEnd = false;
};

PictureFacts Faulty(PictureFault fault)
{
    PictureFacts facts;
    facts.Fault = fault;
    return facts;
}

PictureFacts BitmapFacts(Scanner scan, qint64 fileSize)
{
    constexpr int OldHeader = 12;
    scan.Skip(10);
    const qint64 bitsAt = scan.LittleEndian32();
    const bool old = scan.LittleEndian32() == OldHeader;
    const qint64 width = old ? scan.LittleEndian16() : static_cast<qint32>(scan.LittleEndian32());
    const qint64 height = std::abs(old ? qint64{scan.LittleEndian16()} : static_cast<qint32>(scan.LittleEndian32()));
    scan.Skip(2);
    const int depth = scan.LittleEndian16();
    const qint64 compression = old ? 0 : scan.LittleEndian32();
    const qint64 packedBytes = old ? 0 : scan.LittleEndian32();
    if (scan.Ended()) return Faulty(PictureFault::Incomplete);
    if (width <= 0 || height == 0 || depth > 32) return Faulty(PictureFault::NoPicture);
    if (width * height > MaxPixels) return Faulty(PictureFault::TooLarge);

    constexpr qint64 RunLength8 = 1;
    constexpr qint64 RunLength4 = 2;
    const bool packed = compression == RunLength8 || compression == RunLength4;
    const qint64 bytes = packed ? packedBytes : (width * depth + 31) / 32 * 4 * height;
    if (bitsAt + bytes > fileSize) return Faulty(PictureFault::Incomplete);

    PictureFacts facts = Faulty(PictureFault::None);
    facts.Format = "bmp";
    facts.Size = QSize(static_cast<int>(width), static_cast<int>(height));
    facts.KeptBytes = width * height * 8;  // the picture, and a copy with other pixels that is reduced
    return facts;
}

void SkipSubBlocks(Scanner& scan)
{
    while (const int length = scan.Byte()) scan.Skip(length);
}

void SkipColours(Scanner& scan, int flags)
{
    constexpr int HasColours = 0x80;
    if ((flags & HasColours) != 0) scan.Skip(qint64{3} << ((flags & 7) + 1));
}

/// The blocks of frames up to the trailer; a file that ends between two of them counts as whole.
PictureFacts GifFacts(Scanner scan, qint64 fileSize)
{
    scan.Skip(6);
    int width = scan.LittleEndian16();
    int height = scan.LittleEndian16();
    const int screenFlags = scan.Byte();
    scan.Skip(2);
    SkipColours(scan, screenFlags);

    int frames = 0;
    while (!scan.Ended() && scan.At() < fileSize) {
        const int block = scan.Byte();
        if (block == 0x3B) break;
        if (block == 0x21) {
            scan.Skip(1);
            SkipSubBlocks(scan);
        } else if (block == 0x2C) {
            const int left = scan.LittleEndian16();
            const int top = scan.LittleEndian16();
            width = std::max(width, left + scan.LittleEndian16());
            height = std::max(height, top + scan.LittleEndian16());
            const int frameFlags = scan.Byte();
            SkipColours(scan, frameFlags);
            scan.Skip(1);
            SkipSubBlocks(scan);
            if (!scan.Ended()) ++frames;
        } else {
            break;
        }
    }
    const QSize size(width, height);
    if (Pixels(size) > MaxPixels || (frames > 1 && Pixels(size) > MaxMovingPixels))
        return Faulty(PictureFault::TooLarge);
    if (scan.Ended()) return Faulty(PictureFault::Incomplete);
    if (frames == 0 || size.isEmpty()) return Faulty(PictureFault::NoPicture);

    PictureFacts facts = Faulty(PictureFault::None);
    facts.Format = "gif";
    facts.Size = size;
    facts.Frames = frames;
    facts.KeptBytes = Pixels(size) * 12;  // the picture, what lies below a frame, and a copy that is reduced
    return facts;
}

/// The frame header of a JPEG file: its size, and what a decoder keeps that must see the whole file first.
struct JpegFrame {
    QSize Size;
    int Components = 0;
    qint64 Coefficients = 0;  ///< of all components, two bytes each
    bool Progressive = false;
};

JpegFrame ReadJpegFrame(Scanner& scan, int marker)
{
    JpegFrame frame;
    frame.Progressive = (marker & 3) == 2;
    scan.Skip(1);
    const int height = scan.BigEndian16();
    frame.Size = QSize(scan.BigEndian16(), height);
    frame.Components = scan.Byte();
    std::vector<int> shares;
    int mostAcross = 1;
    int mostDown = 1;
    for (int component = 0; component < frame.Components; ++component) {
        scan.Skip(1);
        const int factors = scan.Byte();
        scan.Skip(1);
        shares.push_back((factors >> 4) * (factors & 15));
        mostAcross = std::max(mostAcross, factors >> 4);
        mostDown = std::max(mostDown, factors & 15);
    }
    for (const int share : shares) frame.Coefficients += Pixels(frame.Size) * share / mostAcross / mostDown;
    return frame;
}

bool IsFrameHeader(int marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool StandsAlone(int marker)
{
    return (marker >= 0xD0 && marker <= 0xD8) || marker <= 0x01;
}

/// The next marker; what stands before it is compressed data or padding.
int NextMarker(Scanner& scan)
{
    while (!scan.Ended()) {
        if (scan.Byte() != 0xFF) continue;
        int marker = 0xFF;
        while (marker == 0xFF && !scan.Ended()) marker = scan.Byte();
        if (!StandsAlone(marker)) return marker;
    }
    return 0;
}

PictureFacts JpegFacts(Scanner scan)
{
    constexpr int EndOfPicture = 0xD9;
    constexpr int StartOfScan = 0xDA;
    std::optional<JpegFrame> frame;
    bool wholeFirst = false;
    int scans = 0;
    scan.Skip(2);
    for (int marker = NextMarker(scan); marker != EndOfPicture; marker = NextMarker(scan)) {
        if (scan.Ended()) break;
        const qint64 start = scan.At();
        const int length = scan.BigEndian16();
        if (length < 2) return Faulty(PictureFault::NoPicture);
        if (IsFrameHeader(marker) && !frame) frame = ReadJpegFrame(scan, marker);
        if (marker == StartOfScan && scans++ == 0 && frame)
            wholeFirst = frame->Progressive || scan.Byte() < frame->Components;
        if (!scan.Ended()) scan.Skip(start + length - scan.At());
    }
    if (frame && Pixels(frame->Size) > MaxPixels) return Faulty(PictureFault::TooLarge);
    if (scan.Ended()) return Faulty(PictureFault::Incomplete);
    if (!frame || frame->Size.isEmpty() || scans == 0) return Faulty(PictureFault::NoPicture);

    PictureFacts facts = Faulty(PictureFault::None);
    facts.Format = "jpg";
    facts.Size = frame->Size;
    facts.Reducible = true;
    if (wholeFirst) facts.KeptBytes = frame->Coefficients * 2;
    return facts;
}

/// The size that one picture of an icon file claims for itself; the directory's word does not bind the decoder.
QSize IconSize(Scanner scan, qint64 at)
{
    scan.Seek(at);
    if (scan.Bytes(8) == QByteArray("\x89PNG\r\n\x1a\n")) {
        scan.Skip(8);
        const qint64 width = scan.BigEndian32();
        const qint64 height = scan.BigEndian32();
        return QSize(static_cast<int>(std::min<qint64>(width, INT_MAX)),
                     static_cast<int>(std::min<qint64>(height, INT_MAX)));
    }
    scan.Seek(at + 4);
    const qint64 width = std::abs(static_cast<qint32>(scan.LittleEndian32()));
    const qint64 heights =
        std::abs(qint64{static_cast<qint32>(scan.LittleEndian32())});  // the picture's and its mask's
    return scan.Ended() ? QSize() : QSize(static_cast<int>(width), static_cast<int>(heights / 2));
}

PictureFacts IconFacts(Scanner scan, qint64 fileSize)
{
    PictureFacts facts = Faulty(PictureFault::NoPicture);
    facts.Format = "ico";
    scan.Skip(4);
    const int count = scan.LittleEndian16();
    int bestDepth = 0;
    for (int index = 0; index < count; ++index) {
        scan.Skip(6);
        const int depth = scan.LittleEndian16();
        const qint64 bytes = scan.LittleEndian32();
        const qint64 at = scan.LittleEndian32();
        if (scan.Ended()) return Faulty(PictureFault::Incomplete);
        const QSize size = IconSize(scan, at);
        if (size.width() > MaxIconSide || size.height() > MaxIconSide) return Faulty(PictureFault::TooLarge);
        if (at + bytes > fileSize) return Faulty(PictureFault::Incomplete);
        const bool larger = Pixels(size) > Pixels(facts.Size);
        if (size.isEmpty() || !(larger || (size == facts.Size && depth > bestDepth))) continue;
        facts.Fault = PictureFault::None;
        facts.Size = size;
        facts.Index = index;
        bestDepth = depth;
    }
    facts.KeptBytes = Pixels(facts.Size.expandedTo({0, 0})) * 12;
    return facts;
}

}  // namespace

PictureFacts ReadPictureFacts(QIODevice& file)
{
    const qint64 fileSize = file.size();
    if (fileSize > MaxFileBytes) return Faulty(PictureFault::TooLarge);
    const Scanner scan(file);
    const QByteArray start = Scanner(scan).Bytes(6);
    if (start.startsWith("BM")) return BitmapFacts(scan, fileSize);
    if (start == "GIF87a" || start == "GIF89a") return GifFacts(scan, fileSize);
    if (start.startsWith("\xFF\xD8")) return JpegFacts(scan);
    if (start.startsWith(QByteArray("\0\0\1\0", 4))) return IconFacts(scan, fileSize);
    return Faulty(PictureFault::NoPicture);
}

qint64 DecodingCost(const PictureFacts& facts, const QSize& shown)
{
    constexpr int BytesOfDecoded = 8;  ///< one picture as it is decoded, one with the pixels that are reduced
    constexpr int BytesOfShown = 8;    ///< one picture here, one on the screen's side
    qint64 cost = facts.KeptBytes + Pixels(shown) * BytesOfShown;
    if (facts.Reducible) {
        const qreal factor = std::min(qreal(facts.Size.width()) / std::max(1, shown.width()),
                                      qreal(facts.Size.height()) / std::max(1, shown.height()));
        const int eighths = std::clamp(static_cast<int>(std::ceil(8 / factor)), 1, 8);
        cost += Pixels(facts.Size) * eighths * eighths / 64 * BytesOfDecoded;
    }
    return cost;
}

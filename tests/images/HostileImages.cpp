#include "HostileImages.h"

#include "GifSamples.h"
#include "HeicSamples.h"
#include "SampleImages.h"

#include <QImage>
#include <QtEndian>

namespace {

const QImage &picture()
{
    static const QImage image = quarters({160, 120});
    return image;
}

QByteArray inOrder(QSysInfo::Endian order, quint32 number, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i) {
        const int place = order == QSysInfo::LittleEndian ? i : size - 1 - i;
        bytes[place] = char(number >> (8 * i));
    }
    return bytes;
}

QByteArray little(quint32 number, int size)
{
    return inOrder(QSysInfo::LittleEndian, number, size);
}

QByteArray big(quint32 number, int size)
{
    return inOrder(QSysInfo::BigEndian, number, size);
}

QByteArray patched(QByteArray bytes, qsizetype at, const QByteArray &patch)
{
    return bytes.replace(at, patch.size(), patch);
}

/// A JPEG segment of the application or comment kind.
QByteArray segment(quint8 marker, const QByteArray &payload)
{
    return QByteArray("\xFF") + char(marker) + big(quint32(payload.size()) + 2, 2) + payload;
}

QByteArray withSegment(const QByteArray &jpeg, const QByteArray &segment)
{
    return jpeg.first(2) + segment + jpeg.sliced(2);
}

struct TiffEntry
{
    quint16 tag;
    quint16 type;
    quint32 count;
    quint32 value;
};

/// A little-endian TIFF with one directory and then `data`, which begins at dataOffset().
QByteArray tiff(const QList<TiffEntry> &entries, const QByteArray &data, quint32 nextDirectory = 0)
{
    QByteArray bytes
        = QByteArray("II\x2A\0", 4) + little(8, 4) + little(quint32(entries.size()), 2);
    for (const TiffEntry &entry : entries)
        bytes += little(entry.tag, 2) + little(entry.type, 2) + little(entry.count, 4)
            + little(entry.value, 4);
    return bytes + little(nextDirectory, 4) + data;
}

QList<TiffEntry> grayTiff(quint32 width, quint32 height)
{
    constexpr quint32 entryCount = 8;
    const quint32 dataOffset = 8 + 2 + entryCount * 12 + 4;
    return {{256, 4, 1, width}, {257, 4, 1, height},     {258, 3, 1, 8}, {259, 3, 1, 1},
            {262, 3, 1, 1},     {273, 4, 1, dataOffset}, {277, 3, 1, 1}, {279, 4, 1, 64}};
}

QByteArray grayTiffWith(quint32 width, quint32 height, const TiffEntry &change)
{
    QList<TiffEntry> entries = grayTiff(width, height);
    bool isChanged = false;
    for (TiffEntry &entry : entries) {
        if (entry.tag == change.tag) {
            entry = change;
            isChanged = true;
        }
    }
    if (!isChanged)
        entries.append(change);
    return tiff(entries, QByteArray(64, '\x55'));
}

QByteArray bmp(qint32 width, qint32 height, int bits, quint32 compression, const QByteArray &data)
{
    constexpr quint32 headerSize = 54;
    return "BM" + little(headerSize + quint32(data.size()), 4) + little(0, 4)
        + little(headerSize, 4) + little(40, 4) + little(quint32(width), 4)
        + little(quint32(height), 4) + little(1, 2) + little(quint32(bits), 2)
        + little(compression, 4) + QByteArray(20, '\0') + data;
}

/// The progressive JPEG with its last pass repeated.
QByteArray withPasses(const QByteArray &progressive, int count)
{
    const qsizetype lastScan = progressive.lastIndexOf("\xFF\xDA");
    const QByteArray end = progressive.last(2);
    const QByteArray scan = progressive.sliced(lastScan, progressive.size() - 2 - lastScan);
    return progressive.chopped(2) + scan.repeated(count) + end;
}

/// Appends numbers to bytes bit by bit, the lowest first.
class BitWriter
{
public:
    void put(quint32 number, int bits)
    {
        for (int i = 0; i < bits; ++i, ++m_count) {
            if (m_count % 8 == 0)
                m_bytes.append('\0');
            m_bytes.back() = char(m_bytes.back() | (number >> i & 1) << (m_count % 8));
        }
    }
    QByteArray bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    int m_count = 0;
};

QByteArray boxed(const char *type, const QByteArray &content)
{
    return big(quint32(content.size()) + 8, 4) + type + content;
}

void addShort(QList<HostileImage> &images)
{
    images.append({"nothing", {}, Outcome::Refused});
    images.append({"one byte", "\xFF", Outcome::Refused});
    images.append({"zeros", QByteArray(100'000, '\0'), Outcome::Refused});
    images.append({"jpeg magic alone", "\xFF\xD8\xFF", Outcome::Refused});
    images.append({"png magic alone", "\x89PNG\r\n\x1A\n", Outcome::Refused});
    images.append({"gif magic alone", "GIF89a", Outcome::Refused});
    images.append({"webp magic alone", "RIFF\x20\1\1\1WEBP", Outcome::Refused});
    images.append({"bmp magic alone", "BM", Outcome::Refused});
    images.append({"tiff magic alone", QByteArray("II\x2A\0", 4), Outcome::Refused});
    images.append({"big-endian tiff magic alone", QByteArray("MM\0\x2A", 4), Outcome::Refused});
    images.append({"heic magic alone", boxed("ftyp", "heic"), Outcome::Refused});

    const QList<QByteArray> kinds{"jpeg", "progressive jpeg", "png", "interlaced png", "gif",
                                  "webp", "lossless webp",    "bmp", "tiff",           "heic"};
    const QList<QByteArray> sound = soundImages();
    for (qsizetype i = 0; i < kinds.size(); ++i) {
        for (const int percent : {10, 50, 95})
            images.append({kinds[i] + " cut to " + QByteArray::number(percent) + " %",
                           sound[i].first(sound[i].size() * percent / 100), Outcome::Either});
        images.append({kinds[i] + " without its last byte", sound[i].chopped(1), Outcome::Either});
        images.append({kinds[i] + " with noise after it", sound[i] + sound[(i + 1) % kinds.size()],
                       Outcome::Taken});
    }
}

void addMislabelled(QList<HostileImage> &images)
{
    const QByteArray svg
        = "<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" "
          "xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"99\" height=\"99\">"
          "<image xlink:href=\"file:///etc/passwd\" width=\"9\" height=\"9\"/>"
          "<image xlink:href=\"/etc/hostname\" width=\"9\" height=\"9\"/></svg>";
    images.append({"svg with local references", svg, Outcome::Refused});
    images.append({"svg behind a byte order mark", "\xEF\xBB\xBF" + svg, Outcome::Refused});
    images.append({"svg behind jpeg magic", "\xFF\xD8\xFF" + svg, Outcome::Refused});
    images.append({"svg behind png magic", "\x89PNG\r\n\x1A\n" + svg, Outcome::Refused});
    images.append({"packed svg", QByteArray::fromHex("1f8b08000000000000ff") + qCompress(svg),
                   Outcome::Refused});
    images.append({"pdf", "%PDF-1.7\n1 0 obj<</Type/Catalog>>endobj\n%%EOF", Outcome::Refused});
    images.append({"postscript", "%!PS-Adobe-3.0 EPSF-3.0\n", Outcome::Refused});
    images.append({"page", "<html><img src='file:///etc/passwd'></html>", Outcome::Refused});
    images.append({"archive", "PK\3\4" + QByteArray(100, '\0'), Outcome::Refused});
    images.append({"icon", encoded(picture().scaled(64, 64), "ico"), Outcome::Refused});
    images.append({"apple icon", "icns" + big(8, 4), Outcome::Refused});
    images.append({"pixmap as program text",
                   R"(/* XPM */ static char *x[] = {"1 1 1 1", "a c #ff0000", "a"};)",
                   Outcome::Refused});
    images.append({"bitmap as program text",
                   "#define x_width 8\n#define x_height 1\nstatic char x_bits[] = {0xff};",
                   Outcome::Refused});
    images.append({"portable pixmap", "P6 1 1 255\nabc", Outcome::Refused});
    images.append({"wireless bitmap", QByteArray::fromHex("00000101ff"), Outcome::Refused});
    images.append({"targa", QByteArray::fromHex("000002000000000000000000010001001800ffffff"),
                   Outcome::Refused});
    images.append(
        {"network animation", "\x8AMNG\r\n\x1A\n" + QByteArray(64, '\0'), Outcome::Refused});
    images.append({"sound", "RIFF\x20\1\1\1WAVEfmt ", Outcome::Refused});
    images.append(
        {"film", boxed("ftyp", QByteArray("isom\0\0\2\0", 8) + "isomiso2mp41"), Outcome::Refused});
    images.append({"picture of another codec",
                   boxed("ftyp", QByteArray("avif\0\0\0\0", 8) + "mif1"), Outcome::Refused});
    images.append(
        {"png behind jpeg magic", "\xFF\xD8\xFF" + encoded(picture(), "png"), Outcome::Refused});
    images.append({"jpeg behind png magic", "\x89PNG\r\n\x1A\n" + encoded(picture(), "jpeg"),
                   Outcome::Refused});
    images.append({"jpeg that is an archive too",
                   encoded(picture(), "jpeg") + "PK\5\6" + QByteArray(18, '\0'), Outcome::Taken});
    images.append({"jpeg with a page in its comment",
                   withSegment(encoded(picture(), "jpeg"), segment(0xFE, svg)), Outcome::Taken});
    images.append(
        {"bmp around a png", bmp(160, 120, 0, 5, encoded(picture(), "png")), Outcome::Refused});
    images.append(
        {"bmp around a jpeg", bmp(160, 120, 0, 4, encoded(picture(), "jpeg")), Outcome::Refused});
}

void addWrongSizes(QList<HostileImage> &images)
{
    const QByteArray jpeg = encoded(picture(), "jpeg");
    const qsizetype jpegSize = jpeg.indexOf("\xFF\xC0") + 5;
    const QByteArray png = encoded(picture(), "png");
    const QByteArray webp = soundImages()[5];
    images.append({"png of 120 megapixels", flatPng({12'000, 10'000}, {}), Outcome::Taken});
    images.append({"png of one row more", flatPng({12'000, 10'001}, {}), Outcome::Refused});
    images.append(
        {"palette png of 120 megapixels",
         flatPng({12'000, 10'000}, {.bitDepth = 8, .colorType = 3, .bytesPerRow = 12'000}),
         Outcome::Taken});
    images.append(
        {"true colour png of 100 megapixels",
         flatPng({10'000, 10'000}, {.bitDepth = 8, .colorType = 2, .bytesPerRow = 30'000}),
         Outcome::Taken});
    images.append(
        {"interlaced png of 60 megapixels",
         flatPng({10'000, 6'000},
                 {.bitDepth = 8, .colorType = 2, .bytesPerRow = 30'000, .interlaced = true}),
         Outcome::Taken});
    images.append({"lossless webp of 27 megapixels", flatWebp({5'400, 5'000}), Outcome::Taken});
    images.append(
        {"lossless webp of 100 megapixels", flatWebp({10'000, 10'000}), Outcome::Refused});
    images.append({"lossless webp of 48 megapixels", flatWebp({8'000, 6'000}), Outcome::Taken});
    images.append({"X-ray of 30 megapixels, 16-bit gray",
                   flatPng({5'000, 6'000}, {.bitDepth = 16, .bytesPerRow = 10'000}),
                   Outcome::Taken});
    images.append({"16-bit png of 30 megapixels",
                   flatPng({6'000, 5'000}, {.bitDepth = 16, .colorType = 2, .bytesPerRow = 36'000}),
                   Outcome::Taken});
    images.append(
        {"16-bit png of 100 megapixels with transparency",
         flatPng({10'000, 10'000}, {.bitDepth = 16, .colorType = 6, .bytesPerRow = 80'000}),
         Outcome::Either});
    images.append({"gif of 30 megapixels", flatGif({6'000, 5'000}), Outcome::Taken});
    images.append({"gif of 120 megapixels", flatGif({12'000, 10'000}), Outcome::Taken});
    images.append({"gif of one row more", flatGif({12'000, 10'001}), Outcome::Refused});
    images.append({"png as thin as a thread", flatPng({1, 900'000}, {}), Outcome::Taken});
    images.append({"png that says it is endless",
                   patched(png, 16, big(0x7FFFFFFF, 4) + big(0x7FFFFFFF, 4)), Outcome::Refused});
    images.append({"png without a size", flatPng({0, 0}, {}), Outcome::Refused});
    images.append({"jpeg that says it is the largest",
                   patched(jpeg, jpegSize, big(65'500, 2) + big(65'500, 2)), Outcome::Refused});
    images.append({"jpeg that says it is 119 megapixels",
                   patched(jpeg, jpegSize, big(10'900, 2) + big(10'900, 2)), Outcome::Either});
    images.append({"jpeg without height", patched(jpeg, jpegSize, big(0, 2)), Outcome::Refused});
    images.append({"jpeg without width", patched(jpeg, jpegSize + 2, big(0, 2)), Outcome::Refused});
    images.append({"gif that says it is the largest",
                   patched(animatedGif(), 6, little(65'535, 2) + little(65'535, 2)),
                   Outcome::Refused});
    images.append({"gif that says it is 25 megapixels",
                   patched(animatedGif(), 6, little(5'000, 2) + little(5'000, 2)),
                   Outcome::Either});
    images.append({"gif without a size", patched(animatedGif(), 6, little(0, 4)), Outcome::Either});
    images.append({"webp that says it is the largest",
                   patched(webp, 26, little(16'383, 2) + little(16'383, 2)), Outcome::Refused});
    images.append(
        {"bmp that says it is 900 megapixels", bmp(30'000, 30'000, 24, 0, {}), Outcome::Refused});
    images.append(
        {"bmp that says it is 50 megapixels", bmp(10'000, 5'000, 24, 0, "abc"), Outcome::Either});
    images.append(
        {"bmp of least height", bmp(10, qint32(0x80000000), 24, 0, {}), Outcome::Refused});
    images.append({"bmp upside down", bmp(2, -2, 24, 0, QByteArray(16, '\x77')), Outcome::Taken});
    images.append({"bmp without a size", bmp(0, 0, 24, 0, {}), Outcome::Refused});
    images.append({"tiff that says it is endless",
                   grayTiffWith(0xFFFFFFFF, 0xFFFFFFFF, {258, 3, 1, 8}), Outcome::Refused});
    images.append({"tiff that says it is 119 megapixels",
                   grayTiffWith(10'900, 10'900, {258, 3, 1, 8}), Outcome::Either});
    images.append({"tiff without a size", grayTiffWith(0, 0, {258, 3, 1, 8}), Outcome::Refused});
    const QByteArray heic = heicPhotograph();
    QByteArray vast = heic;
    for (qsizetype at = 0; (at = vast.indexOf("ispe", at)) >= 0; at += 4)
        vast.replace(at + 8, 8, big(60'000, 4) + big(60'000, 4));
    images.append({"heic that says it is 3600 megapixels", vast, Outcome::Refused});
    const qsizetype grid = heic.indexOf("idat") + 4;
    images.append({"heic whose tiles are laid out over more",
                   patched(heic, grid, QByteArray::fromHex("0001000060006000")), Outcome::Either});
    images.append({"heic whose tiles are many",
                   patched(heic, grid, QByteArray::fromHex("0000ffff00400030")), Outcome::Either});
}

void addBloated(QList<HostileImage> &images)
{
    const QByteArray png = encoded(picture(), "png");
    const QByteArray jpeg = encoded(picture(), "jpeg");
    const QByteArray zippedText = pngChunk(
        "zTXt", QByteArray("k\0\0", 3) + qCompress(QByteArray(7'900'000, ' '), 9).sliced(4));
    images.append({"png with texts that unpack to 8 GB",
                   withPngChunk(png, zippedText.repeated(1'000)), Outcome::Taken});
    images.append({"png with such texts at its end",
                   png.chopped(12) + zippedText.repeated(500) + png.last(12), Outcome::Taken});
    const QByteArray zippedUnicode = pngChunk(
        "iTXt", QByteArray("k\0\1\0\0\0", 6) + qCompress(QByteArray(7'900'000, ' '), 9).sliced(4));
    images.append({"png with packed unicode texts",
                   withPngChunk(png, zippedUnicode.repeated(1'000)), Outcome::Taken});
    images.append({"png with a profile that unpacks to 64 MB",
                   withPngChunk(png,
                                pngChunk("iCCP",
                                         QByteArray("p\0\0", 3)
                                             + qCompress(QByteArray(64 << 20, '\0'), 9).sliced(4))),
                   Outcome::Either});
    images.append(
        {"png with a long plain text",
         withPngChunk(png, pngChunk("tEXt", QByteArray("k\0", 2) + QByteArray(10 << 20, 'x'))),
         Outcome::Taken});
    images.append({"png of a million chunks",
                   png.first(33) + pngChunk("prVt", {}).repeated(1'000'000) + png.sliced(33),
                   Outcome::Taken});
    images.append({"png whose pixels never end",
                   "\x89PNG\r\n\x1A\n" + flatPng({64, 64}, {}).sliced(8, 25)
                       + pngChunk("IDAT", qCompress(QByteArray(100 << 20, '\0'), 9).sliced(4))
                       + pngChunk("IEND", {}),
                   Outcome::Either});
    const QByteArray surplus = qCompress(QByteArray(50 << 20, '\0'), 9).sliced(4);
    images.append({"png whose pixels never end, in many chunks",
                   "\x89PNG\r\n\x1A\n" + flatPng({2'000, 2'000}, {}).sliced(8, 25)
                       + pngChunk("IDAT", surplus) + pngChunk("IDAT", surplus).repeated(200)
                       + pngChunk("IEND", {}),
                   Outcome::Refused});
    images.append({"png chunk of greatest length", withPngChunk(png, big(0x7FFFFFFF, 4) + "tEXt"),
                   Outcome::Refused});
    images.append({"png chunk past every length", withPngChunk(png, big(0xFFFFFFFF, 4) + "IDAT"),
                   Outcome::Refused});
    const QByteArray progressive = encodedProgressively(quarters({6'000, 4'000}));
    images.append({"jpeg of 2,000 passes over 24 megapixels", withPasses(progressive, 2'000),
                   Outcome::Refused});
    images.append(
        {"jpeg of 30 passes over 24 megapixels", withPasses(progressive, 30), Outcome::Taken});
    images.append({"jpeg of 100,000 passes", withPasses(encodedProgressively(picture()), 50'000),
                   Outcome::Either});
    images.append({"jpeg with 12 MB of comments",
                   withSegment(jpeg, segment(0xFE, QByteArray(65'000, 'x')).repeated(190)),
                   Outcome::Taken});
    images.append({"jpeg of a million fill bytes",
                   jpeg.first(2) + QByteArray(1'000'000, '\xFF') + jpeg.sliced(2), Outcome::Taken});
    images.append(
        {"jpeg without an end", jpeg.chopped(2) + QByteArray(1'000'000, '\xD0'), Outcome::Taken});
}

void addContradictory(QList<HostileImage> &images)
{
    const QByteArray jpeg = encoded(picture(), "jpeg");
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    images.append({"jpeg with wild sampling", patched(jpeg, frame + 11, "\xFF"), Outcome::Either});
    images.append(
        {"jpeg without sampling", patched(jpeg, frame + 11, QByteArray(1, '\0')), Outcome::Either});
    images.append(
        {"jpeg with 12 bits a sample", patched(jpeg, frame + 4, "\x0C"), Outcome::Refused});
    images.append({"jpeg with 200 components", patched(jpeg, frame + 9, "\xC8"), Outcome::Refused});
    images.append(
        {"jpeg that claims arithmetic coding", patched(jpeg, frame + 1, "\xC9"), Outcome::Either});
    images.append({"lossless jpeg", patched(jpeg, frame + 1, "\xC3"), Outcome::Refused});
    images.append({"jpeg with two frames",
                   jpeg.first(frame) + jpeg.sliced(frame, 19) + jpeg.sliced(frame),
                   Outcome::Refused});
    images.append({"jpeg with a directory that leads to itself",
                   withSegment(jpeg,
                               segment(0xE1,
                                       QByteArray("Exif\0\0MM\0\x2A\0\0\0\x08\0\1", 16)
                                           + QByteArray::fromHex("8769000400000001000000080000"
                                                                 "0008"))),
                   Outcome::Taken});
    images.append(
        {"jpeg with a directory of 65,535 entries",
         withSegment(jpeg, segment(0xE1, QByteArray("Exif\0\0MM\0\x2A\0\0\0\x08\xFF\xFF", 16))),
         Outcome::Taken});
    images.append(
        {"jpeg with a broken profile",
         withSegment(jpeg,
                     segment(0xE2, QByteArray("ICC_PROFILE\0\1\1", 14) + QByteArray(500, '\xFF'))),
         Outcome::Taken});
    images.append({"jpeg with a picture in its comment and its thumbnail",
                   withSegment(withSegment(jpeg, segment(0xFE, jpeg.first(600))),
                               segment(0xE1, QByteArray("Exif\0\0", 6) + jpeg.first(600))),
                   Outcome::Taken});
    images.append({"tiff whose directories go in a circle",
                   tiff(grayTiff(8, 8), QByteArray(64, 'x'), 8), Outcome::Taken});
    images.append({"tiff whose strip lies outside", grayTiffWith(8, 8, {273, 4, 1, 0xFFFFFF00}),
                   Outcome::Either});
    images.append({"tiff with one giant strip", grayTiffWith(8, 8, {278, 4, 1, 0xFFFFFFFF}),
                   Outcome::Either});
    images.append({"tiff with 65,535 samples a pixel",
                   grayTiffWith(8'000, 8'000, {277, 3, 1, 65'535}), Outcome::Refused});
    images.append({"tiff with 64 bits a sample", grayTiffWith(4'000, 4'000, {258, 3, 1, 64}),
                   Outcome::Either});
    images.append(
        {"tiff with giant tiles",
         tiff(grayTiff(8, 8) + QList<TiffEntry>{{322, 4, 1, 0x7FFFFFF0}, {323, 4, 1, 0x7FFFFFF0}},
              QByteArray(64, 'x')),
         Outcome::Refused});
    images.append({"tiff with a jpeg inside", grayTiffWith(8, 8, {259, 3, 1, 7}), Outcome::Either});
    images.append(
        {"tiff in an unknown compression", grayTiffWith(8, 8, {259, 3, 1, 999}), Outcome::Either});
    images.append({"tiff whose directory lies outside",
                   QByteArray("II\x2A\0", 4) + little(0xFFFFFFF0, 4), Outcome::Refused});
    images.append({"tiff of another generation",
                   QByteArray("II\x2B\0\x08\0\0\0", 8) + QByteArray(64, '\0'), Outcome::Refused});
    images.append({"bmp with a palette of 4 billion",
                   patched(bmp(2, 2, 8, 0, QByteArray(1'200, 'x')), 46, little(0xFFFFFFFF, 4)),
                   Outcome::Either});
    images.append(
        {"bmp of runs that overflow",
         bmp(4, 4, 8, 1, QByteArray(1'024, '\0') + QByteArray("\xFF\1", 2).repeated(1'000)),
         Outcome::Either});
    images.append(
        {"bmp of jumps",
         bmp(4, 4, 8, 1, QByteArray(1'024, '\0') + QByteArray("\0\2\xFF\xFF", 4).repeated(1'000)),
         Outcome::Either});
    images.append(
        {"gif with a wrong code size", patched(animatedGif(), 61, "\xFF"), Outcome::Either});
    images.append({"heic without its boxes", heicPhotograph().first(28), Outcome::Refused});
    images.append(
        {"heic of boxes in boxes",
         heicPhotograph().first(28)
             + boxed("meta",
                     QByteArray(4, '\0') + QByteArray("\0\0\0\x08iprp", 8).repeated(100'000)),
         Outcome::Refused});
    images.append({"heic box of no length",
                   heicPhotograph().first(28) + QByteArray("\0\0\0\0meta", 8), Outcome::Refused});
}

void addRare(QList<HostileImage> &images)
{
    images.append({"four inks", cmykJpeg(), Outcome::Taken});
    images.append({"gray jpeg",
                   encoded(picture().convertToFormat(QImage::Format_Grayscale8), "jpeg"),
                   Outcome::Taken});
    images.append({"16-bit png", encoded(picture().convertToFormat(QImage::Format_RGBA64), "png"),
                   Outcome::Taken});
    images.append({"16-bit tiff", encoded(picture().convertToFormat(QImage::Format_RGBX64), "tiff"),
                   Outcome::Taken});
    images.append({"black and white png",
                   encoded(picture().convertToFormat(QImage::Format_Mono), "png"), Outcome::Taken});
    images.append({"animated gif", animatedGif(), Outcome::Taken});
    images.append({"10-bit heic", heicWithTenBits(), Outcome::Taken});
    images.append({"heic with transparency", heicWithAlpha(), Outcome::Taken});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const QImage stored = storedWithOrientation(picture(), orientation);
        images.append({"orientation " + QByteArray::number(orientation),
                       withExifOrientation(encoded(stored, "jpeg"), orientation), Outcome::Taken});
    }
    const QByteArray png = encoded(picture(), "png");
    constexpr qsizetype limit = 12'582'912;
    images.append({"12 MB", png + QByteArray(limit - png.size(), '\0'), Outcome::Taken});
    images.append(
        {"12 MB and a byte", png + QByteArray(limit + 1 - png.size(), '\0'), Outcome::Refused});
}

} // namespace

QByteArray flatWebp(QSize size)
{
    BitWriter stream;
    stream.put(0x2F, 8);
    stream.put(quint32(size.width()) - 1, 14);
    stream.put(quint32(size.height()) - 1, 14);
    stream.put(0, 4); // No transparency, version 0
    stream.put(0, 3); // No transformation, no colour cache, one group of codes
    for (int channel = 0; channel < 4; ++channel) {
        stream.put(0b101, 3); // One symbol, written in 8 bits
        stream.put(0x77, 8);
    }
    stream.put(0b0001, 4); // No distances
    QByteArray data = stream.bytes();
    data.append(data.size() % 2, '\0');
    const QByteArray chunk = "VP8L" + little(quint32(data.size()), 4) + data;
    return "RIFF" + little(quint32(chunk.size()) + 4, 4) + "WEBP" + chunk;
}

QList<QByteArray> soundImages()
{
    const QImage clear = picture().convertToFormat(QImage::Format_ARGB32);
    return {encoded(picture(), "jpeg"),
            encodedProgressively(picture()),
            encoded(picture(), "png"),
            interlacedPng(),
            animatedGif(),
            encoded(picture(), "webp"),
            encoded(clear, "webp", 100),
            encoded(picture(), "bmp"),
            encoded(picture(), "tiff"),
            heicPhotograph(),
            heicTurnedPhotograph(),
            heicWithAlpha(),
            encoded(picture().convertToFormat(QImage::Format_Indexed8), "png"),
            encoded(picture().convertToFormat(QImage::Format_RGBA64), "png"),
            encoded(picture().convertToFormat(QImage::Format_Indexed8), "bmp"),
            encoded(picture().convertToFormat(QImage::Format_Mono), "tiff"),
            withExifOrientation(encoded(picture(), "jpeg"), 6),
            cmykJpeg()};
}

QList<HostileImage> hostileImages()
{
    QList<HostileImage> images;
    addShort(images);
    addMislabelled(images);
    addWrongSizes(images);
    addBloated(images);
    addContradictory(images);
    addRare(images);
    return images;
}

// Reading all metadata of many camera-sized JPEGs, beside `exiv2 -pa` over the same files in
// the same run, and the marker scan beside a bare memchr over the same bytes.
//
// The files (RKBASE_BENCH_JPEGS of them, 1000 by default, 3 to 5 MB each) are written once to a
// temporary folder: a few noisy pictures encoded by Qt, each copy with its own Exif (GPS,
// thumbnail), IPTC and XMP. exiv2 must be on PATH for the comparison; without it only our
// figures are shown.
#include "BenchRatios.h"

#include "metadata/Exif.h"
#include "metadata/Image.h"
#include "metadata/Iptc.h"
#include "metadata/Jpeg.h"
#include "metadata/TiffBuilder_p.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstring>

namespace {

using namespace rkBase::tiffbuild;

QByteArray noisyJpeg(int w, int h, quint32 seed)
{
    QImage img(w, h, QImage::Format_RGB32);
    QRandomGenerator rng(seed);
    for (int y = 0; y < h; ++y) {
        auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < w; ++x)
            line[x] = rng.generate() | 0xff000000u;
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    img.save(&buffer, "JPG", 92);
    return bytes;
}

QByteArray metadataFor(int i, const QByteArray& thumb)
{
    const QByteArray tiff = Builder(i % 2)
                                .add(Builder::Ifd0, 271, 2, ascii("Bench Camera"))
                                .add(Builder::Ifd0, 272, 2, ascii("Model " + QByteArray::number(i)))
                                .add(Builder::Ifd0, 274, 3, shorts({1}))
                                .add(Builder::Ifd0, 282, 5, rationals({{300, 1}}))
                                .add(Builder::ExifDir, 36867, 2, ascii("2016:08:02 14:05:09"))
                                .add(Builder::ExifDir, 33434, 5, rationals({{1, 125}}))
                                .add(Builder::ExifDir, 37386, 5, rationals({{24 + i % 50, 1}}))
                                .add(Builder::GpsDir, 1, 2, ascii("N"))
                                .add(Builder::GpsDir, 2, 5, rationals({{60, 1}, {i % 60, 1}, {1234, 100}}))
                                .add(Builder::GpsDir, 3, 2, ascii("E"))
                                .add(Builder::GpsDir, 4, 5, rationals({{5, 1}, {20, 1}, {i, 100}}))
                                .thumbnail(thumb)
                                .build();
    const QByteArray iptc = dataset(0, QByteArray("\0\x04", 2)) + dataset(25, "gneiss") + dataset(25, "fault") +
                            dataset(120, "Outcrop " + QByteArray::number(i));
    return exifSegment(tiff) + xmpSegment(xmpPacket("<x:xmpmeta/>")) + photoshopSegment(resource(1028, iptc));
}

struct Corpus {
    QTemporaryDir dir;
    QStringList files;
    QByteArray largePlain; // a big JPEG with no APP13, in memory
    Corpus()
    {
        const int count =
            qEnvironmentVariableIsSet("RKBASE_BENCH_JPEGS") ? qEnvironmentVariableIntValue("RKBASE_BENCH_JPEGS") : 1000;
        std::fprintf(stderr, "writing %d JPEGs to %s ...\n", count, qPrintable(dir.path()));
        QList<QByteArray> pictures;
        for (int k = 0; k < 3; ++k) // about 3, 4 and 5 MB
            pictures << noisyJpeg(2100 + 300 * k, 1450 + 200 * k, 7 + k);
        const QByteArray thumb = noisyJpeg(160, 120, 99);
        for (int i = 0; i < count; ++i) {
            const QString path = dir.filePath(QStringLiteral("img%1.jpg").arg(i, 4, 10, QLatin1Char('0')));
            QFile f(path);
            if (f.open(QIODevice::WriteOnly))
                f.write(withSegments(pictures[i % 3], metadataFor(i, thumb)));
            files << path;
        }
        largePlain = pictures[2];
        std::fprintf(stderr, "sizes: %.1f, %.1f, %.1f MB\n", pictures[0].size() / 1e6, pictures[1].size() / 1e6,
                     pictures[2].size() / 1e6);
    }
};

Corpus& corpus()
{
    static Corpus c;
    return c;
}

void BM_LibraryReadAll(benchmark::State& state)
{
    const QStringList& files = corpus().files;
    for (auto _ : state) {
        qint64 sum = 0;
        for (const QString& path : files) {
            rkBase::Image image(path);
            if (rkBase::Exif* exif = image.exif()) {
                for (rkBase::Exif::Tag tag : exif->tag_offsets().keys())
                    sum += exif->Value(tag).bytes().size();
                sum += exif->Thumbnail().size();
            }
            if (rkBase::Iptc* iptc = image.iptc())
                for (rkBase::Iptc::Tag tag : iptc->tag_offsets().uniqueKeys())
                    sum += iptc->Values(tag).size();
            sum += image.xmp() != nullptr;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["files"] = files.size();
}
BENCHMARK(BM_LibraryReadAll)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_Exiv2PrintAll(benchmark::State& state)
{
    const QString exiv2 = QStandardPaths::findExecutable(QStringLiteral("exiv2"));
    if (exiv2.isEmpty()) {
        state.SkipWithError("exiv2 not on PATH");
        for (auto _ : state) {
        }
        return;
    }
    const QStringList& files = corpus().files;
    for (auto _ : state) {
        // One process over all files, so that start-up is paid once, as in our loop.
        QProcess p;
        p.setStandardOutputFile(QProcess::nullDevice());
        p.setStandardErrorFile(QProcess::nullDevice());
        p.start(exiv2, QStringList{QStringLiteral("-pa")} + files);
        p.waitForFinished(-1);
    }
}
BENCHMARK(BM_Exiv2PrintAll)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_ScanLargeJpegNoApp13(benchmark::State& state)
{
    QByteArray bytes = corpus().largePlain;
    for (auto _ : state) {
        rkBase::Jpeg jpeg(&bytes);
        benchmark::DoNotOptimize(jpeg.iptc());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(BM_ScanLargeJpegNoApp13)->Unit(benchmark::kMicrosecond);

void BM_BareMemchrFF(benchmark::State& state)
{
    const QByteArray bytes = corpus().largePlain;
    for (auto _ : state) {
        // Visit every FF byte, the least any scan for marker pairs must do.
        const char* p = bytes.constData();
        const char* end = p + bytes.size();
        qint64 n = 0;
        while ((p = static_cast<const char*>(std::memchr(p, 0xFF, size_t(end - p)))) != nullptr && p + 1 < end) {
            n += p[1] == char(0xED);
            p += 2;
        }
        benchmark::DoNotOptimize(n);
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(BM_BareMemchrFF)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    corpus();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // Reading every JPEG takes three scans (Exif, IPTC, XMP) against one bare pass.
    reporter.printRatios({{"BM_LibraryReadAll/iterations:3/real_time", "BM_Exiv2PrintAll/iterations:3/real_time"},
                          {"BM_ScanLargeJpegNoApp13", "BM_BareMemchrFF"}},
                         {0.5, 0.0});
    return 0;
}

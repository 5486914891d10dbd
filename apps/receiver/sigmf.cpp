#include "apps/receiver/sigmf.h"

#include "apps/common/failure.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <map>

namespace receiver {

using apps::Failure;

namespace {

constexpr qint64 kLargestMeta = 64 << 20;
const QLatin1String kMetaEnding(".sigmf-meta");

Failure broken(const QString &name, const QString &what)
{
    return {Failure::Runtime, QStringLiteral("%1 can't be used as SigMF: %2.").arg(name, what)};
}

/// A whole number from 0 to 2^53, or \a absent when the key is missing.
std::int64_t wholeNumber(const QJsonObject &object, const char *key, std::int64_t absent,
                         const QString &name)
{
    const QJsonValue value = object.value(QLatin1String(key));
    if (value.isUndefined())
        return absent;
    const double number = value.toDouble(-1);
    if (!(number >= 0 && number <= 9007199254740992.0) || number != std::floor(number))
        throw broken(name, QStringLiteral("%1 is no whole number").arg(QLatin1String(key)));
    return std::int64_t(number);
}

SampleFormat parseDatatype(const QString &text, SigMfMeta &meta, const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral("^([cr])(f32|f64|i32|i16|u32|u16|i8|u8)(_le|_be)?$"));
    static const std::map<QString, NumberKind> kinds = {
        {QStringLiteral("f32"), NumberKind::f32}, {QStringLiteral("f64"), NumberKind::f64},
        {QStringLiteral("i32"), NumberKind::i32}, {QStringLiteral("i16"), NumberKind::i16},
        {QStringLiteral("u32"), NumberKind::u32}, {QStringLiteral("u16"), NumberKind::u16},
        {QStringLiteral("i8"), NumberKind::i8},   {QStringLiteral("u8"), NumberKind::u8}};
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw broken(name,
                     QStringLiteral("its core:datatype \"%1\" is unknown").arg(text.left(40)));
    SampleFormat format =
        makeFormat(kinds.at(match.captured(2)), match.captured(1) == QLatin1String("c"));
    format.bigEndian = match.captured(3) == QLatin1String("_be");
    if (match.captured(3).isEmpty() && bytesOf(format.kind) > 1)
        meta.warnings << QStringLiteral("%1: its core:datatype has no byte order, little-endian is "
                                        "assumed.")
                             .arg(name);
    return format;
}

/// RFC 3339 with any number of fraction digits; 0 when it can't be read.
KRTimeStamp parseTime(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "^(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d)(\\.\\d+)?(Z|[+-]\\d\\d:\\d\\d)$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return 0;
    const QDateTime time =
        QDateTime::fromString(match.captured(1) + match.captured(3), Qt::ISODate);
    const double fraction = match.captured(2).isEmpty() ? 0 : match.captured(2).toDouble();
    const qint64 milliseconds = time.isValid() ? time.toMSecsSinceEpoch() : -1;
    if (milliseconds < 0)
        return 0;
    return KRTimeStamp(milliseconds) * 1000 + KRTimeStamp(fraction * 1e6);
}

void refuseUnknownExtensions(const QJsonObject &global, const QString &name)
{
    for (const QJsonValue &entry : global.value(QLatin1String("core:extensions")).toArray()) {
        const QJsonObject extension = entry.toObject();
        if (!extension.value(QLatin1String("optional")).toBool(true))
            throw broken(name,
                         QStringLiteral("it needs the extension \"%1\", which is not known")
                             .arg(extension.value(QLatin1String("name")).toString().left(40)));
    }
}

void readGlobal(const QJsonObject &global, SigMfMeta &meta, const QString &name)
{
    refuseUnknownExtensions(global, name);
    if (global.value(QLatin1String("core:metadata_only")).toBool())
        throw broken(name, QStringLiteral("it says that it comes without samples"));
    meta.format =
        parseDatatype(global.value(QLatin1String("core:datatype")).toString(), meta, name);
    const std::int64_t channels = wholeNumber(global, "core:num_channels", 1, name);
    if (channels < 1 || channels > 1024)
        throw broken(name, QStringLiteral("core:num_channels is not between 1 and 1024"));
    meta.format.channels = std::uint32_t(channels);
    if (channels > 1)
        meta.warnings
            << QStringLiteral("%1: the first of %2 channels is read.").arg(name).arg(channels);
    meta.rate = global.value(QLatin1String("core:sample_rate")).toDouble(0);
    if (meta.rate != 0 && !(meta.rate >= 1e-3 && meta.rate <= 1e12))
        throw broken(name, QStringLiteral("core:sample_rate is not between 0.001 and 1e12"));
    meta.trailingBytes = wholeNumber(global, "core:trailing_bytes", 0, name);
    meta.dataset = global.value(QLatin1String("core:dataset")).toString();
    if (meta.dataset.contains(QLatin1Char('/')))
        throw broken(name, QStringLiteral("core:dataset is a path, where a name is allowed"));
}

void readCaptures(const QJsonArray &captures, std::int64_t offset, SigMfMeta &meta,
                  const QString &name)
{
    const QJsonObject first = captures.isEmpty() ? QJsonObject() : captures.first().toObject();
    const auto startOf = [&](const QJsonObject &capture) {
        return std::max<std::int64_t>(wholeNumber(capture, "core:sample_start", 0, name) - offset,
                                      0);
    };
    meta.firstSample = startOf(first);
    meta.center = first.value(QLatin1String("core:frequency")).toDouble(0);
    meta.start = parseTime(first.value(QLatin1String("core:datetime")).toString());
    meta.headerBytes = wholeNumber(first, "core:header_bytes", 0, name);
    for (const QJsonValue &entry : captures) {
        const QJsonObject capture = entry.toObject();
        if (capture.value(QLatin1String("core:frequency")).toDouble(0) == meta.center)
            continue;
        meta.sampleCount = std::max<std::int64_t>(startOf(capture) - meta.firstSample, 0);
        meta.warnings << QStringLiteral("%1: the recording changes its frequency; only the part "
                                        "before the change is read.")
                             .arg(name);
        break;
    }
}

QString findData(const QString &metaPath, SigMfMeta &meta)
{
    const QFileInfo info(metaPath);
    const QString base =
        metaPath.endsWith(kMetaEnding) ? metaPath.chopped(kMetaEnding.size()) : metaPath;
    if (!meta.dataset.isEmpty())
        return info.path() + QLatin1Char('/') + meta.dataset;
    if (QFileInfo::exists(base + QLatin1String(".sigmf-data")))
        return base + QLatin1String(".sigmf-data");
    for (const char *ending : {".iq", ".raw", ".bin", ".cfile"}) {
        const QString candidate = base + QLatin1String(ending);
        if (!QFileInfo::exists(candidate))
            continue;
        meta.warnings << QStringLiteral("%1.sigmf-data is missing, %2 is read in its place.")
                             .arg(base, candidate);
        return candidate;
    }
    throw broken(metaPath, QStringLiteral("its samples are missing: %1.sigmf-data should lie "
                                          "beside it")
                               .arg(base));
}

/// Puts offset and size of the segment into \a recording; false when its length is odd.
bool placeSamples(const SigMfMeta &meta, Recording &recording)
{
    const auto width = std::int64_t(meta.format.bytesPerSample());
    const std::int64_t fileSize = QFileInfo(recording.dataFile).size();
    const std::int64_t all = fileSize - meta.headerBytes - meta.trailingBytes;
    if (all < 0 || all % width != 0)
        return false;
    const std::int64_t first = std::min(meta.firstSample, all / width);
    const std::int64_t left = all / width - first;
    recording.offset = meta.headerBytes + first * width;
    recording.size = (meta.sampleCount < 0 ? left : std::min(meta.sampleCount, left)) * width;
    return true;
}

} // namespace

SigMfMeta parseSigMfMeta(const QByteArray &json, const QString &name)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        throw broken(name, QStringLiteral("it is no JSON (%1 at byte %2)")
                               .arg(error.errorString())
                               .arg(error.offset));
    const QJsonObject top = document.object();
    if (!top.value(QLatin1String("global")).isObject())
        throw broken(name, QStringLiteral("it has no \"global\" object"));
    const QJsonObject global = top.value(QLatin1String("global")).toObject();
    SigMfMeta meta;
    readGlobal(global, meta, name);
    readCaptures(top.value(QLatin1String("captures")).toArray(),
                 wholeNumber(global, "core:offset", 0, name), meta, name);
    return meta;
}

QString sigMfMetaFor(const QString &path)
{
    if (path.endsWith(kMetaEnding))
        return path;
    const QFileInfo info(path);
    const QString meta = info.path() + QLatin1Char('/') + info.completeBaseName() + kMetaEnding;
    return QFileInfo::exists(meta) ? meta : QString();
}

Recording readSigMf(const QString &metaPath)
{
    QFile file(metaPath);
    if (!file.open(QIODevice::ReadOnly))
        throw broken(metaPath, file.errorString());
    if (file.size() > kLargestMeta)
        throw broken(metaPath, QStringLiteral("its metadata are larger than 64 MiB"));
    SigMfMeta meta = parseSigMfMeta(file.readAll(), metaPath);
    Recording recording;
    recording.dataFile = findData(metaPath, meta);
    recording.format = meta.format;
    recording.rate = meta.rate;
    recording.center = meta.center;
    recording.start = meta.start;
    recording.warnings = meta.warnings;
    if (!placeSamples(meta, recording))
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 is no whole number of the samples that %2 tells of: it is "
                                     "cut off, or the metadata are of another file.")
                          .arg(recording.dataFile, metaPath));
    return recording;
}

} // namespace receiver

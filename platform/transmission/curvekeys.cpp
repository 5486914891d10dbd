#include "platform/transmission/curvekeys.h"

#include "platform/base/krexception.h"

#include <zmq.hpp>

namespace sbs {
namespace {

constexpr int kTextSize = 40; // a key as Z85
constexpr int kKeySize = 32;

[[noreturn]] void fail(const QString &reason, const char *function, int line)
{
    throw KRException(reason, __FILE__, "CurveKeys", function, line);
}

QByteArray fromHex(const QByteArray &text)
{
    const QByteArray key = QByteArray::fromHex(text);
    if (key.size() != kKeySize || key.toHex() != text.toLower())
        return QByteArray();
    char encoded[kTextSize + 1];
    zmq_z85_encode(encoded, reinterpret_cast<const std::uint8_t *>(key.data()), kKeySize);
    return QByteArray(encoded, kTextSize);
}

bool isZ85(const QByteArray &text)
{
    std::uint8_t key[kKeySize];
    return text.size() == kTextSize && zmq_z85_decode(key, text.constData());
}

} // namespace

CurveKeys CurveKeys::generate()
{
    char publicText[kTextSize + 1], secretText[kTextSize + 1];
    if (zmq_curve_keypair(publicText, secretText) != 0)
        fail(QStringLiteral("This ZeroMQ library was built without CURVE, so it can't make keys."),
             "generate", __LINE__);
    return {QByteArray(publicText, kTextSize), QByteArray(secretText, kTextSize)};
}

CurveKeys CurveKeys::fromSecret(const QString &secret)
{
    const QByteArray secretText = parse(secret, QStringLiteral("The secret key"));
    char publicText[kTextSize + 1];
    if (zmq_curve_public(publicText, secretText.constData()) != 0)
        fail(QStringLiteral("The secret key has no public half in this ZeroMQ library."),
             "fromSecret", __LINE__);
    return {QByteArray(publicText, kTextSize), secretText};
}

QByteArray CurveKeys::parse(const QString &text, const QString &what)
{
    const QByteArray bytes = text.trimmed().toUtf8();
    if (isZ85(bytes))
        return bytes;
    const QByteArray fromDigits = fromHex(bytes);
    if (fromDigits.isEmpty())
        fail(QStringLiteral("%1 is no CURVE key: give 40 characters of Z85 or 64 hexadecimal "
                            "digits.")
                 .arg(what),
             "parse", __LINE__);
    return fromDigits;
}

} // namespace sbs

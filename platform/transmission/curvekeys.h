#pragma once

#include "platform/base/export.h"

#include <QByteArray>
#include <QString>

namespace sbs {

/// A CURVE key pair, or only its public half. Keys are 40 characters of Z85 text.
struct SPECTREE_EXPORT CurveKeys {
    QByteArray publicKey;
    QByteArray secretKey;

    /// A new random pair.
    static CurveKeys generate();
    /// The pair of a secret key. \throws KRException when \a secret is no key
    static CurveKeys fromSecret(const QString &secret);
    /// Reads a key as 40 characters of Z85 or 64 hexadecimal digits and gives it as Z85.
    /// \throws KRException with a sentence that names \a what, when it is neither
    static QByteArray parse(const QString &text, const QString &what);

    bool isEmpty() const { return publicKey.isEmpty(); }
};

} // namespace sbs

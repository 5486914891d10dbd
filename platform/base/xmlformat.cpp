#include "platform/base/xmlformat.h"

#include "platform/base/krexception.h"
#include "platform/base/xmlwriter.h"

#include <QXmlStreamReader>

namespace {

void startElement(Kelm::XmlWriter &writer, const QXmlStreamReader &reader)
{
    writer.StartElement(reader.qualifiedName());
    const QXmlStreamAttributes attributes = reader.attributes();
    for (const QXmlStreamAttribute &attribute : attributes)
        writer.WriteAttribute(attribute.qualifiedName(), attribute.value());
}

} // namespace

QString XmlFormat::Format(const QString &xml)
{
    QString out;
    out.reserve(xml.size());
    Kelm::XmlWriter writer(out);
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    QString blanks; // the whole text of an element, or only what parts its children
    bool started = false;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::Characters && reader.isWhitespace()) {
            blanks += reader.text();
            continue;
        }
        if (!blanks.isEmpty() && (token == QXmlStreamReader::Characters ||
                                  (token == QXmlStreamReader::EndElement && started)))
            writer.WriteText(blanks);
        blanks.clear();
        started = token == QXmlStreamReader::StartElement;
        switch (token) {
        case QXmlStreamReader::DTD:
            writer.WriteDoctype(reader.dtdName());
            break;
        case QXmlStreamReader::StartElement:
            startElement(writer, reader);
            break;
        case QXmlStreamReader::Characters:
            writer.WriteText(reader.text());
            break;
        case QXmlStreamReader::EndElement:
            writer.EndElement();
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        throw KRException(QStringLiteral("Parse error: %1 at line %2 in column %3.")
                              .arg(reader.errorString())
                              .arg(reader.lineNumber())
                              .arg(reader.columnNumber()),
                          __FILE__, "XmlFormat", "Format", __LINE__);
    return out;
}

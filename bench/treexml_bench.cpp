// 100 000 values as XML, written and read, beside QXmlStreamWriter and QXmlStreamReader on the same
// bytes. Rounds of both take turns; medians in ms, "ratio" is ours to the rival's.
#include "valueclasses/value.h"
#include "valueclasses/valuenumeric.h"
#include "valuetree/node.h"
#include "valuetree/vtxml.h"

#include <QCoreApplication>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace values;
using Clock = std::chrono::steady_clock;
constexpr int kRounds = 7;

double milliseconds(const std::function<void()> &round)
{
    const auto start = Clock::now();
    round();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void compare(const char *name, const std::function<void()> &ours,
             const std::function<void()> &rival)
{
    std::vector<double> a, b;
    for (int i = 0; i < kRounds; ++i) {
        a.push_back(milliseconds(ours));
        b.push_back(milliseconds(rival));
    }
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    std::printf("%-24s ours %8.1f ms  rival %8.1f ms  ratio %.2f\n", name, a[kRounds / 2],
                b[kRounds / 2], a[kRounds / 2] / b[kRounds / 2]);
}

/// The tokens of a document, to be written again by the rival.
struct Token {
    QXmlStreamReader::TokenType type;
    QString name, text;
    QXmlStreamAttributes attributes;
};

std::vector<Token> tokensOf(const QString &xml)
{
    std::vector<Token> tokens;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isCharacters() && reader.isWhitespace())
            continue;
        tokens.push_back({reader.tokenType(), reader.name().toString(), reader.text().toString(),
                          reader.attributes()});
    }
    return tokens;
}

void writeWithQt(const std::vector<Token> &tokens)
{
    QString out;
    QXmlStreamWriter writer(&out);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(1);
    for (const Token &token : tokens) {
        if (token.type == QXmlStreamReader::DTD) {
            writer.writeDTD(token.text);
        } else if (token.type == QXmlStreamReader::StartElement) {
            writer.writeStartElement(token.name);
            writer.writeAttributes(token.attributes);
        } else if (token.type == QXmlStreamReader::Characters) {
            writer.writeCharacters(token.text);
        } else if (token.type == QXmlStreamReader::EndElement) {
            writer.writeEndElement();
        }
    }
}

void readWithQt(const QString &xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
}

ValueBase *make(Value<double> * /*kind*/, int i) { return new Value<double>("V", i); }
ValueBase *make(Value<int> * /*kind*/, int i) { return new Value<int>("V", i); }
ValueBase *make(ValueNumeric<double> * /*kind*/, int i)
{
    return new ValueNumeric<double>("V", i, 0, 1e6);
}

template <typename V>
void run(const char *kind, int count)
{
    Node root;
    for (int i = 0; i < count; ++i)
        root.AddValue(QStringLiteral("N%1/VALUE%2").arg(i / 100).arg(i % 100),
                      make(static_cast<V *>(nullptr), i));
    const QString xml = VtXml::ToXml(&root);
    std::printf("%d x %s, %.1f MB\n", count, kind, xml.size() / 1e6);
    const std::vector<Token> tokens = tokensOf(xml);
    compare(
        "write", [&] { VtXml::ToXml(&root); }, [&] { writeWithQt(tokens); });
    compare(
        "read into what exists", [&] { VtXml::FromXml(&root, xml); }, [&] { readWithQt(xml); });
    std::vector<std::unique_ptr<Node>> made; // torn down outside of the measurement
    compare(
        "read into nothing",
        [&] {
            made.push_back(std::make_unique<Node>());
            VtXml::FromXml(made.back().get(), xml);
        },
        [&] { readWithQt(xml); });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    run<Value<double>>("ValueFloat", 100000);
    run<Value<int>>("ValueInt", 100000);
    run<ValueNumeric<double>>("ValueNumericFloat", 100000);
}

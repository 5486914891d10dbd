// Tree documents. A refused one changes nothing; what was read is written again, and reads as the
// same tree; the road over QDom takes what the one in one pass takes.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/value.h"
#include "valuetree/node.h"
#include "valuetree/vtxml.h"

#include <QCoreApplication>

#include <memory>

using namespace values;

namespace {

void viaDom(const QString &xml)
{
    try {
        const VtXml document(xml);
        for (int i = 0; i < 4; ++i)
            if (const std::unique_ptr<Node> node(document.CreateNodeAt(i)); node != nullptr) {
                VtXml again;
                again.AddNode(node.get());
                again.GetString();
            }
    } catch (const KRException &) { // two items of one name, which the other road puts together
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static int argc = 0;
    static const QCoreApplication app(argc, nullptr);
    ErrorHandler::Instance().SetTraceMask(0);
    const QString xml = QString::fromUtf8(reinterpret_cast<const char *>(bytes), int(size));
    Node root;
    root.AddValue("OLD", new Value<int>("OLD", 7));
    const QString before = VtXml::ToXml(&root);
    try {
        if (!VtXml::FromXml(&root, xml))
            return 0;
    } catch (const KRException &) {
        require(VtXml::ToXml(&root) == before);
        return 0;
    }
    const QString written = VtXml::ToXml(&root);
    Node copy;
    require(VtXml::FromXml(&copy, written));
    require(VtXml::ToXml(&copy) == written);
    viaDom(xml);
    return 0;
}

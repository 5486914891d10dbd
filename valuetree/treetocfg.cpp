#include "valuetree/treetocfg.h"

#include "platform/startup/cfgcenter.h"
#include "valuetree/node.h"
#include "valuetree/valueitem.h"

namespace values {

void TreeToCfg::ToCfg(const Node *node, const QString &name, bool valuesOnly)
{
    const auto cfg = CfgCenter::CreateCfg("Xml:" + name, QStringLiteral("User"));
    ToCfg(node, cfg.get(), valuesOnly);
}

void TreeToCfg::ToCfg(const Node *node, ICfg *cfg, bool valuesOnly)
{
    if (node == nullptr || cfg == nullptr)
        return;
    for (TreeItem *const child : node->GetTreeItems()) {
        if (const ValueItem *const item = child->AsValueItem())
            cfg->Set(item->GetName(), item->GetStringValue());
        else if (!valuesOnly)
            ToCfg(child->AsNode(), cfg->CreateEntry(child->GetName()).get(), true);
    }
}

} // namespace values

#pragma once

#include "fault.h"
#include "valuetree/treelog.h"
#include "valuetree/vtxml.h"

#include <gtest/gtest.h>

#include <memory>

namespace values {

inline QString document(const QString &items, const QString &version = QStringLiteral("1.0"))
{
    return QStringLiteral("<!DOCTYPE Vt><Vt Version=\"%2\">%1</Vt>").arg(items, version);
}

inline QString reasonOf(Node &node, const QString &xml)
{
    return QString::fromStdString(faultOf([&] { VtXml::FromXml(&node, xml); }).reason);
}

/// Ends the disabled state in which restored values wait for their owner.
inline void enable(Node &node)
{
    for (TreeItem *const item : node.GetTreeItems())
        if (Node *const child = item->AsNode())
            enable(*child);
        else
            item->AsValueItem()->SetState(VS_NORMAL, nullptr);
}

/// The handlers on elements write the document that the static road writes, and read it.
inline void expectSameByElements(Node &root)
{
    Node top, *const under = new Node("U");
    top.AddNode(QString(), under);
    under->Merge(&root);
    VtXml single;
    single.AddNode(under);
    EXPECT_EQ(single.GetString(), VtXml::ToXml(&top));
    const std::unique_ptr<Node> made(VtXml(single.GetString()).CreateNodeAt(0));
    enable(*made);
    EXPECT_TRUE(made->Compare(under));
}

} // namespace values

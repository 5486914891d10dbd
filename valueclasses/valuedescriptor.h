#pragma once

#include "valueclasses/ivaluedescriptormap.h"
#include "valueclasses/selection/selectionitem.h"

#include <concepts>
#include <cstddef>
#include <map>
#include <utility>

class IObserver;

namespace values {

class Node;
class ValueBase;

/// The items of a selection's descriptor. A literal 0 isn't one: it is the minimum of a number.
template <typename T>
concept SelItemArray = std::same_as<T, SelItemDesc *> || std::same_as<T, const SelItemDesc *> ||
    std::same_as<T, std::nullptr_t>;

/// The declaration of one value: where it lives in the tree, of which kind, with which limits, unit
/// and initial text. Applications declare arrays of static descriptors; the values come into the
/// tree of the process when Create asks for them.
///
/// Every descriptor publishes itself under its key when it is made, and takes itself back when it
/// goes. Where two have one key, the first one counts.
/// Ownership: prototypes and selection items are not owned and outlive the descriptor, which
///            outlives the values that it made.
/// Threads:   the application thread, or static initialization.
class SPECTREE_EXPORT ValueDescriptor {
public:
    /// Describes a node at \a path, under a key of its own.
    ValueDescriptor(QString key, QString path);
    /// \a type is a prototype of the kind.
    ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial = {},
                    QString tooltip = {});
    /// A number; the unit is that of the value times ten to the power of \a basis.
    ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial,
                    double minimum, double maximum, double step = 1.0, QString unit = {},
                    int basis = 0, QString tooltip = {});
    /// A selection, with its items; null for none.
    template <SelItemArray Items>
    ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial, Items items,
                    int itemCount, QString unit = {}, int basis = 0, QString tooltip = {})
        : ValueDescriptor(std::move(name), std::move(path), type, std::move(initial),
                          Selection{items, itemCount}, std::move(unit), basis, std::move(tooltip))
    {
    }
    ValueDescriptor(const ValueDescriptor &) = delete;
    ValueDescriptor &operator=(const ValueDescriptor &) = delete;
    ~ValueDescriptor();

    const QString &Name() const { return m_name; }
    const QString &Path() const { return m_path; }
    /// The key: path, "/" and name, unless it was given.
    const QString &PathName() const { return m_pathName; }
    /// An empty value when no prototype was given.
    const ValueBase *Type() const;
    const QString &Initial() const { return m_initial; }
    double Min() const { return m_min; }
    double Max() const { return m_max; }
    double Step() const { return m_step; }
    const SelItemDesc *SelItems() const { return m_selItems; }
    int CountSelItems() const { return m_countSelItems; }
    const QString &Unit() const { return m_unit; }
    int Basis() const { return m_basis; }
    const QString &Tooltip() const { return m_tooltip; }
    const QString &Info() const { return m_tooltip; }

    /// The value at the base path and PathName(): the one that is there, untouched, or a new one
    /// with limits, items, initial text and this descriptor. \a observer, if there is one, is
    /// added. Null for a descriptor of a node, of which only that is made, for a kind that the
    /// factory doesn't know, and where the path is taken. \throws KRException for a bad path.
    ValueBase *Create(IObserver *observer) const;
    static void AddValues(const ValueDescriptor *const *descriptors, int count,
                          IObserver *observer);
    /// The node at the base path.
    static Node *CreateNode(IObserver *observer);
    /// The node at \a path below the base path.
    static Node *CreateNode(const QString &path, IObserver *observer);
    /// Finds or makes a node, and adds \a observer to it. \throws KRException "Cannot create node
    /// "%1"." where a value is in the way.
    static Node *CreateNodeAbsolute(const QString &path, IObserver *observer);
    /// What goes before all paths of descriptors; empty at first.
    static void SetBasePath(const QString &path);
    static const QString &GetBasePath();

    /// The prefix of a unit for a power of ten; the number itself where there is none.
    static QString Basis(int basis);
    /// \a value times ten to the power of the basis, where that has a prefix.
    double ValueToBasis(double value) const;
    void Publish() const;

private:
    struct Selection {
        const SelItemDesc *items;
        int count;
    };
    ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial,
                    Selection selection, QString unit, int basis, QString tooltip);
    void applyLimits(ValueBase &value) const;

    QString m_name, m_path, m_pathName;
    const ValueBase *m_type = nullptr;
    QString m_initial;
    double m_min = 0.0;
    double m_max = 2147483647.0;
    double m_step = 1.0;
    const SelItemDesc *m_selItems = nullptr;
    int m_countSelItems = 0;
    QString m_unit;
    int m_basis = 0;
    QString m_tooltip;
};

/// The published descriptors by key; made on first use and never destroyed.
class SPECTREE_EXPORT ValueDescriptorMap : public IValueDescriptorMap {
public:
    static ValueDescriptorMap &Instance();
    const ValueDescriptor *Find(const QString &key) const override;
    QString KeyOf(const ValueDescriptor &descriptor) const override;

private:
    friend class ValueDescriptor;
    ValueDescriptorMap() { SetInstance(this); }

    std::map<QString, const ValueDescriptor *> m_descriptors;
};

// The prefixes of units.
SPECTREE_EXPORT extern const QString g_sNano, g_sMicro, g_sMilli, g_sCenti, g_sDezi, g_s0, g_sKilo,
    g_sMega, g_sGiga;

} // namespace values

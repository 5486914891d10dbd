#pragma once

#include "valueclasses/commands/streamformat.h"
#include "valueclasses/itemmaps/changelog.h"

class QIcon;

namespace values {

/// A text that can be selected, and enabled or not. A new one is enabled and not selected.
class SPECTREE_EXPORT StringMultiSelectionItem
    : public valueitemmap::IKeyItemTemplate<unsigned int> {
public:
    StringMultiSelectionItem() = default;
    explicit StringMultiSelectionItem(QString text);

    const QString &GetText() const { return m_text; }
    bool IsSelected() const { return m_selected; }
    bool IsEnabled() const { return m_enabled; }
    void SetText(const QString &text) { m_text = text; }
    void SetSelected(bool selected) { m_selected = selected; }
    void SetEnabled(bool enabled) { m_enabled = enabled; }
    unsigned int GetKey() const override { return m_key; }
    void SetKey(unsigned int key) override { m_key = key; }

    /// Text and both flags; the key is the item's place.
    bool operator==(const StringMultiSelectionItem &other) const;

private:
    QString m_text;
    bool m_selected = false;
    bool m_enabled = true;
    unsigned int m_key = valueitemmap::InvalidKey;
};

/// The same with a number, such as the bandwidth in Hz that the text names.
class SPECTREE_EXPORT StringDoubleMultiSelectionItem : public StringMultiSelectionItem {
public:
    StringDoubleMultiSelectionItem() = default;
    StringDoubleMultiSelectionItem(QString text, double value);

    double GetValue() const { return m_value; }
    void SetValue(double value) { m_value = value; }

    /// Two numbers that are none are equal.
    bool operator==(const StringDoubleMultiSelectionItem &other) const;

private:
    double m_value = 0.0;
};

/// Prints the text alone. Image: text (uint32 count of UTF-16 units, units), selected, enabled (a
/// byte each), ";".
class SPECTREE_EXPORT StringMultiSelectionItemFormat {
public:
    static QString GetString(const StringMultiSelectionItem &item) { return item.GetText(); }
    static StringMultiSelectionItem GetValue(const QString &text);
    static std::string toStandardString(const StringMultiSelectionItem &item);
    /// False when no ";" follows the image. \throws KRException at the end of the bytes.
    static bool fromCharStream(const char **pos, StringMultiSelectionItem &item);
};

/// Prints text, "#" and the number with six decimals. Image: as above, the number (a double)
/// before the ";".
class SPECTREE_EXPORT StringDoubleMultiSelectionItemFormat {
public:
    static QString GetString(const StringDoubleMultiSelectionItem &item);
    /// The number stands behind the last "#"; without one it is 0.
    static StringDoubleMultiSelectionItem GetValue(const QString &text);
    static std::string toStandardString(const StringDoubleMultiSelectionItem &item);
    static bool fromCharStream(const char **pos, StringDoubleMultiSelectionItem &item);
};

/// Column 0 is the text and column 1 the number; there are no icons.
class SPECTREE_EXPORT MultiSelectionItemAdapter {
public:
    static QString GetText4Column(int column, const StringMultiSelectionItem &item);
    static QString GetText4Column(int column, const StringDoubleMultiSelectionItem &item);
    static QIcon GetIcon4Column(int column, const StringMultiSelectionItem &item);
};

} // namespace values

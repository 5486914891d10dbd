#include "valueclasses/selection/multiselectionitem.h"

#include <QIcon>

#include <cmath>

namespace values {

namespace {

std::string imageOf(const StringMultiSelectionItem &item)
{
    std::string image;
    Kelm::appendLittleEndian(image, std::uint32_t(item.GetText().size()));
    for (const QChar c : item.GetText())
        Kelm::appendLittleEndian(image, std::uint16_t(c.unicode()));
    Kelm::appendLittleEndian(image, item.IsSelected());
    Kelm::appendLittleEndian(image, item.IsEnabled());
    return image;
}

void readItem(const char **pos, StringMultiSelectionItem &item)
{
    const auto units = Kelm::readLittleEndian<std::uint32_t>(pos);
    Kelm::requireBytes(*pos, units, sizeof(std::uint16_t));
    auto text = QString(int(units), QChar());
    for (QChar &c : text)
        c = QChar(Kelm::readLittleEndian<std::uint16_t>(pos));
    item.SetText(text);
    item.SetSelected(Kelm::readLittleEndian<bool>(pos));
    item.SetEnabled(Kelm::readLittleEndian<bool>(pos));
}

bool readEnd(const char **pos)
{
    if (Kelm::bytesLeft(*pos) == 0 || **pos != ';')
        return false;
    ++*pos;
    return true;
}

} // namespace

StringMultiSelectionItem::StringMultiSelectionItem(QString text) : m_text(std::move(text)) {}

bool StringMultiSelectionItem::operator==(const StringMultiSelectionItem &other) const
{
    return m_selected == other.m_selected && m_enabled == other.m_enabled && m_text == other.m_text;
}

StringDoubleMultiSelectionItem::StringDoubleMultiSelectionItem(QString text, double value)
    : StringMultiSelectionItem(std::move(text)), m_value(value)
{
}

bool StringDoubleMultiSelectionItem::operator==(const StringDoubleMultiSelectionItem &other) const
{
    return StringMultiSelectionItem::operator==(other) &&
           (m_value == other.m_value || (std::isnan(m_value) && std::isnan(other.m_value)));
}

StringMultiSelectionItem StringMultiSelectionItemFormat::GetValue(const QString &text)
{
    return StringMultiSelectionItem(text);
}

std::string StringMultiSelectionItemFormat::toStandardString(const StringMultiSelectionItem &item)
{
    return imageOf(item) + ';';
}

bool StringMultiSelectionItemFormat::fromCharStream(const char **pos,
                                                    StringMultiSelectionItem &item)
{
    readItem(pos, item);
    return readEnd(pos);
}

QString StringDoubleMultiSelectionItemFormat::GetString(const StringDoubleMultiSelectionItem &item)
{
    return item.GetText() + QLatin1Char('#') + FormatFloat<double>::GetString(item.GetValue());
}

StringDoubleMultiSelectionItem StringDoubleMultiSelectionItemFormat::GetValue(const QString &text)
{
    const int mark = text.lastIndexOf(QLatin1Char('#'));
    if (mark < 0)
        return StringDoubleMultiSelectionItem(text, 0.0);
    return StringDoubleMultiSelectionItem(text.left(mark),
                                          FormatFloat<double>::GetValue(text.mid(mark + 1)));
}

std::string
StringDoubleMultiSelectionItemFormat::toStandardString(const StringDoubleMultiSelectionItem &item)
{
    std::string image = imageOf(item);
    Kelm::appendLittleEndian(image, item.GetValue());
    return image + ';';
}

bool StringDoubleMultiSelectionItemFormat::fromCharStream(const char **pos,
                                                          StringDoubleMultiSelectionItem &item)
{
    readItem(pos, item);
    item.SetValue(Kelm::readLittleEndian<double>(pos));
    return readEnd(pos);
}

QString MultiSelectionItemAdapter::GetText4Column(int column, const StringMultiSelectionItem &item)
{
    return column == 0 ? item.GetText() : QString();
}

QString MultiSelectionItemAdapter::GetText4Column(int column,
                                                  const StringDoubleMultiSelectionItem &item)
{
    return column == 1
               ? FormatFloat<double>::GetString(item.GetValue())
               : GetText4Column(column, static_cast<const StringMultiSelectionItem &>(item));
}

QIcon MultiSelectionItemAdapter::GetIcon4Column(int /*column*/,
                                                const StringMultiSelectionItem & /*item*/)
{
    return {};
}

} // namespace values

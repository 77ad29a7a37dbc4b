#include "ui/settings/price_table_model.h"

#include "ui/base/interface_text.h"
#include "ui/base/price_table.h"
#include "ui/settings/price_input.h"

#include <QFont>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr QStringView ownMark = u"• ";
constexpr const char* noPriceText = "—";

std::string_view familyOf(const QModelIndex& index) {
    return Prices::knownFamilies.at(static_cast<std::size_t>(index.row()));
}

/// The first column is the family's name.
const PriceSettings::Member& memberOf(const QModelIndex& index) {
    return PriceSettings::members.at(static_cast<std::size_t>(index.column() - 1));
}

}  // namespace

PriceTableModel::PriceTableModel(PriceSettings& givenPrices, QObject* parent)
    : QAbstractTableModel(parent), prices(givenPrices) {
    refresh();
}

void PriceTableModel::refresh() {
    Prices::Book newList = prices.fetched().value_or(Prices::Book::builtIn());
    PriceSettings::Overrides newOwn = prices.custom();
    if (newList == list && newOwn == own) return;
    list = std::move(newList);
    own = std::move(newOwn);
    emit dataChanged(index(0, 1), index(rowCount() - 1, columnCount() - 1));
}

int PriceTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(Prices::knownFamilies.size());
}

int PriceTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(PriceSettings::members.size()) + 1;
}

std::string PriceTableModel::keyOf(const QModelIndex& index) {
    return PriceSettings::keyOf(familyOf(index), memberOf(index));
}

PriceTableModel::Price PriceTableModel::price(const QModelIndex& index) const {
    Price price;
    if (const auto family = list.table.find(familyOf(index)); family != list.table.end())
        price.listed = family->second.*memberOf(index).price;
    if (const auto found = own.find(keyOf(index)); found != own.end()) price.own = found->second;
    return price;
}

QStringList PriceTableModel::incompleteFamilies() const {
    QStringList names;
    for (int row = 0; row < rowCount(); ++row) {
        int known = 0;
        for (int column = 1; column < columnCount(); ++column)
            known += price(index(row, column)).inUse() ? 1 : 0;
        if (known > 0 && known < columnCount() - 1)
            names << qtText(familyName(familyOf(index(row, 0))));
    }
    return names;
}

QString PriceTableModel::explanation(const QModelIndex& index) const {
    const Price cell = price(index);
    if (cell.own && cell.listed) {
        return shown("Dein Preis statt %@ der Liste"_text, priceText(*cell.listed));
    }
    if (cell.own) return shown("Dein Preis; die Liste hat keinen"_text);
    return cell.listed ? QString() : shown("Die Liste hat keinen Preis"_text);
}

QVariant PriceTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    if (index.column() == 0)
        return role == Qt::DisplayRole ? qtText(familyName(familyOf(index))) : QVariant();
    const Price cell = price(index);
    const auto value = cell.inUse();
    switch (role) {
        case Qt::DisplayRole:
            return (cell.own ? ownMark.toString() : QString()) +
                   qtText(value ? priceText(*value) : noPriceText);
        case Qt::EditRole:
            return value ? qtText(priceText(*value)) : QString();
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        case Qt::ToolTipRole:
        case Qt::AccessibleDescriptionRole:
            return explanation(index);
        case Qt::FontRole: {
            QFont font;
            if (cell.own) font.setWeight(QFont::DemiBold);
            return font;
        }
        default:
            return {};
    }
}

bool PriceTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
    if (index.column() == 0) return false;
    const QString text = value.toString();
    // What was opened and left as it stood is no wish; it may be rounded, too.
    if (text == data(index, Qt::EditRole).toString()) return true;
    const auto wanted = readPrice(text);
    if (!wanted) return false;
    prices.setOverride(*wanted, keyOf(index));
    refresh();
    return true;
}

Qt::ItemFlags PriceTableModel::flags(const QModelIndex& index) const {
    const auto usual = QAbstractTableModel::flags(index);
    return index.column() > 0 ? usual | Qt::ItemIsEditable : usual;
}

QVariant PriceTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (section < 0 || section >= columnCount()) return {};
    if (role == Qt::DisplayRole)
        return qtText(priceHeadings().at(static_cast<std::size_t>(section)));
    if (role != Qt::TextAlignmentRole) return {};
    return QVariant::fromValue(Qt::AlignVCenter | (section > 0 ? Qt::AlignRight : Qt::AlignLeft));
}

}  // namespace fleetwise

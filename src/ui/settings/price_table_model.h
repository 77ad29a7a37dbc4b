#pragma once

#include "cost/price_settings.h"

#include <QAbstractTableModel>

#include <optional>
#include <string>

namespace fleetwise {

/// The price list with the user's own prices in it, each of which can be edited: a text sets the
/// user's price (see readPrice), an empty one gives it up. In the layout
/// of priceTable, but with all families.
class PriceTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    /// `prices` outlives this.
    explicit PriceTableModel(PriceSettings& prices, QObject* parent = nullptr);

    /// Shows the list and the user's prices as they are now.
    void refresh();

    /// The families of which only some prices are known, so that none of them counts; by name.
    QStringList incompleteFamilies() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    /// Refuses what is no price.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    /// One cell that is a price.
    struct Price {
        std::optional<double> listed;
        std::optional<double> own;

        std::optional<double> inUse() const { return own ? own : listed; }
    };

    Price price(const QModelIndex& index) const;
    static std::string keyOf(const QModelIndex& index);
    QString explanation(const QModelIndex& index) const;

    PriceSettings& prices;
    Prices::Book list;             ///< without the user's prices
    PriceSettings::Overrides own;  ///< by key, see PriceSettings::keyOf
};

}  // namespace fleetwise

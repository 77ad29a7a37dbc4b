#include "ui/settings/price_delegate.h"

#include "ui/settings/price_input.h"

#include <QLineEdit>
#include <QValidator>

#include <functional>
#include <utility>

namespace fleetwise {

namespace {

/// Qt asks a validator to mend what is about to be stored and is not acceptable: the moment to say
/// what is wrong with it.
class PriceValidator final : public QValidator {
public:
    PriceValidator(std::function<void(const QString&)> givenRefused, QObject* parent)
        : QValidator(parent), refused(std::move(givenRefused)) {}

    State validate(QString& input, int& /*position*/) const override {
        return readPrice(input) ? Acceptable : Intermediate;
    }
    void fixup(QString& input) const override {
        if (const auto price = readPrice(input); !price) refused(price.error());
    }

private:
    std::function<void(const QString&)> refused;
};

}  // namespace

QWidget* PriceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                     const QModelIndex& index) const {
    auto* field = new QLineEdit(parent);
    field->setFrame(false);
    field->setAutoFillBackground(true);
    field->setAlignment(Qt::AlignRight);
    const auto* model = index.model();
    field->setAccessibleName(
        model->index(index.row(), 0).data().toString() + QStringLiteral(", ") +
        model->headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString());
    const auto refuse = [this, field](const QString& fault) {
        field->setAccessibleDescription(fault);
        emit faultChanged(fault);
    };
    field->setValidator(new PriceValidator(refuse, field));
    connect(field, &QLineEdit::textEdited, this, [refuse] { refuse({}); });
    emit faultChanged({});
    return field;
}

}  // namespace fleetwise

#include "ui/base/chip_choice.h"

#include "ui/base/chip_button.h"
#include "ui/base/flow_layout.h"
#include "ui/base/theme.h"

namespace fleetwise {

ChipChoice::ChipChoice(const QString& subject, const QStringList& names, QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(subject);
    auto* layout = new FlowLayout(Qt::AlignLeft, this);
    layout->setSpacing(Metrics::grid);
    for (const QString& name : names) {
        auto* chip = new ChipButton(name);
        chip->setAccessibleName(subject + QStringLiteral(": ") + name);
        group.addButton(chip, static_cast<int>(group.buttons().size()));
        layout->addWidget(chip);
    }
    choose(0);
    connect(&group, &QButtonGroup::idClicked, this, &ChipChoice::changed);
}

void ChipChoice::choose(int index) {
    group.button(index)->setChecked(true);
}

}  // namespace fleetwise

#include "ui/onboarding/onboarding_page.h"

#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>

namespace fleetwise {

QLabel* makeOnboardingText(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

OnboardingPage::OnboardingPage(const QString& title, QWidget* parent)
    : QWidget(parent), heading(title), column(new QVBoxLayout) {
    constexpr int edge = 2 * Metrics::groupGap;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(edge, edge, edge, Metrics::groupGap);
    layout->addLayout(column);
    layout->addStretch(1);
    column->setSpacing(Metrics::margin);
    QLabel* label = addText(title);
    label->setFont(headingFont(headingFont(label->font())));
}

QLabel* OnboardingPage::addText(const QString& text) {
    QLabel* label = makeOnboardingText(text);
    column->addWidget(label);
    return label;
}

void OnboardingPage::add(QWidget* widget) {
    column->addWidget(widget);
}

void OnboardingPage::addBeside(QWidget* drawing, const QString& text) {
    auto* row = new QHBoxLayout;
    row->setSpacing(Metrics::groupGap);
    row->addWidget(drawing, 0, Qt::AlignTop);
    row->addWidget(makeOnboardingText(text), 1);
    column->addLayout(row);
}

void OnboardingPage::addGap() {
    column->addSpacing(Metrics::gap);
}

QGridLayout* OnboardingPage::addTable() {
    auto* table = new QGridLayout;
    table->setHorizontalSpacing(Metrics::groupGap);
    table->setVerticalSpacing(Metrics::gap);
    table->setColumnStretch(1, 1);
    column->addLayout(table);
    return table;
}

void OnboardingPage::addTableRow(QGridLayout& table, const QString& name, const QString& meaning) {
    const int row = table.count() / 2;
    auto* left = new QLabel(name);
    left->setTextFormat(Qt::PlainText);
    QLabel* right = makeOnboardingText(meaning);
    right->setForegroundRole(QPalette::PlaceholderText);
    table.addWidget(left, row, 0, Qt::AlignTop);
    table.addWidget(right, row, 1);
}

}  // namespace fleetwise

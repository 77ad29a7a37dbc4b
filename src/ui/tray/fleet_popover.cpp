#include "ui/tray/fleet_popover.h"

#include "ui/base/elided_label.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/tray/popover_geometry.h"

#include <QAbstractItemDelegate>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <utility>

namespace fleetwise {

namespace {

constexpr int contentWidth = 360;
/// A click on the mark closes an open popup before it reaches us as a wish to open one.
constexpr qint64 sameClickMilliseconds = 250;

/// A popup takes the keyboard and goes with the first click elsewhere. Wayland has popups only as
/// children of a window in use, so that there it is a window which watches its focus.
Qt::WindowFlags windowKind() {
    const bool isWayland = QGuiApplication::platformName().startsWith("wayland");
    return (isWayland ? Qt::Dialog : Qt::Popup) | Qt::FramelessWindowHint;
}

class Hairline final : public QWidget {
public:
    explicit Hairline(QWidget* parent) : QWidget(parent) { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), paletteOf(palette()).hairline);
    }
};

QListView* makeList(QWidget* parent) {
    auto* list = new QListView(parent);
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setMouseTracking(true);
    list->setMinimumHeight(1);  // a view asks for room for some rows, whatever it shows
    list->viewport()->setAutoFillBackground(false);
    return list;
}

bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

FleetPopover::FleetPopover(QAbstractItemModel& model, QAbstractItemDelegate& delegate)
    : QWidget(nullptr, windowKind()) {
    setAttribute(Qt::WA_TranslucentBackground);
    buildContents(model, delegate);
    setHint(FleetHint::startAgent);
    fitting.setSingleShot(true);
    connect(&fitting, &QTimer::timeout, this, &FleetPopover::fitToContents);
    followModel(model);
}

void FleetPopover::buildContents(QAbstractItemModel& model, QAbstractItemDelegate& delegate) {
    quota = new QuotaLines(this);
    list = makeList(this);
    list->setModel(&model);
    list->setItemDelegate(&delegate);
    list->installEventFilter(this);
    connect(list, &QListView::clicked, this, &FleetPopover::activated);
    emptyState = makeEmptyState();

    auto* top = new QVBoxLayout;
    top->setContentsMargins(Metrics::margin, Metrics::grid, Metrics::margin, Metrics::grid);
    top->addWidget(quota);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, Metrics::gap, 1, Metrics::grid);
    layout->setSpacing(Metrics::grid);
    layout->addLayout(top);
    layout->addWidget(list, 1);
    layout->addWidget(emptyState);
    layout->addWidget(new Hairline(this));
    layout->addWidget(makeFooter());
}

QWidget* FleetPopover::makeEmptyState() {
    auto* area = new QWidget(this);
    auto* sentence = new QLabel(shown("Gerade läuft kein Agent."_text), area);
    sentence->setFont(emphasisedFont(font()));
    emptyHint = new QLabel(area);
    emptyHint->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QVBoxLayout(area);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::grid);
    for (QLabel* label : {sentence, emptyHint}) {
        label->setWordWrap(true);
        layout->addWidget(label);
    }
    return area;
}

QWidget* FleetPopover::makeFooter() {
    auto* footer = new QWidget(this);
    costs = new ElidedLabel(footer);
    costs->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(Metrics::margin, 0, Metrics::gap, 0);
    layout->addWidget(costs, 1);
    layout->addWidget(makeButton(shown("Nutzung"_text), &FleetPopover::usageWanted));
    layout->addWidget(makeButton(shown("Fenster öffnen"_text), &FleetPopover::windowWanted));
    return footer;
}

QWidget* FleetPopover::makeButton(const QString& text, void (FleetPopover::*wanted)()) {
    auto* button = new QPushButton(text);
    button->setFlat(true);
    connect(button, &QPushButton::clicked, this, [this, wanted] {
        hide();
        emit(this->*wanted)();
    });
    return button;
}

void FleetPopover::followModel(const QAbstractItemModel& model) {
    const auto fitLater = [this] {
        if (isVisible()) fitting.start(0);
    };
    connect(&model, &QAbstractItemModel::rowsInserted, this, fitLater);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, fitLater);
    connect(&model, &QAbstractItemModel::dataChanged, this, fitLater);
    connect(&model, &QAbstractItemModel::layoutChanged, this, fitLater);
    connect(&model, &QAbstractItemModel::modelReset, this, fitLater);
}

void FleetPopover::setQuota(const QuotaFigures& figures) {
    quota->setFigures(figures);
    if (isVisible()) fitting.start(0);
}

void FleetPopover::setCosts(const QString& text, const QString& explanation) {
    costs->setText(text);
    costs->setToolTip(explanation);
}

void FleetPopover::setHint(FleetHint hint) {
    emptyHint->setText(
        hint == FleetHint::installHook
            ? shown("Richte im Fenster den Hook ein und starte dann Claude Code oder Codex."_text)
            : shown("Starte Claude Code oder Codex. Die Sitzung erscheint hier von selbst."_text));
}

void FleetPopover::toggle(const QRect& newAnchor) {
    const bool wasOpenAtThisClick =
        sinceClosing.isValid() && sinceClosing.elapsed() < sameClickMilliseconds;
    if (isVisible()) return hide();
    if (wasOpenAtThisClick) return;
    anchor = newAnchor;
    emit opening();
    list->selectionModel()->clear();
    list->scrollToTop();
    fitToContents();
    show();
    activateWindow();
    list->setFocus();
}

void FleetPopover::fitToContents() {
    const bool isEmpty = list->model()->rowCount() == 0;
    list->setVisible(!isEmpty);
    emptyState->setVisible(isEmpty);
    layout()->activate();
    int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(contentWidth)
                                               : layout()->totalSizeHint().height();
    if (!isEmpty) height += rowsHeight() - list->sizeHint().height();
    const QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    setGeometry(popoverRect(anchor, {contentWidth, height}, screen->availableGeometry()));
}

int FleetPopover::rowsHeight() const {
    int height = 0;
    for (int row = 0; row < list->model()->rowCount(); ++row)
        height += list->sizeHintForRow(row);
    return height;
}

bool FleetPopover::selectFromOutside(int key) {
    const bool isFromTop = key == Qt::Key_Down;
    if ((!isFromTop && key != Qt::Key_Up) || list->selectionModel()->hasSelection()) return false;
    const QAbstractItemModel& model = *list->model();
    const int count = model.rowCount();
    for (int step = 0; step < count; ++step) {
        const QModelIndex index = model.index(isFromTop ? step : count - 1 - step, 0);
        if (!(index.flags() & Qt::ItemIsSelectable)) continue;
        list->setCurrentIndex(index);
        return true;
    }
    return false;
}

bool FleetPopover::eventFilter(QObject* watched, QEvent* event) {
    if (watched != list || event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (!isEnter(key)) return selectFromOutside(key);
    if (list->selectionModel()->hasSelection()) emit activated(list->currentIndex());
    return true;
}

void FleetPopover::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && isVisible()) hide();
}

void FleetPopover::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    sinceClosing.start();
}

void FleetPopover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return hide();
    QWidget::keyPressEvent(event);
}

void FleetPopover::reveal(const QModelIndex& heading) {
    fitToContents();
    list->scrollTo(heading, QAbstractItemView::PositionAtTop);
}

void FleetPopover::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colours.hairline);
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::popoverRadius,
                            Metrics::popoverRadius);
}

}  // namespace fleetwise

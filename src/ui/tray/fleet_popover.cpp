#include "ui/tray/fleet_popover.h"

#include "ui/base/elided_label.h"
#include "ui/base/flow_layout.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/base/window_system.h"
#include "ui/tray/popover_geometry.h"

#include <QAbstractItemDelegate>
#include <QApplication>
#include <QBoxLayout>
#include <QChildEvent>
#include <QFontInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QToolButton>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr int usualPopoverWidth = 360;  ///< at the usual size of the font
constexpr int usualFontHeight = 14;     ///< in pixels
/// A click on the mark closes an open popup before it reaches us as a wish to open one.
constexpr qint64 sameClickMilliseconds = 250;
/// The window system may take some time to give the focus back when a menu closes.
constexpr std::chrono::milliseconds focusReturn(150);

/// A popup takes the keyboard and goes with the first click elsewhere. Wayland has popups only as
/// children of a window in use, so that there it is a window which watches its focus.
Qt::WindowFlags windowKind() {
    return (isWayland() ? Qt::Dialog : Qt::Popup) | Qt::FramelessWindowHint;
}

/// As wide as the font asks for, but not narrower than usual.
int contentWidth(const QFont& font) {
    return std::max(usualPopoverWidth,
                    usualPopoverWidth * QFontInfo(font).pixelSize() / usualFontHeight);
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
    list->viewport()->setAttribute(Qt::WA_Hover);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->setAccessibleName(shown("Sitzungen"_text));
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
    connect(list, &QWidget::customContextMenuRequested, this, &FleetPopover::askForMenu);
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
    auto* area = new QWidget(this);
    costs = new ElidedLabel(area);
    costs->setForegroundRole(QPalette::PlaceholderText);
    footer = new QBoxLayout(QBoxLayout::LeftToRight, area);
    footer->setContentsMargins(Metrics::margin, 0, Metrics::gap, 0);
    footer->setSpacing(Metrics::grid);
    footer->addWidget(costs);
    buttons = new FlowLayout(Qt::AlignRight);
    buttons->setSpacing(0);
    buttons->addWidget(makeButton(shown("Fenster"_text), &FleetPopover::windowWanted));
    buttons->addWidget(makeButton(shown("Nutzung"_text), &FleetPopover::usageWanted));
    buttons->addWidget(makeButton(shown("Einstellungen"_text), &FleetPopover::settingsWanted));
    footer->addLayout(buttons, 1);
    return area;
}

void FleetPopover::fitFooter(int width) {
    const QMargins around = footer->contentsMargins();
    const int needed = around.left() + costs->sizeHint().width() + footer->spacing() +
                       buttons->sizeHint().width() + around.right();
    footer->setDirection(needed <= width ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    costs->setVisible(!costs->text().isEmpty());
}

QToolButton* FleetPopover::makeButton(const QString& text, void (FleetPopover::*wanted)()) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    connect(button, &QToolButton::clicked, this, [this, wanted] {
        hide();
        emit(this->*wanted)();
    });
    return button;
}

void FleetPopover::askForMenu(const QPoint& place) {
    const QModelIndex index = list->indexAt(place);
    if (!index.isValid()) return;
    list->setCurrentIndex(index);
    emit menuWanted(index, list->viewport()->mapToGlobal(place));
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
    costs->setToolTip(plainToolTip(explanation));
    if (isVisible()) fitting.start(0);
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
    const QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    const int width = std::min(contentWidth(font()), screen->availableGeometry().width());
    fitFooter(width);
    layout()->activate();
    int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width)
                                               : layout()->totalSizeHint().height();
    if (!isEmpty) height += rowsHeight() - list->sizeHint().height();
    setGeometry(popoverRect(anchor, {width, height}, screen->availableGeometry()));
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
    const auto* pressed = static_cast<QKeyEvent*>(event);
    const int key = pressed->key();
    const bool isMenuKey =
        key == Qt::Key_Menu || (key == Qt::Key_F10 && pressed->modifiers() == Qt::ShiftModifier);
    if (isMenuKey && list->selectionModel()->hasSelection()) {
        askForMenu(list->visualRect(list->currentIndex()).center());
        return true;
    }
    if (!isEnter(key)) return selectFromOutside(key);
    if (list->selectionModel()->hasSelection()) emit activated(list->currentIndex());
    return true;
}

void FleetPopover::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // A menu of a row takes the focus, but the user has not turned away.
    const bool isBesideMenu = qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr;
    const bool wasLeft = event->type() == QEvent::ActivationChange && !isActiveWindow();
    if (wasLeft && isVisible() && !isBesideMenu) hide();
    if (event->type() == QEvent::FontChange && isVisible()) fitting.start(0);
}

void FleetPopover::childEvent(QChildEvent* event) {
    QWidget::childEvent(event);
    const auto* menu = qobject_cast<QMenu*>(event->child());
    if (menu == nullptr || !event->polished()) return;
    connect(menu, &QMenu::aboutToHide, this,
            [this] { QTimer::singleShot(focusReturn, this, &FleetPopover::hideIfLeft); });
}

void FleetPopover::hideIfLeft() {
    if (isVisible() && !isActiveWindow() && QApplication::activePopupWidget() == nullptr) hide();
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

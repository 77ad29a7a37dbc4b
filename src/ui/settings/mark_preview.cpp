#include "ui/settings/mark_preview.h"

#include "ui/base/interface_text.h"

#include <QPainter>

#include <array>

namespace fleetwise {

namespace {

struct PreviewSample {
    int side;
    MarkStyle style;
};

constexpr std::array previewSamples{
    PreviewSample{64, MarkStyle::coloured}, PreviewSample{32, MarkStyle::badge},
    PreviewSample{22, MarkStyle::badge}, PreviewSample{16, MarkStyle::badge}};
constexpr int previewHeight = previewSamples.front().side;

MarkFigures sampleFigures() {
    return {.working = 3,
            .fiveHour = 0.42,
            .sevenDay = 0.17,
            .reset = "2 h",
            .resetShare = 0.6,
            .needsAttention = true};
}

}  // namespace

MarkPreview::MarkPreview(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(shown("Vorschau des Zeichens"_text));
}

void MarkPreview::setChoices(const MarkChoices& newChoices) {
    if (choices == newChoices) return;
    choices = newChoices;
    update();
}

QSize MarkPreview::sizeHint() const {
    int width = 0;
    for (const PreviewSample& sample : previewSamples)
        width += sample.side + Metrics::groupGap;
    return {width - Metrics::groupGap, previewHeight};
}

void MarkPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const MarkFigures figures = shownFigures(sampleFigures(), choices);
    int left = 0;
    for (const PreviewSample& sample : previewSamples) {
        const QRectF area(left, (previewHeight - sample.side) / 2.0, sample.side, sample.side);
        paintMark(painter, area, figures, sample.style, appearanceOf(palette()));
        left += sample.side + Metrics::groupGap;
    }
}

}  // namespace fleetwise

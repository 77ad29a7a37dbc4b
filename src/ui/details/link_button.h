#pragma once

#include <QToolButton>

namespace fleetwise {

/// A button that looks like a word of the text around it.
class LinkButton final : public QToolButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString& text = {}, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Copies a text, and says so.
class CopyButton final : public QToolButton {
    Q_OBJECT

public:
    explicit CopyButton(QWidget* parent = nullptr);

    /// `name` is what it does, in words.
    void setCopied(const QString& text, const QString& name);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void copy();

    QString copied;
};

}  // namespace fleetwise

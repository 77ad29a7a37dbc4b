#pragma once

#include <QTextEdit>
#include <QWidget>

class QToolButton;

namespace fleetwise {

/// Plain text to read and to select from, as high as its first lines or all of them.
class TextBlock final : public QTextEdit {
    Q_OBJECT

public:
    explicit TextBlock(QWidget* parent = nullptr);

    void setText(const QString& text);
    /// 0: all.
    void setMostLines(int lines);
    int lineCount(int width) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    QString shownText;
    int mostLines = 0;
};

/// A text of which at first only some lines are seen, and all when that is wished for.
class FoldedText final : public QWidget {
    Q_OBJECT

public:
    explicit FoldedText(const QString& name, QWidget* parent = nullptr);

    /// A text of another subject is folded again.
    enum class Subject { same, another };
    void setText(const QString& text, Subject subject);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUnfolded(bool isToBe);
    void followWidth();

    QString shownText;
    TextBlock* block;
    QToolButton* more;
    bool isUnfolded = false;
};

}  // namespace fleetwise

#pragma once

#include <QString>
#include <QWidget>

class QGridLayout;
class QLabel;
class QVBoxLayout;

namespace fleetwise {

/// One page of the introduction: a title, and below it what the page adds, from the top down.
class OnboardingPage : public QWidget {
    Q_OBJECT

public:
    explicit OnboardingPage(const QString& title, QWidget* parent = nullptr);

    const QString& title() const { return heading; }

protected:
    QLabel* addText(const QString& text);
    void add(QWidget* widget);
    /// A text with a drawing at its left.
    void addBeside(QWidget* drawing, const QString& text);
    void addGap();

    /// Names at the left, what they mean beside them.
    QGridLayout* addTable();
    static void addTableRow(QGridLayout& table, const QString& name, const QString& meaning);

private:
    const QString heading;
    QVBoxLayout* column;
};

/// A wrapped text in the plain form.
QLabel* makeOnboardingText(const QString& text);

}  // namespace fleetwise

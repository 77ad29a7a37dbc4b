#include "ui/base/table_export.h"

#include "foundation/atomic_file.h"
#include "ui/base/interface_text.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

namespace fleetwise {

QString exportTable(const FigureTable& table, const QString& path) {
    const auto written =
        writeFileAtomically(QFile::encodeName(path).toStdString(), commaSeparated(table));
    if (written) return {};
    return shown("»%@« wurde nicht geschrieben: %@. Wähle einen anderen Ort."_text,
                 path.toStdString(), written.error().message());
}

void offerExport(const FigureTable& table, QWidget* parent) {
    auto* dialog = new QFileDialog(parent, shown("Als CSV speichern"_text), {},
                                   shown("CSV-Dateien"_text) + QStringLiteral(" (*.csv)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("csv"));
    dialog->selectFile(qtText(table.title) + QStringLiteral(".csv"));
    QObject::connect(
        dialog, &QFileDialog::fileSelected, parent, [table, parent](const QString& path) {
            const QString failure = exportTable(table, path);
            if (failure.isEmpty()) return;
            auto* box = new QMessageBox(QMessageBox::Warning, shown("Als CSV speichern"_text),
                                        failure, QMessageBox::Ok, parent);
            box->setTextFormat(Qt::PlainText);
            box->setAttribute(Qt::WA_DeleteOnClose);
            box->open();
        });
    dialog->open();
}

}  // namespace fleetwise

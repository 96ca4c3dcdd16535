#include "season/sendreport.h"

#include "storage/atomicfile.h"
#include "storage/programfolder.h"

#include <QDir>
#include <QFileInfo>

namespace telvane {

namespace {

const QString RecipeFolder = QStringLiteral("Ricetta");

QString dateTimeText(const QDateTime &at)
{
    return at.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

QString changeText(const SendRecord &record)
{
    if (!record.to)
        return QStringLiteral("invio senza cambio di stagione");
    return seasonName(record.from.value_or(otherSeason(*record.to))) + QStringLiteral(" -> ") + seasonName(*record.to);
}

QString outcomeText(const SendRecord &record)
{
    const auto total = record.rows.size();
    if (record.result.ok)
        return QStringLiteral("completato, %1 righe su %1").arg(total);
    const QString stopped =
        QStringLiteral("interrotto alla riga %1 di %2").arg(record.result.rows.size()).arg(total);
    return record.to ? stopped + QStringLiteral("; la stagione non è cambiata") : stopped;
}

} // namespace

QStringList sendReportLines(const SendRecord &record)
{
    QStringList lines{
        QStringLiteral("Resoconto dell'invio della ricetta ") + record.recipeFile,
        QStringLiteral("Cambio: ") + changeText(record),
        QStringLiteral("Linea: ") + record.line,
        QStringLiteral("Rilettura di verifica: ") + (record.verifyReadBack ? QStringLiteral("sì") : QStringLiteral("no")),
        QStringLiteral("Inizio: ") + dateTimeText(record.started),
        QStringLiteral("Fine: ") + dateTimeText(record.finished),
        QStringLiteral("Esito: ") + outcomeText(record),
        QString(),
    };
    for (qsizetype index = 0; index < record.rows.size(); ++index) {
        if (index < record.result.rows.size()) {
            const RowOutcome &outcome = record.result.rows.at(index);
            lines.append(outcome.startedAt.toString(QStringLiteral("HH:mm:ss")) + QStringLiteral("  ")
                         + outcome.text(record.rows.at(index)));
        } else {
            RowOutcome notSent;
            notSent.row = int(index);
            notSent.status = RowOutcome::Status::NotSent;
            lines.append(QStringLiteral("--:--:--  ") + notSent.text(record.rows.at(index)));
        }
    }
    return lines;
}

QString sendReportFileName(const SendRecord &record)
{
    return QStringLiteral("Resoconto %1 %2.txt")
        .arg(QFileInfo(record.recipeFile).completeBaseName(),
             record.started.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss")));
}

QString writeSendReport(const ProgramFolder &folder, const SendRecord &record)
{
    const QString directory = folder.filePath(RecipeFolder);
    QDir().mkpath(directory);
    const QString path = QDir(directory).filePath(sendReportFileName(record));
    const QByteArray bytes = sendReportLines(record).join(QStringLiteral("\r\n")).toUtf8() + "\r\n";
    return writeFileAtomically(path, bytes) ? path : QString();
}

PrintJob sendReportPrintJob(const QStringList &lines)
{
    // A fixed pitch keeps the times and the rows in columns; 9 points fits a row's
    // longest line on a portrait page.
    PrintJob job{PrintStep{.kind = PrintStep::Kind::FontName, .fontName = QStringLiteral("Courier New")},
                 PrintStep{.kind = PrintStep::Kind::FontSize, .fontSize = 9},
                 PrintStep{.kind = PrintStep::Kind::Bold, .bold = true}};
    bool heading = true;
    for (const QString &text : lines) {
        // The heading ends at the first empty line.
        if (heading && text.isEmpty()) {
            job << PrintStep{.kind = PrintStep::Kind::Bold, .bold = false};
            heading = false;
        }
        job << PrintStep{.texts = text.isEmpty() ? QList<PrintTab>{} : QList<PrintTab>{{0, text}}};
    }
    return job;
}

} // namespace telvane

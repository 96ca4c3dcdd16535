#include "season/inviaprocedura.h"

#include "base/clock.h"
#include "base/pause.h"
#include "base/prompts.h"
#include "fieldbus/modbusmaster.h"
#include "season/seasonlog.h"

namespace telvane {

namespace {

struct BoxStyle
{
    Prompts::Icon icon = Prompts::Icon::Information;
    bool cancellable = true;
};

// A MSGBOX row whose name is one digit chooses its box: 0-3 offer OK and Cancel, 4-7
// only OK (a notice the operator cannot use to stop the send); the digit modulo 4 picks
// the icon: information, question, exclamation, critical. Any other name: 0.
BoxStyle msgBoxStyle(const RecipeRow &row)
{
    const QString name = row.name.trimmed();
    if (name.size() != 1 || name.at(0) < QLatin1Char('0') || name.at(0) > QLatin1Char('7'))
        return {};
    const int digit = name.at(0).digitValue();
    static constexpr Prompts::Icon Icons[] = {Prompts::Icon::Information, Prompts::Icon::Question,
                                              Prompts::Icon::Exclamation, Prompts::Icon::Critical};
    return {Icons[digit % 4], digit < 4};
}

bool sameWord(qint32 a, qint32 b)
{
    return quint16(a) == quint16(b);
}

void sendWrite(ModbusMaster &master, const RecipeRow &row, RowOutcome &outcome, ProcedureOptions options)
{
    if (row.slave < 1) {
        outcome.status = RowOutcome::Status::NoInstrument;
        return;
    }
    const BusOutcome written = master.write(row.functionCode, row.address, row.value, row.slave);
    outcome.echo = written.value;
    if (!written.answered() || !sameWord(outcome.echo, row.value)) {
        outcome.status = RowOutcome::Status::NotAcknowledged;
        outcome.reason = written.reason();
        return;
    }
    if (options.verifyReadBack && row.kind == RecipeRow::Kind::WriteRegister) {
        const BusOutcome readBack = master.read(3, row.address, row.slave);
        outcome.readBack = readBack.value;
        if (!readBack.answered() || !sameWord(outcome.readBack, row.value)) {
            outcome.status = RowOutcome::Status::Mismatch;
            outcome.reason = readBack.reason();
            return;
        }
    }
    outcome.status = RowOutcome::Status::Written;
}

} // namespace

QString progressText(int percent)
{
    return QString::number(percent) + QLatin1Char('%');
}

QString RowOutcome::text(const RecipeRow &row) const
{
    QString where = QStringLiteral("Riga %1, zona %2").arg(this->row + 1).arg(row.zone, 2, 10, QLatin1Char('0'));
    if (!row.device.isEmpty())
        where += QStringLiteral(" (%1)").arg(row.device);
    const QString write = QStringLiteral(", slave %1, %2 %3 = %4 (%5)")
                              .arg(row.slave)
                              .arg(row.kind == RecipeRow::Kind::WriteCoil ? QStringLiteral("bobina")
                                                                          : QStringLiteral("registro"))
                              .arg(row.address)
                              .arg(row.valueText, row.name);
    const QString why = reason.trimmed().isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reason.trimmed());
    switch (status) {
    case Status::Written:
        return where + write + QStringLiteral(": scritto");
    case Status::Paused:
        return where + QStringLiteral(": attesa di %1 ms").arg(row.value);
    case Status::Acknowledged:
        return where + QStringLiteral(": messaggio confermato");
    case Status::NotAcknowledged:
        if (echo == ModbusMaster::InvalidValue)
            return where + write + QStringLiteral(": nessuna risposta dallo strumento") + why;
        return where + write + QStringLiteral(": lo strumento ha risposto %1").arg(echo);
    case Status::Mismatch:
        if (readBack == ModbusMaster::InvalidValue)
            return where + write + QStringLiteral(": scritto, ma la rilettura non ha avuto risposta") + why;
        return where + write + QStringLiteral(": scritto, ma riletto %1").arg(readBack);
    case Status::NoInstrument:
        return where + QStringLiteral(": la zona non ha un indirizzo di strumento, nulla inviato");
    case Status::Cancelled:
        return where + QStringLiteral(": messaggio annullato dall'operatore");
    case Status::NotSent:
        if (row.kind == RecipeRow::Kind::Sleep)
            return where + QStringLiteral(": attesa di %1 ms non eseguita").arg(row.value);
        if (row.kind == RecipeRow::Kind::MsgBox)
            return where + QStringLiteral(": messaggio non mostrato");
        return where + write + QStringLiteral(": non inviato");
    }
    return where;
}

ProcedureResult InviaProcedura(ModbusMaster &master, Pause &pause, Prompts &prompts, const Clock &clock,
                               const Recipe &recipe, const ProcedureObserver &observer, ProcedureOptions options)
{
    const auto report = [&observer](int percent) {
        if (observer.progress)
            observer.progress(percent, progressText(percent));
    };
    ProcedureResult result;
    const auto total = recipe.rows.size();
    report(0);
    for (qsizetype index = 0; index < total; ++index) {
        const RecipeRow &row = recipe.rows.at(index);
        report(int(index * 100 / total));

        RowOutcome outcome;
        outcome.row = int(index);
        outcome.startedAt = clock.now();
        outcome.startedMs = clock.monotonicMs();
        switch (row.kind) {
        case RecipeRow::Kind::WriteCoil:
        case RecipeRow::Kind::WriteRegister:
            sendWrite(master, row, outcome, options);
            break;
        case RecipeRow::Kind::Sleep:
            pause.pause(row.value);
            outcome.status = RowOutcome::Status::Paused;
            break;
        case RecipeRow::Kind::MsgBox: {
            const BoxStyle style = msgBoxStyle(row);
            const bool ok = prompts.acknowledge(RecipeBoxTitle,
                                                row.valueText + QStringLiteral("\nPremere OK per continuare"),
                                                style.icon, style.cancellable);
            outcome.status = ok ? RowOutcome::Status::Acknowledged : RowOutcome::Status::Cancelled;
            break;
        }
        }
        // The instrument needs its zone's interval to take each write in.
        const bool write = row.kind == RecipeRow::Kind::WriteCoil || row.kind == RecipeRow::Kind::WriteRegister;
        if (write && outcome.ok())
            pause.pause(recipe.intervalsMs.at(row.zone - 1));
        outcome.elapsedMs = clock.monotonicMs() - outcome.startedMs;
        result.rows.append(outcome);
        if (outcome.ok())
            qCDebug(lcSeason).noquote() << outcome.text(row);
        else
            qCWarning(lcSeason).noquote() << recipe.fileName << "failed:" << outcome.text(row);
        if (observer.rowDone)
            observer.rowDone(row, outcome);
        if (!outcome.ok())
            return result;
    }
    report(100);
    result.ok = true;
    return result;
}

} // namespace telvane

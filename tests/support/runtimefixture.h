#pragma once

#include "base/clock.h"
#include "base/pause.h"
#include "base/prompts.h"
#include "base/soundplayer.h"
#include "fieldbus/scriptedline.h"
#include "supervisor/runtime.h"
#include "support/settingsfixture.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QTemporaryDir>

#include <array>

namespace telvane {

// A fresh runtime in a temporary program folder on a manual clock, talking over a
// scripted line to a plant of slaves: a present slave echoes every write and answers a
// read of a register it holds, an absent one stays silent. Each answer takes a few
// milliseconds of the clock, so every exchange yields once, as on a real line.
struct RuntimeFixture
{
    static constexpr int ReplyDelayMs = 5;

    QTemporaryDir dir;
    ManualClock clock{QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9))};
    ScriptedLine line{clock};
    RecordingPause pause{&clock};
    RecordingSoundPlayer sound;
    RecordingPrompts prompts;
    // Every text each status-bar panel showed, by panel number.
    std::array<QStringList, 5> panelTexts;
    Runtime rt{ProgramFolder(dir.path()), line, clock, pause, sound};
    QSet<int> slaves;

    RuntimeFixture()
    {
        rt.services.master.setAttempts(1);
        rt.services.master.setReplyTimeout(0.1f);
        rt.services.master.setCommunicate(true);
        rt.model.editor.comm.portAvailable = true;
        line.setResponder([this](const QByteArray &request) { return answer(request); });
        QObject::connect(&rt.display.statusBar, &StatusBar::panelChanged,
                         [this](int panel, const QString &text) { panelTexts.at(panel).append(text); });
    }

    // The value an instrument holds; its slave is present from then on.
    void setValue(int slave, int functionCode, int address, qint32 value)
    {
        slaves.insert(slave);
        m_values.insert(key(slave, functionCode, address), value);
    }

    void login(bool technician, bool administrator) { rt.services.user = {technician, administrator}; }

    // A file of the program folder, its folders made as needed.
    void writeFile(const QString &name, const QByteArray &bytes) const { writeTestFile(dir.filePath(name), bytes); }

    // Every write is answered with `echo` in place of the value written; reads go unanswered.
    void echoWrites(quint16 echo)
    {
        line.setResponder([echo](const QByteArray &request) -> ScriptedLine::Reply {
            QByteArray reply = request.left(4);
            reply.append(char(echo >> 8)).append(char(echo));
            return ScriptedLine::Reply().at(ReplyDelayMs, ScriptedLine::withCrc(reply));
        });
    }

    // A request as takeRequests() shows it.
    static QString request(int slave, int functionCode, int address, int countOrValue)
    {
        const auto hex = [](int value, int digits) {
            return QStringLiteral("%1").arg(quint16(value), digits, 16, QLatin1Char('0'));
        };
        return QStringList{hex(slave, 2), hex(functionCode, 2), hex(address, 4), hex(countOrValue, 4)}.join(' ');
    }

    // The requests sent since the last call, each as its bytes in hex without the CRC:
    // "01 03 0064 0001" is slave 1, function 3, register 100, one register.
    QStringList takeRequests()
    {
        QStringList sent;
        for (const QByteArray &bytes : line.requests().mid(m_taken)) {
            const QByteArray body = bytes.chopped(2);
            QString text = body.size() == 6 ? request(quint8(body[0]), quint8(body[1]), word(body, 2), word(body, 4))
                                            : QString::fromLatin1(body.toHex());
            if (ScriptedLine::withCrc(body) != bytes)
                text += QStringLiteral(" (bad CRC)");
            sent.append(text);
        }
        m_taken = int(line.requests().size());
        return sent;
    }

private:
    static int word(const QByteArray &bytes, int at) { return quint8(bytes[at]) << 8 | quint8(bytes[at + 1]); }

    static quint32 key(int slave, int functionCode, int address)
    {
        return quint32(slave) << 24 | quint32(functionCode) << 16 | quint32(address);
    }

    ScriptedLine::Reply answer(const QByteArray &request) const
    {
        if (request.size() != 8 || !slaves.contains(quint8(request[0])))
            return {};
        const int slave = quint8(request[0]);
        const int functionCode = quint8(request[1]);
        QByteArray reply = request;
        if (functionCode < 5) {
            const auto value = m_values.constFind(key(slave, functionCode, word(request, 2)));
            if (value == m_values.constEnd())
                return {};
            reply = request.left(2);
            if (functionCode <= 2)
                reply.append(char(1)).append(char(*value));
            else
                reply.append(char(2)).append(char(*value >> 8)).append(char(*value));
            reply = ScriptedLine::withCrc(reply);
        }
        return ScriptedLine::Reply().at(ReplyDelayMs, reply);
    }

    QHash<quint32, qint32> m_values;
    int m_taken = 0;
};

// Fills the first slots of one row of a register table, in the table's slot order; the
// other slots keep what they held.
template <typename Table>
void setRow(Table &table, int row, const QList<int> &values)
{
    int slot = 0;
    for (int value : values)
        table.set(row, slot++, qint16(value));
}

} // namespace telvane

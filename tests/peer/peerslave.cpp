#include "peer/peerslave.h"

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "platform/termiosline.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <csignal>
#include <sys/prctl.h>

namespace telvane {

namespace {

const QString Python = QStringLiteral("/usr/bin/python3");
const QString SlaveScript = QStringLiteral(TELVANE_PEER_SLAVE_SCRIPT);

// Should the test process be killed (a ctest time-out, a crash), its helpers go too.
void dieWithParent(QProcess &process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

void end(QProcess &process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(3000);
    }
}

QString describe(QProcess &process)
{
    QString text = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    if (text.isEmpty())
        text = process.errorString();
    return text;
}

} // namespace

PeerSlave::PeerSlave(QStringList slaves, int wireDelayBaud)
    : m_slaves(std::move(slaves))
    , m_wireDelayBaud(wireDelayBaud)
{
    dieWithParent(m_socat);
    dieWithParent(m_slave);
}

PeerSlave::~PeerSlave()
{
    stop();
}

QString PeerSlave::port() const
{
    return m_dir.filePath(QStringLiteral("master"));
}

QString PeerSlave::missingPort() const
{
    return m_dir.filePath(QStringLiteral("nessuna"));
}

bool PeerSlave::start(int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    stop();
    m_requests.clear();
    m_partial.clear();
    if (!m_dir.isValid())
        return fail(QStringLiteral("no temporary folder: %1").arg(m_dir.errorString()));
    if (m_slaves.isEmpty())
        return fail(QStringLiteral("no slave given"));
    if (!startSocat(deadline) || !startSlave() || !waitUntilAnswering(deadline))
        return false;
    return true;
}

bool PeerSlave::startSocat(QDeadlineTimer deadline)
{
    // socat creates both links, then says on its error output that it is ready.
    m_socat.setReadChannel(QProcess::StandardError);
    m_socat.start(QStringLiteral("socat"),
                  {QStringLiteral("-d"), QStringLiteral("-d"),
                   QStringLiteral("pty,raw,echo=0,link=%1").arg(port()),
                   QStringLiteral("pty,raw,echo=0,link=%1").arg(m_dir.filePath(QStringLiteral("slave")))});
    if (!m_socat.waitForStarted(5000))
        return fail(QStringLiteral("socat did not start (is it installed?): %1").arg(m_socat.errorString()));
    QByteArray said;
    while (!said.contains("starting data transfer loop")) {
        const qint64 left = deadline.remainingTime();
        if (left <= 0 || m_socat.state() != QProcess::Running)
            return fail(QStringLiteral("socat did not set up the pty pair: %1").arg(QString::fromLocal8Bit(said)));
        m_socat.waitForReadyRead(int(left));
        said += m_socat.readAllStandardError();
    }
    if (!QFileInfo::exists(port()) || !QFileInfo::exists(m_dir.filePath(QStringLiteral("slave"))))
        return fail(QStringLiteral("socat is running but the pty links are missing in %1").arg(m_dir.path()));
    return true;
}

bool PeerSlave::startSlave()
{
    QStringList arguments {SlaveScript, QStringLiteral("--port"), m_dir.filePath(QStringLiteral("slave")),
                           QStringLiteral("--log-requests")};
    for (const QString &slave : std::as_const(m_slaves))
        arguments << QStringLiteral("--slave") << slave;
    if (m_wireDelayBaud > 0)
        arguments << QStringLiteral("--wire-delay-baud") << QString::number(m_wireDelayBaud);
    m_slave.start(Python, arguments);
    if (!m_slave.waitForStarted(5000))
        return fail(QStringLiteral("%1 did not start: %2").arg(Python, m_slave.errorString()));
    return true;
}

bool PeerSlave::waitUntilAnswering(QDeadlineTimer deadline)
{
    // Any answer will do, an exception included: the slave is then serving the line.
    const int unit = m_slaves.constFirst().section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty).toInt();
    SystemClock clock;
    TermiosLine line;
    line.setPort(port());
    ModbusMaster master(line, clock);
    master.setAttempts(1);
    master.setReplyTimeout(0.2f);
    // Each try that is not answered costs the reply time-out, which paces the retries.
    while (!deadline.hasExpired()) {
        if (m_slave.state() != QProcess::Running)
            return fail(QStringLiteral("the slave stopped: %1").arg(describe(m_slave)));
        if (master.ReadRegister(3, 0, unit) != ModbusMaster::InvalidValue)
            return true;
    }
    return fail(QStringLiteral("slave %1 did not answer on %2: %3").arg(unit).arg(port(), describe(m_slave)));
}

void PeerSlave::cutLine()
{
    m_socat.kill();
    m_socat.waitForFinished(3000);
    // As an unplugged adapter's device node goes: a killed socat leaves its links behind,
    // and the pty numbers they name are soon given to another program's pty pair.
    QFile::remove(port());
    QFile::remove(m_dir.filePath(QStringLiteral("slave")));
}

QStringList PeerSlave::requests()
{
    // The slave prints a request before answering it, and the master has had its
    // answer or its time-out since; what is printed is a pipe read away.
    while (m_slave.waitForReadyRead(20))
        m_partial += m_slave.readAllStandardOutput();
    m_partial += m_slave.readAllStandardOutput();
    const qsizetype end = m_partial.lastIndexOf('\n') + 1;
    for (const QByteArray &line : m_partial.left(end).split('\n'))
        if (!line.isEmpty())
            m_requests.append(QString::fromLatin1(line));
    m_partial.remove(0, end);
    return m_requests;
}

int PeerSlave::requestsTo(int slave)
{
    const QString prefix = QStringLiteral("%1").arg(slave, 2, 16, QLatin1Char('0'));
    return int(requests().filter(QRegularExpression(QLatin1Char('^') + prefix)).size());
}

void PeerSlave::stop()
{
    end(m_slave);
    end(m_socat);
}

bool PeerSlave::fail(const QString &reason)
{
    m_error = reason;
    stop();
    return false;
}

} // namespace telvane

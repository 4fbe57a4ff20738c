#include "Desktop/ShippedApplication.h"

#include "Foundation/Log.h"
#include "Support/Await.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr auto BeforeTheFirstWord = std::chrono::milliseconds(100);
constexpr auto AfterTheLastWord = std::chrono::milliseconds(200);

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind a name at the beginning of a line.
qint64 number(const QByteArray &lines, const QByteArray &name)
{
    const qsizetype at = lines.indexOf(QByteArray('\n' + name));
    return at < 0 ? 0 : lines.mid(at + 1 + name.size(), 40).simplified().split(' ').value(0).toLongLong();
}

} // namespace

ShippedApplication::ShippedApplication(const QString &program)
    : m_program(program)
    , m_soundServer(SoundServer::Kind::pulseAudio)
{
    m_soundServer.addMicrophone({u"desk"_s, {}, 1});
    start();
}

ShippedApplication::~ShippedApplication() = default;

void ShippedApplication::start()
{
    launch();
    waitForModel();
}

void ShippedApplication::launch()
{
    m_modelsBefore = log().count("speech model ready");
    m_process = std::make_unique<Process>(
        m_program,
        Process::Options{{},
                         QProcess::SeparateChannels,
                         {},
                         {{u"PULSE_SERVER"_s, QString::fromStdString(m_soundServer.address())}}});
}

void ShippedApplication::waitForModel()
{
    if (!waitForLog("speech model ready", m_modelsBefore + 1)) {
        throw std::runtime_error("the application does not load its model: " + log().toStdString());
    }
}

void ShippedApplication::kill()
{
    m_process->kill();
    m_process.reset();
}

void ShippedApplication::cancel()
{
    constexpr int LeftShift = 50; // types nothing
    m_screen.tap(LeftShift);
    m_screen.keyUp(DictationKey);
}

std::chrono::steady_clock::time_point ShippedApplication::dictate(const QString &clip)
{
    m_screen.keyDown(DictationKey);
    pause(BeforeTheFirstWord);
    const auto voice = m_soundServer.play(clip, u"desk"_s);
    eventually([&voice] { return !voice->isRunning(); });
    pause(AfterTheLastWord);
    const auto released = std::chrono::steady_clock::now();
    m_screen.keyUp(DictationKey);
    return released;
}

QByteArray ShippedApplication::log() { return content(Log::file()); }

bool ShippedApplication::waitForLog(const QByteArray &text, qsizetype count)
{
    return eventually([&] { return log().count(text) >= count; }, std::chrono::minutes(1));
}

double ShippedApplication::memory() const
{
    return static_cast<double>(number(content(u"/proc/%1/smaps_rollup"_s.arg(processId())), "Pss:")) / 1024;
}

double ShippedApplication::processorTime() const
{
    // The second field, the program's name, may hold blanks.
    const QByteArray line = content(u"/proc/%1/stat"_s.arg(processId()));
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble())
        / static_cast<double>(sysconf(_SC_CLK_TCK));
}

qint64 ShippedApplication::wakeUps() const
{
    qint64 sum = 0;
    const QDir tasks(u"/proc/%1/task"_s.arg(processId()));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        sum += number(content(tasks.filePath(task + u"/status"_s)), "voluntary_ctxt_switches:");
    }
    return sum;
}

void pause(std::chrono::milliseconds time)
{
    const QDeadlineTimer end(time);
    eventually([&end] { return end.hasExpired(); }, time);
}

} // namespace vesk::test

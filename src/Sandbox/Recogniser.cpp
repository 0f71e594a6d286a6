#include "Recogniser.h"

#include <unistd.h>
#include <csignal>
#include <deque>
#include <QObject>
#include <QProcess>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTimer>

#include "Base/Text.h"
#include "WavFile.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 longestOutputBytes = 64 * 1024;

class CommandTexts final : public UtteranceTexts {
public:
    explicit CommandTexts(RecogniserCommand command) : m_command(std::move(command)) {
        m_limit.setSingleShot(true);
        QObject::connect(&m_limit, &QTimer::timeout, &m_context, [this] {
            fail(
                u"took longer than %1 s"_s.arg(text::fixed(std::chrono::duration<double>(m_command.limit).count(), 1)));
        });
    }

    ~CommandTexts() override { endProcess(); }

    void finished(const Utterance& utterance, Answer answer) override {
        m_jobs.push_back({utterance, std::move(answer)});
        if (m_jobs.size() == 1)
            startNext();
    }

private:
    struct Job {
        Utterance utterance;
        Answer answer;
    };

    void startNext() {
        if (m_jobs.empty())
            return;
        const Utterance& utterance = m_jobs.front().utterance;
        const QString path = m_folder.filePath(u"utterance.wav"_s);
        auto wav = WavWriter::create(path, utterance.sampleRateHertz);
        if (!wav || !wav->append(utterance.pcm)) {
            fail(wav ? u"the disk is full"_s : wav.error().errorDescription());
            return;
        }
        m_process = new QProcess{&m_context};
        // A group of its own, so that what the shell starts ends with it.
        m_process->setChildProcessModifier([] { ::setpgid(0, 0); });
        m_process->setStandardInputFile(QProcess::nullDevice());
        QObject::connect(m_process, &QProcess::finished, &m_context, [this](int code, QProcess::ExitStatus status) {
            if (status == QProcess::CrashExit)
                fail(u"it crashed"_s);
            else if (code != 0)
                fail(u"status %1: %2"_s.arg(code).arg(
                    text::prefix(QString::fromUtf8(m_process->readAllStandardError()).simplified(), 200)));
            else
                succeed(m_process->read(longestOutputBytes));
        });
        QObject::connect(m_process, &QProcess::errorOccurred, &m_context, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                fail(m_process->errorString());
        });
        QString command = m_command.command;
        command.replace(u"{wav}"_s, shellQuoted(path));
        m_limit.start(m_command.limit);
        m_process->start(u"/bin/sh"_s, {u"-c"_s, command});
    }

    void succeed(const QByteArray& output) {
        QStringDecoder decoder{QStringDecoder::Utf8};
        const QString said = decoder(output);
        if (decoder.hasError()) {
            fail(u"it printed no UTF-8 text"_s);
            return;
        }
        next({.text = said.simplified(), .failure = {}, .note = {}});
    }

    void fail(const QString& why) { next({.text = {}, .failure = u"Recogniser: "_s + why, .note = {}}); }

    void next(Spoken spoken) {
        m_limit.stop();
        endProcess();
        const Answer answer = std::move(m_jobs.front().answer);
        m_jobs.pop_front();
        answer(std::move(spoken));
        // In a later turn: the answer may have ended the connection, and this object with it.
        QTimer::singleShot(0, &m_context, [this] { startNext(); });
    }

    void endProcess() {
        if (!m_process)
            return;
        m_process->disconnect(&m_context);
        if (const auto pid = m_process->processId(); pid > 0) {
            ::kill(-static_cast<pid_t>(pid), SIGKILL);
            m_process->kill();
            m_process->waitForFinished(1000);
        }
        m_process->deleteLater();
        m_process = nullptr;
    }

    RecogniserCommand m_command;
    QTemporaryDir m_folder;
    std::deque<Job> m_jobs;
    QObject m_context;
    QTimer m_limit;
    QProcess* m_process = nullptr;
};

}  // namespace

UtteranceTextsMaker commandTexts(RecogniserCommand command) {
    return [command = std::move(command)](AudioSourceTag) { return std::make_unique<CommandTexts>(command); };
}

QString shellQuoted(const QString& path) {
    return u"'"_s + QString{path}.replace(u'\'', u"'\\''"_s) + u"'"_s;
}

}  // namespace corvellan::sandbox

#include "XdgWebBrowser.h"

#include <memory>
#include <optional>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <stop_token>
#include <utility>

#include "Base/Tasks.h"
#include "Platform/Linux/LetGoOfParent.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Result = std::expected<void, Error>;

Result failure(const QString& sentence) {
    return std::unexpected<Error>{TransportError{sentence}};
}

/// How the start of one browser went.
struct Opening {
    std::optional<Result> result;
    Announcement ended;

    /// Only the first end counts.
    void finish(Result end) {
        if (result)
            return;
        result = std::move(end);
        ended.announce();
    }
};

void launch(const QString& program, const QString& address, const QString& refusal,
            const std::shared_ptr<Opening>& opening) {
    // Not destroyed before it ends, since Qt kills with it what it runs.
    auto* const process = new QProcess;
    process->setProgram(program);
    process->setArguments({address});
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setChildProcessModifier(letGoOfParent);
    QObject::connect(process, &QProcess::finished, process,
                     [process, refusal, opening](int code, QProcess::ExitStatus status) {
                         if (status != QProcess::NormalExit)
                             opening->finish(failure(u"xdg-open has crashed."_s));
                         else if (code != 0)
                             opening->finish(failure(refusal.arg(code)));
                         else
                             opening->finish({});
                         process->deleteLater();
                     });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, opening](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        opening->finish(failure(u"xdg-open could not be started: %1"_s.arg(process->errorString())));
        process->deleteLater();
    });
    process->start();
}

QCoro::Task<void> takeForOpen(Clock& clock, std::shared_ptr<Opening> opening, std::stop_token stop) {
    if (co_await sleep(clock, XdgWebBrowser::patience, std::move(stop)) == SleepEnd::elapsed)
        opening->finish({});
}

}  // namespace

QCoro::Task<Result> XdgWebBrowser::open(QUrl page) {
    // A file or a program's own scheme may do more than show a page.
    if (!page.isValid() || (page.scheme() != u"http" && page.scheme() != u"https"))
        co_return failure(u"This is no address of a web page."_s);
    co_return co_await handOver(page.toString(QUrl::FullyEncoded),
                                u"No web browser took the address (xdg-open ended with status %1)."_s);
}

QCoro::Task<Result> XdgWebBrowser::openContact(QUrl link) {
    // What a mail program makes of more than an address, attachments say, is not the sender's to decide.
    if (!link.hasQuery() && !link.hasFragment() && link.authority().isEmpty()) {
        static const QRegularExpression mail{uR"(\A[A-Za-z0-9._+][A-Za-z0-9._+-]*@[A-Za-z0-9.-]+\z)"_s};
        static const QRegularExpression telephone{uR"(\A\+?[0-9]+\z)"_s};
        QString target = link.path(QUrl::FullyDecoded);
        if (link.scheme() == u"mailto" && mail.match(target).hasMatch())
            co_return co_await handOver(u"mailto:"_s + target,
                                        u"No program here takes mail addresses (xdg-open ended with status %1)."_s);
        // A dialler wants the digits alone.
        target.remove(u' ');
        if (link.scheme() == u"tel" && telephone.match(target).hasMatch())
            co_return co_await handOver(u"tel:"_s + target,
                                        u"No program here takes telephone numbers (xdg-open ended with status %1)."_s);
    }
    co_return failure(u"This is no mail address and no telephone number."_s);
}

QCoro::Task<Result> XdgWebBrowser::composeMail(QString subject, QString text) {
    // Lines of a mail end in both characters.
    const QString lines = text.replace(u"\r\n"_s, u"\n"_s).replace(u'\n', u"\r\n"_s);
    const QByteArray address =
        "mailto:?subject=" + QUrl::toPercentEncoding(subject) + "&body=" + QUrl::toPercentEncoding(lines);
    if (address.size() > longestAddress)
        co_return failure(u"The text is too long to be handed to a mail program."_s);
    co_return co_await handOver(QString::fromLatin1(address),
                                u"No mail program took the text (xdg-open ended with status %1)."_s);
}

QCoro::Task<Result> XdgWebBrowser::handOver(QString address, QString refusal) {
    const QString program = QStandardPaths::findExecutable(u"xdg-open"_s);
    if (program.isEmpty())
        co_return failure(u"xdg-open is not installed (package xdg-utils)."_s);

    const auto opening = std::make_shared<Opening>();
    std::stop_source enough;
    const auto patient = takeForOpen(m_clock, opening, enough.get_token());
    launch(program, address, refusal, opening);
    if (!opening->result)
        co_await opening->ended.next();
    enough.request_stop();
    co_return *opening->result;
}

}  // namespace corvellan

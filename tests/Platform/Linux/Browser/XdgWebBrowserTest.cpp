#include "Platform/Linux/Browser/XdgWebBrowser.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <QFile>
#include <QTemporaryDir>

#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The real thing, with an `xdg-open` of the test's own in the path.
class XdgWebBrowserTest : public testing::Test {
protected:
    using Result = std::expected<void, Error>;

    XdgWebBrowserTest() { qputenv("PATH", folder.path().toLocal8Bit() + ":/usr/bin:/bin"); }
    ~XdgWebBrowserTest() override { qputenv("PATH", oldPath); }

    /// \param lines run by the shell in the test's folder; `"$1"` is the address.
    void install(const QByteArray& lines) {
        QFile script{folder.filePath(u"xdg-open"_s)};
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\ncd '" + folder.path().toLocal8Bit() + "'\n" + lines + '\n');
        ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    [[nodiscard]] QByteArray contents(const QString& name) const {
        QFile file{folder.filePath(name)};
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray{};
    }
    /// Empty when it went well.
    QString problem(const QUrl& page) {
        const auto opened = complete(browser.open(page));
        return opened ? QString{} : opened.error().errorDescription();
    }
    QString contactProblem(const QUrl& link) {
        const auto opened = complete(browser.openContact(link));
        return opened ? QString{} : opened.error().errorDescription();
    }
    QCoro::Task<void> keep(QCoro::Task<Result> task) { result.emplace(co_await task); }

    const QByteArray oldPath = qgetenv("PATH");
    QTemporaryDir folder;
    ManualClock clock;
    XdgWebBrowser browser{clock};
    std::optional<Result> result;
};

const QUrl page{u"https://download.example/bram"_s};

}  // namespace

TEST_F(XdgWebBrowserTest, handsTheAddressOver) {
    install("printf '%s' \"$1\" >address; printf '%s' \"$#\" >count");
    EXPECT_EQ(problem(page), QString{});
    EXPECT_EQ(contents(u"address"_s), "https://download.example/bram");
    EXPECT_EQ(contents(u"count"_s), "1");
}

TEST_F(XdgWebBrowserTest, keepsAnAddressTogetherWhateverItHolds) {
    install("printf '%s' \"$1\" >address");
    EXPECT_EQ(problem(QUrl{u"http://x.example/a b?c=$(touch d)&e='f';g#\u00e9"_s}), QString{});
    EXPECT_EQ(contents(u"address"_s), "http://x.example/a%20b?c=$(touch%20d)&e='f';g#%C3%A9");
    EXPECT_FALSE(QFile::exists(folder.filePath(u"d"_s)));
}

TEST_F(XdgWebBrowserTest, opensNothingButWebPages) {
    install("touch opened");
    for (const auto& address : {u"file:///etc/passwd"_s, u"mailto:a@b.example"_s, u"javascript:1"_s, u"--help"_s, u""_s,
                                u"http://bad host/"_s})
        EXPECT_EQ(problem(QUrl{address}), u"This is no address of a web page."_s) << address.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath(u"opened"_s)));
}

TEST_F(XdgWebBrowserTest, handsMailAddressesAndTelephoneNumbersOver) {
    install("printf '%s' \"$1\" >address");
    EXPECT_EQ(contactProblem(QUrl{u"mailto:jo.o+x@mail-1.example"_s}), QString{});
    EXPECT_EQ(contents(u"address"_s), "mailto:jo.o+x@mail-1.example");
    EXPECT_EQ(contactProblem(QUrl{u"tel:+49 30 123456 7"_s}), QString{});
    EXPECT_EQ(contents(u"address"_s), "tel:+49301234567");
}

TEST_F(XdgWebBrowserTest, aContactIsAPlainAddressAndNothingElse) {
    install("touch opened");
    for (const auto& address :
         {u"https://download.example/bram"_s, u"file:///etc/passwd"_s, u"javascript:1"_s, u""_s, u"mailto:"_s,
          u"mailto:jo"_s, u"mailto:a@b.example?attach=/etc/passwd"_s, u"mailto:%3Fattach%3Dx@b.example"_s,
          u"mailto:a@b.example,c@d.example"_s, u"mailto:-x@b.example"_s, u"mailto://a@b.example"_s, u"tel:"_s,
          u"tel:+49;ext=1"_s, u"tel:%2349"_s, u"tel:49#"_s, u"tel:+49%0A1"_s})
        EXPECT_EQ(contactProblem(QUrl{address}), u"This is no mail address and no telephone number."_s)
            << address.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath(u"opened"_s)));
}

TEST_F(XdgWebBrowserTest, saysThatNothingTakesAContact) {
    install("exit 3");
    EXPECT_EQ(contactProblem(QUrl{u"mailto:a@b.example"_s}),
              u"No program here takes mail addresses (xdg-open ended with status 3)."_s);
    EXPECT_EQ(contactProblem(QUrl{u"tel:+4930123456"_s}),
              u"No program here takes telephone numbers (xdg-open ended with status 3)."_s);
}

TEST_F(XdgWebBrowserTest, aMailKeepsItsSubjectAndItsLines) {
    install("printf '%s' \"$1\" >address; printf '%s' \"$#\" >count");
    EXPECT_TRUE(complete(browser.composeMail(u"Report: A & B"_s, u"one\n20 % + two&attach=/etc/passwd\r\nö"_s)));
    EXPECT_EQ(contents(u"address"_s),
              "mailto:?subject=Report%3A%20A%20%26%20B&body=one%0D%0A20%20%25%20%2B%20two%26attach%3D%2Fetc%2Fpasswd"
              "%0D%0A%C3%B6");
    EXPECT_EQ(contents(u"count"_s), "1");
}

TEST_F(XdgWebBrowserTest, aMailThatIsTooLongIsNotBegun) {
    install("touch opened");
    const auto tooLong = complete(browser.composeMail({}, QString{XdgWebBrowser::longestAddress, u'x'}));
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().errorDescription(), u"The text is too long to be handed to a mail program."_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"opened"_s)));
    EXPECT_TRUE(complete(browser.composeMail({}, QString{100'000, u'x'}))) << "the system hands this over";
}

TEST_F(XdgWebBrowserTest, saysThatNoBrowserIsThere) {
    install("exit 3");
    EXPECT_EQ(problem(page), u"No web browser took the address (xdg-open ended with status 3)."_s);
}

TEST_F(XdgWebBrowserTest, saysThatXdgOpenCrashed) {
    install("kill -SEGV $$");
    EXPECT_EQ(problem(page), u"xdg-open has crashed."_s);
}

TEST_F(XdgWebBrowserTest, saysThatXdgOpenCannotBeStarted) {
    install("");
    QFile script{folder.filePath(u"xdg-open"_s)};
    ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
    script.write("#!/nowhere/interpreter\n");
    script.close();
    const QString told = problem(page);
    EXPECT_TRUE(told.startsWith(u"xdg-open could not be started: "_s)) << told.toStdString();
}

TEST_F(XdgWebBrowserTest, saysThatXdgOpenIsMissing) {
    qputenv("PATH", folder.path().toLocal8Bit());
    EXPECT_EQ(problem(page), u"xdg-open is not installed (package xdg-utils)."_s);
}

TEST_F(XdgWebBrowserTest, takesABrowserThatGoesOnForOpen) {
    // What ends it is the test, by the other end of the pipe.
    install("mkfifo pipe; echo $$ >started; read end <pipe; exit 3");
    auto underWay = keep(browser.open(page));
    ASSERT_TRUE(spinUntil([this] { return !contents(u"started"_s).isEmpty(); }));
    settleAfter(clock, XdgWebBrowser::patience - 1ms);
    EXPECT_FALSE(result);
    settleAfter(clock, 1ms);
    ASSERT_TRUE(spinUntil([this] { return result.has_value(); }));
    EXPECT_TRUE(*result);
    // How it ends later is nobody's business any more.
    QFile pipe{folder.filePath(u"pipe"_s)};
    ASSERT_TRUE(pipe.open(QIODevice::WriteOnly));
    pipe.close();
    const QString entry = u"/proc/"_s + QString::fromLatin1(contents(u"started"_s));
    EXPECT_TRUE(spinUntil([&] { return !QFile::exists(entry); }));
    EXPECT_TRUE(*result);
}

TEST_F(XdgWebBrowserTest, leavesTheBrowserItsSignalsAndASessionOfItsOwn) {
    install("grep -E '^Sig(Blk|Ign)' /proc/self/status >signals; cut -d' ' -f6 /proc/$$/stat >session; echo $$ >pid");
    // As in the program, where the main loop waits for these.
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    EXPECT_EQ(problem(page), QString{});
    pthread_sigmask(SIG_UNBLOCK, &ends, nullptr);
    EXPECT_EQ(contents(u"signals"_s), "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000");
    EXPECT_EQ(contents(u"session"_s), contents(u"pid"_s));
}

}  // namespace corvellan::test

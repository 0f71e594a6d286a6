#include <gtest/gtest.h>

#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QUrl>

#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;

/// The built program itself.
class ProgramTest : public testing::Test {
protected:
    ~ProgramTest() override {
        if (program.state() == QProcess::NotRunning)
            return;
        program.kill();
        program.waitForFinished();
    }

    void start(const QStringList& arguments) {
        QObject::connect(&program, &QProcess::readyReadStandardOutput, &program,
                         [this] { output += QString::fromUtf8(program.readAllStandardOutput()); });
        program.start(QStringLiteral(SANDBOX_PROGRAM), arguments);
        ASSERT_TRUE(program.waitForStarted());
    }
    [[nodiscard]] bool prints(const QString& text) {
        return spinUntil([&] { return output.contains(text); });
    }
    [[nodiscard]] bool ends() {
        return spinUntil([&] { return program.state() == QProcess::NotRunning; });
    }

    QProcess program;
    QString output;
};

}  // namespace

TEST_F(ProgramTest, printsItsAddressesAndEndsCleanlyOnASignal) {
    start({u"--coach-port"_s, u"0"_s, u"--chat-port"_s, u"0"_s, u"--stt-port"_s, u"0"_s});
    ASSERT_TRUE(prints(u"\nready\n"_s));
    const QStringList lines = output.split(u'\n');
    ASSERT_GE(lines.size(), 9);
    EXPECT_TRUE(lines[0].startsWith(u"coach ws://127.0.0.1:"_s));
    EXPECT_TRUE(lines[0].endsWith(u"/ws"_s));
    EXPECT_TRUE(lines[2].startsWith(u"chat http://127.0.0.1:"_s));
    EXPECT_TRUE(lines[3].startsWith(u"stt ws://127.0.0.1:"_s));
    EXPECT_TRUE(lines[4].startsWith(u"coach ws://127.0.0.2:"_s));
    ASSERT_TRUE(prints(u"no recogniser"_s));
    program.terminate();
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(prints(u"0 calls were held"_s));
}

TEST_F(ProgramTest, saysWhichPortIsTaken) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress{u"127.0.0.2"_s}));
    const QString port = QString::number(taken.serverPort());
    start({u"--coach-port"_s, port, u"--chat-port"_s, u"0"_s, u"--stt-port"_s, u"0"_s});
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(QString::fromUtf8(program.readAllStandardError()),
              u"corvellan-sandbox: Cannot listen on 127.0.0.2:%1: The bound address is already in use\n"_s.arg(port));
    EXPECT_TRUE(output.isEmpty());
}

TEST_F(ProgramTest, refusesWrongOptionsWithStatusTwo) {
    start({u"--coach-port"_s, u"many"_s});
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 2);
    EXPECT_TRUE(
        QString::fromUtf8(program.readAllStandardError()).startsWith(u"corvellan-sandbox: --coach-port takes"_s));
}

TEST_F(ProgramTest, playsTheExtensionAgainstARunningOne) {
    start({u"--coach-port"_s, u"0"_s, u"--chat-port"_s, u"0"_s, u"--stt-port"_s, u"0"_s});
    ASSERT_TRUE(prints(u"\nready\n"_s));
    const QString port = QString::number(QUrl{output.section(u'\n', 0, 0).section(u' ', 1)}.port());
    QProcess extension;
    extension.start(QStringLiteral(SANDBOX_PROGRAM),
                    {u"extension"_s, u"call-start"_s, u"--company"_s, u"Northwind"_s, u"--coach-port"_s, port});
    ASSERT_TRUE(spinUntil([&] { return extension.state() == QProcess::NotRunning; }));
    EXPECT_EQ(extension.exitCode(), 0) << extension.readAllStandardError().constData();
    EXPECT_TRUE(extension.readAllStandardOutput().startsWith("Reported."));
    EXPECT_TRUE(prints(u"call_start at Northwind, 0 listening"_s));
}

TEST_F(ProgramTest, theExtensionSaysWhenNoSandboxRuns) {
    // Nothing listens there any more.
    QTcpServer gone;
    ASSERT_TRUE(gone.listen(QHostAddress{u"127.0.0.1"_s}));
    const QString port = QString::number(gone.serverPort());
    gone.close();
    start({u"extension"_s, u"call-end"_s, u"--coach-port"_s, port});
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(QString::fromUtf8(program.readAllStandardError()),
              u"corvellan-sandbox: no sandbox answers on 127.0.0.1:%1 (Connection refused)\n"_s.arg(port));
}

TEST_F(ProgramTest, theExtensionRefusesWrongOptionsWithStatusTwo) {
    start({u"extension"_s, u"call-end"_s, u"--company"_s, u"A"_s});
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 2);
    EXPECT_EQ(QString::fromUtf8(program.readAllStandardError()),
              u"corvellan-sandbox: extension call-end takes no other option than --coach-port (--help tells more)\n"_s);
}

TEST_F(ProgramTest, helps) {
    start({u"--help"_s});
    ASSERT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(prints(u"--transcriber 'CMD {wav}'"_s));
}

}  // namespace corvellan::test

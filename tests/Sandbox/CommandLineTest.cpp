#include "Sandbox/CommandLine.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "GeneratedAudio.h"
#include "Sandbox/Recogniser.h"
#include "Sandbox/WavFile.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using sandbox::parseCommandLine;

sandbox::ServeCommand serve(const QStringList& arguments) {
    auto command = parseCommandLine(arguments);
    EXPECT_TRUE(command) << command.error().toStdString();
    return std::get<sandbox::ServeCommand>(*command);
}

struct BadArguments {
    QStringList arguments;
    const char16_t* message;
};

class BadCommandLines : public testing::TestWithParam<BadArguments> {};

}  // namespace

TEST(CommandLineTest, servesOnTheUsualPortsByDefault) {
    const auto command = serve({});
    EXPECT_EQ(command.options.coachPort, 3001);
    EXPECT_EQ(command.options.chatPort, 3002);
    EXPECT_EQ(command.options.providerPort, 3003);
    EXPECT_EQ(command.options.accounts.tokenLifetime, std::chrono::hours{1});
    EXPECT_EQ(command.options.accounts.refreshTokens, sandbox::RefreshTokens::rotate);
    EXPECT_EQ(command.options.closeAfter, std::chrono::milliseconds{500});
    EXPECT_TRUE(command.options.keepAudioFolder.isEmpty());
    EXPECT_FALSE(command.options.coachWire);
    EXPECT_FALSE(command.options.feedVersion);
    EXPECT_TRUE(command.texts.contains(u"--transcriber 'CMD {wav}'"_s));
}

TEST(CommandLineTest, takesFaultsAndProxies) {
    const auto options =
        serve({u"--fault"_s, u"unknown-enum"_s, u"--fault"_s, u"close-at-step-3:1001"_s, u"--fault"_s,
               u"slow-summary:3000"_s, u"--proxy"_s, u"coach:delay:50"_s, u"--proxy"_s, u"stt:half-open"_s})
            .options;
    EXPECT_TRUE(options.faults.unknownEnum);
    EXPECT_FALSE(options.faults.silence);
    ASSERT_TRUE(options.faults.closeAt);
    EXPECT_EQ(options.faults.closeAt->step, 3);
    EXPECT_EQ(options.faults.closeAt->code, 1001);
    EXPECT_EQ(options.faults.slowSummary, std::chrono::milliseconds{3000});
    EXPECT_EQ(options.coachWire, (sandbox::WireFault{.kind = sandbox::WireFault::Kind::delay, .amount = 50}));
    EXPECT_EQ(options.providerWire, (sandbox::WireFault{.kind = sandbox::WireFault::Kind::halfOpen, .amount = 2000}));
    const auto both = serve({u"--proxy"_s, u"drop:7"_s}).options;
    EXPECT_EQ(both.coachWire, both.providerWire);
    EXPECT_EQ(both.coachWire->amount, 7);
}

TEST(CommandLineTest, keepsItsStateWhereItIsTold) {
    EXPECT_TRUE(serve({}).options.stateFolder.isEmpty());
    EXPECT_EQ(serve({u"--state"_s, u"/tmp/x"_s}).options.stateFolder, u"/tmp/x"_s);
}

TEST(CommandLineTest, announcesWhateverVersionIsAskedFor) {
    EXPECT_EQ(serve({u"--update"_s, u"9.0"_s}).options.feedVersion, u"9.0"_s);
    EXPECT_EQ(serve({u"--update"_s, QString{}}).options.feedVersion, QString{});
}

TEST(CommandLineTest, takesWhoSignsInAndHow) {
    const auto accounts =
        serve({u"--user"_s, u"a@x.example"_s, u"--user"_s, u"b@x.example"_s, u"--user"_s, u"a@x.example"_s,
               u"--token-lifetime"_s, u"90"_s, u"--code-lifetime"_s, u"5"_s, u"--refresh-tokens"_s, u"keep"_s})
            .options.accounts;
    EXPECT_EQ(accounts.users, (QStringList{u"a@x.example"_s, u"b@x.example"_s}));
    EXPECT_EQ(accounts.tokenLifetime, std::chrono::seconds{90});
    EXPECT_EQ(accounts.codeLifetime, std::chrono::seconds{5});
    EXPECT_EQ(accounts.refreshTokens, sandbox::RefreshTokens::keep);
    const auto other = serve({u"--token-lifetime"_s, u"forever"_s, u"--refresh-tokens"_s, u"none"_s}).options.accounts;
    EXPECT_EQ(other.tokenLifetime, std::nullopt);
    EXPECT_EQ(other.refreshTokens, sandbox::RefreshTokens::none);
}

TEST(CommandLineTest, putsAProxyInFrontOfTheServerThatItNames) {
    const auto one = serve({u"--proxy"_s, u"chat:drop:7"_s}).options;
    EXPECT_FALSE(one.coachWire);
    EXPECT_FALSE(one.providerWire);
    EXPECT_EQ(one.chatWire->amount, 7);
    const auto all = serve({u"--proxy"_s, u"drop:8"_s}).options;
    EXPECT_EQ(all.chatWire->amount, 8);
    EXPECT_EQ(all.chatWire, all.coachWire);
}

TEST(CommandLineTest, takesAShippedScriptByItsName) {
    EXPECT_EQ(serve({u"--script"_s, u"discovery-call"_s}).texts,
              u"texts from the script discovery-call, 22 lines, 113 s"_s);
}

TEST(CommandLineTest, playsTheExtension) {
    const auto read = [](const QStringList& arguments) {
        auto command = parseCommandLine(QStringList{u"extension"_s} + arguments);
        EXPECT_TRUE(command) << command.error().toStdString();
        return std::get<sandbox::ExtensionCommand>(*command);
    };
    const auto plain = read({u"call-start"_s});
    EXPECT_EQ(plain.coachPort, 3001);
    EXPECT_EQ(plain.report.json(), (QJsonObject{{u"event"_s, u"call_start"_s}}));
    EXPECT_EQ(read({u"call-start"_s, u"--company"_s, u"Acme"_s, u"--contact"_s, u"Dana Moor"_s}).report.json(),
              (QJsonObject{{u"event"_s, u"call_start"_s},
                           {u"company_name"_s, u"Acme"_s},
                           {u"display_name"_s, u"Dana Moor"_s},
                           {u"entity_type"_s, u"contact"_s},
                           {u"entity_id"_s, u"Dana Moor"_s}}));
    EXPECT_EQ(read({u"context"_s, u"--contact"_s, u"D"_s, u"--title"_s, u"Demo"_s, u"--id"_s, u"7"_s, u"--type"_s,
                    u"deal"_s, u"--hubspot-id"_s, u"9"_s})
                  .report.json(),
              (QJsonObject{{u"event"_s, u"context"_s},
                           {u"display_name"_s, u"Demo"_s},
                           {u"entity_type"_s, u"deal"_s},
                           {u"entity_id"_s, u"7"_s},
                           {u"hubspot_company_id"_s, u"9"_s}}));
    const auto end = read({u"call-end"_s, u"--coach-port"_s, u"4001"_s});
    EXPECT_EQ(end.report.event, sandbox::SensorReport::Event::callEnd);
    EXPECT_EQ(end.coachPort, 4001);
    EXPECT_EQ(read({u"disconnect"_s}).report.event, sandbox::SensorReport::Event::disconnect);
}

TEST(CommandLineTest, helpsInWords) {
    const auto command = parseCommandLine({u"--help"_s});
    ASSERT_TRUE(command);
    const QString& help = std::get<sandbox::HelpCommand>(*command).text;
    for (const auto& word : {u"--script"_s, u"--transcriber"_s, u"--coach-port"_s, u"--keep-audio"_s, u"--update"_s,
                             u"--customers"_s, u"--buyers"_s, u"--buyer-seed"_s, u"extension call-start"_s,
                             u"refuse-token"_s, u"half-open"_s, u"close-at-step-N"_s})
        EXPECT_TRUE(help.contains(word)) << word.toStdString();
}

TEST_P(BadCommandLines, areRefusedInWords) {
    const auto command = parseCommandLine(GetParam().arguments);
    ASSERT_FALSE(command);
    EXPECT_EQ(command.error().toStdString(), QStringView{GetParam().message}.toString().toStdString());
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BadCommandLines,
    testing::Values(
        BadArguments{{u"serve"_s}, u"There is no command \"serve\""},
        BadArguments{{u"--loud"_s}, u"Unknown option 'loud'."},
        BadArguments{{u"--coach-port"_s, u"x"_s}, u"--coach-port takes a number from 0 to 65535, not \"x\""},
        BadArguments{{u"--stt-port"_s, u"65536"_s}, u"--stt-port takes a number from 0 to 65535, not \"65536\""},
        BadArguments{{u"--chat-port"_s, u"-1"_s}, u"--chat-port takes a number from 0 to 65535, not \"-1\""},
        BadArguments{{u"--user"_s, u" "_s}, u"--user: \" \" is no address"},
        BadArguments{{u"--token-lifetime"_s, u"long"_s},
                     u"--token-lifetime takes a number from 0 to 3153600000, not \"long\""},
        BadArguments{{u"--refresh-tokens"_s, u"some"_s}, u"--refresh-tokens takes rotate, keep or none, not \"some\""},
        BadArguments{{u"--fault"_s, u"bad"_s}, u"--fault: there is no fault \"bad\""},
        BadArguments{{u"--fault"_s, u"close-at-step-1:1005"_s},
                     u"--fault: 1005 is no code that a close frame may carry"},
        BadArguments{{u"--fault"_s, u"close-at-step-"_s}, u"--fault: there is no fault \"close-at-step-\""},
        BadArguments{{u"--proxy"_s, u"bend"_s}, u"--proxy: there is no proxy mode \"bend\""},
        BadArguments{{u"--proxy"_s, u"coach:delay:-1"_s}, u"--proxy: \"-1\" is no number for delay"},
        BadArguments{{u"--transcriber"_s, u"whisper"_s},
                     u"--transcriber: the command needs {wav} where the file's name goes"},
        BadArguments{{u"--transcriber"_s, u"cat {wav}"_s, u"--script"_s, u"discovery-call"_s},
                     u"Texts come from --script or from --transcriber, not from both"},
        BadArguments{{u"--lengths"_s, u"x.json"_s}, u"--lengths goes with --script"},
        BadArguments{{u"--script"_s, u"nothing"_s}, u"nothing: cannot read nothing: No such file or directory"},
        BadArguments{{u"--customers"_s, u"/nowhere"_s},
                     u"--customers /nowhere: cannot read it: No such file or directory"},
        BadArguments{{u"--buyers"_s, u"/nowhere"_s}, u"--buyers /nowhere: cannot read it: No such file or directory"},
        BadArguments{{u"--buyer-seed"_s, u"luck"_s}, u"--buyer-seed takes a number from 0 to 4294967295, not \"luck\""},
        BadArguments{{u"--state"_s, QString{}}, u"--state takes the name of a folder"},
        BadArguments{{u"extension"_s},
                     u"Usage: corvellan-sandbox extension call-start | call-end | context | disconnect [options]"},
        BadArguments{{u"extension"_s, u"dance"_s},
                     u"The extension reports call-start, call-end, context or disconnect, not \"dance\""},
        BadArguments{{u"extension"_s, u"context"_s},
                     u"extension context needs --company, --contact or another of its options"},
        BadArguments{{u"extension"_s, u"call-end"_s, u"--company"_s, u"A"_s},
                     u"extension call-end takes no other option than --coach-port"},
        BadArguments{{u"extension"_s, u"call-start"_s, u"--company"_s, u" "_s},
                     u"--company takes a text of 1 to 500 characters"},
        BadArguments{{u"extension"_s, u"call-start"_s, u"--coach-port"_s, u"0"_s},
                     u"--coach-port takes a number from 1 to 65535, not \"0\""},
        BadArguments{{u"extension"_s, u"call-start"_s, u"--loud"_s}, u"Unknown option 'loud'."},
        BadArguments{{u"script"_s}, u"Usage: corvellan-sandbox script FILE [--lengths FILE] [--list | --json]"},
        BadArguments{{u"script"_s, u"a"_s, u"--list"_s, u"--json"_s},
                     u"Usage: corvellan-sandbox script FILE [--lengths FILE] [--list | --json]"},
        BadArguments{{u"measure"_s}, u"Usage: corvellan-sandbox measure FILE.wav..."}));

TEST(CommandLineTest, aFileOfBuyersWithAMistakeIsNamedWithItsPlace) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"buyers.json"_s);
    QFile file{path};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"personalities": [{"type": "shy"}], "scenarios": [{}]})");
    file.close();
    const auto command = sandbox::parseCommandLine({u"--buyers"_s, path});
    ASSERT_FALSE(command);
    EXPECT_EQ(command.error(),
              u"--buyers %1: personalities[0]: type: expected dominant, influential, steady or "
              "conscientious"_s.arg(path));
}

TEST(CommandLineTest, takesASeedForTheBuyers) {
    const auto command = sandbox::parseCommandLine({u"--buyer-seed"_s, u"4294967295"_s});
    ASSERT_TRUE(command) << qPrintable(command.error());
    EXPECT_EQ(std::get<sandbox::ServeCommand>(*command).options.buyerSeed, 4'294'967'295U);
    const auto without = sandbox::parseCommandLine({});
    ASSERT_TRUE(without);
    EXPECT_FALSE(std::get<sandbox::ServeCommand>(*without).options.buyerSeed);
}

TEST(CommandLineTest, measuresFilesAsTheProviderHearsThem) {
    QTemporaryDir folder;
    const auto write = [&](const QString& name, const GeneratedAudio& audio) {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(sandbox::WavWriter::create(path, 24'000)->append(audio.pcm()));
        return path;
    };
    const QString first = write(u"1.wav"_s, GeneratedAudio{}.silence(0.3).tone(1.25).silence(0.4));
    const QString second = write(u"2.wav"_s, GeneratedAudio{}.tone(0.5).silence(0.5).tone(0.5));
    EXPECT_EQ(run(sandbox::MeasureCommand{{first, second}}), u"[1.25, 1.50]\n"_s);
    const QString silent = write(u"3.wav"_s, GeneratedAudio{}.silence(1));
    EXPECT_EQ(run(sandbox::MeasureCommand{{silent}}).error(), silent + u" holds 0 utterances, not one"_s);
    EXPECT_FALSE(run(sandbox::MeasureCommand{{folder.filePath(u"4.wav"_s)}}));
}

TEST(CommandLineTest, printsAScriptWithMeasuredLengths) {
    QTemporaryDir folder;
    QFile file{folder.filePath(u"lengths.json"_s)};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[9.5" + QByteArray{",null"}.repeated(21) + "]");
    file.close();
    const auto list = run(sandbox::ScriptCommand{.file = u"discovery-call"_s, .lengthsFile = file.fileName()});
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->contains(u"mic     0:02.0   9.5 s  Hi Tom"_s)) << list->toStdString();
}

TEST(CommandLineTest, quotesAPathForTheShell) {
    EXPECT_EQ(sandbox::shellQuoted(u"/tmp/it's $(here)"_s), u"'/tmp/it'\\''s $(here)'"_s);
}

}  // namespace corvellan::test

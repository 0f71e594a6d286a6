#include "CommandLine.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <QCommandLineParser>
#include <QFile>
#include <QHash>

#include "Base/Text.h"
#include "CallScript.h"
#include "ExtensionClient.h"
#include "Recogniser.h"
#include "UtteranceFinder.h"
#include "WavFile.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Bad = std::unexpected<QString>;

QString helpText() {
    return u"corvellan-sandbox: stands in for the coaching server, the chat back-end and the transcription\n"
           u"provider on 127.0.0.1 and 127.0.0.2. Ends with Ctrl+C.\n\n"
           u"  corvellan-sandbox [options]\n"
           u"  corvellan-sandbox script FILE [--lengths FILE] [--list | --json]   print a script\n"
           u"  corvellan-sandbox measure FILE.wav...                              seconds of speech, as --lengths "
           u"reads\n"
           u"  corvellan-sandbox extension EVENT [options]                        play the browser extension\n\n"
           u"Where the texts of utterances come from (with neither, each becomes a line with its length):\n"
           u"  --script FILE              a call script, or the name of one that comes along: discovery-call\n"
           u"  --lengths FILE             the measured lengths of its lines, a JSON array of seconds\n"
           u"  --transcriber 'CMD {wav}'  a command that prints what was said in a WAV file\n"
           u"  --transcriber-limit S      its longest time for one utterance, in seconds (30)\n\n"
           u"  --coach-port N             the coach's port, 0 for a free one (3001)\n"
           u"  --chat-port N              the chat back-end's port, 0 for a free one (3002)\n"
           u"  --stt-port N               the provider's port, 0 for a free one (3003)\n"
           u"  --keep-audio DIR           keep what was received: DIR/<session>/mic.wav and system.wav\n"
           u"  --state DIR                keep sign-ins, calls and the extension's context there over restarts\n"
           u"  --close-after MS           from the summary to the close (500)\n"
           u"  --update VERSION           the version that the update feed announces (the sandbox's own)\n"
           u"  --customers FILE           customers and meetings in place of those that come along\n"
           u"  --buyers FILE              whom training is held with, in place of those that come along\n"
           u"  --buyer-seed N             the same answers each time for the same words; by chance without\n\n"
           u"Signing in, on the chat back-end (no password is asked for):\n"
           u"  --user EMAIL               who can sign in, repeatable (anna@fernhill.example, ben@fernhill.example)\n"
           u"  --token-lifetime S         how long access tokens hold, in seconds, or never to end: \"forever\" "
           u"(3600)\n"
           u"  --code-lifetime S          how long codes hold, in seconds (60)\n"
           u"  --refresh-tokens HOW       rotate: each use brings a new one; keep: one for all; none (rotate)\n\n"
           u"The browser extension, against the sandbox that runs on this machine:\n"
           u"  extension call-start       a call begins: the program counts down and starts coaching\n"
           u"  extension call-end         it is over\n"
           u"  extension context          the page of this company or contact is open\n"
           u"  extension disconnect       the extension goes\n"
           u"  with call-start and context:\n"
           u"  --company NAME             whom the call is with; known ones bring their numbers along\n"
           u"  --contact NAME             the person\n"
           u"  --title TEXT               what the call is called, in place of the contact's name\n"
           u"  --type TYPE, --id ID       what kind of entry the page shows (company, contact), and its number\n"
           u"  --hubspot-id ID            the company's number in HubSpot\n"
           u"  --coach-port N             the running sandbox's (3001)\n\n"
           u"Misbehaviour, each repeatable:\n"
           u"  --fault NAME\n      "_s +
           Faults::help().join(u"\n      "_s) +
           u"\n  --proxy [coach:|chat:|stt:]MODE[:N]   in front of one server, or of all\n      "_s +
           WireFault::help().join(u"\n      "_s) + u'\n';
}

std::expected<QByteArray, QString> contents(const QString& path) {
    QFile file{path};
    if (!file.open(QIODevice::ReadOnly))
        return Bad{u"Cannot read %1: %2"_s.arg(path, file.errorString())};
    return file.readAll();
}

std::expected<CallScript, QString> loadScript(const QString& name, const QString& lengthsFile) {
    auto script = CallScript::load(name);
    if (!script)
        return Bad{name + u": "_s + script.error().errorDescription()};
    if (lengthsFile.isEmpty())
        return *script;
    const auto lengths = contents(lengthsFile);
    if (!lengths)
        return Bad{lengths.error()};
    if (const auto used = script->useLengths(*lengths); !used)
        return Bad{lengthsFile + u": "_s + used.error().errorDescription()};
    return *script;
}

std::expected<qint64, QString> number(const QCommandLineParser& parser, const QString& option, qint64 lowest,
                                      qint64 highest) {
    bool isNumber = false;
    const QString text = parser.value(option);
    const qint64 value = text.toLongLong(&isNumber);
    if (!isNumber || value < lowest || value > highest)
        return Bad{u"--%1 takes a number from %2 to %3, not \"%4\""_s.arg(option).arg(lowest).arg(highest).arg(text)};
    return value;
}

std::expected<void, QString> addProxy(SandboxOptions& options, const QString& text) {
    const QString where = text.section(u':', 0, 0);
    const bool isNamed = where == u"coach"_s || where == u"chat"_s || where == u"stt"_s;
    const auto fault = WireFault::parse(isNamed ? text.section(u':', 1) : text);
    if (!fault)
        return Bad{u"--proxy: "_s + fault.error()};
    if (!isNamed || where == u"coach"_s)
        options.coachWire = *fault;
    if (!isNamed || where == u"chat"_s)
        options.chatWire = *fault;
    if (!isNamed || where == u"stt"_s)
        options.providerWire = *fault;
    return {};
}

std::expected<void, QString> chooseAccounts(const QCommandLineParser& parser, AccountSettings& accounts) {
    constexpr qint64 longest = qint64{100} * 365 * 24 * 3600;
    if (parser.isSet(u"user"_s))
        accounts.users = parser.values(u"user"_s);
    for (const auto& user : accounts.users)
        if (user.trimmed().isEmpty() || user != user.simplified())
            return Bad{u"--user: \"%1\" is no address"_s.arg(user)};
    accounts.users.removeDuplicates();

    if (parser.value(u"token-lifetime"_s) == u"forever") {
        accounts.tokenLifetime.reset();
    } else {
        const auto seconds = number(parser, u"token-lifetime"_s, 0, longest);
        if (!seconds)
            return Bad{seconds.error()};
        accounts.tokenLifetime = std::chrono::seconds{*seconds};
    }
    const auto codeLifetime = number(parser, u"code-lifetime"_s, 0, longest);
    if (!codeLifetime)
        return Bad{codeLifetime.error()};
    accounts.codeLifetime = std::chrono::seconds{*codeLifetime};

    const QString how = parser.value(u"refresh-tokens"_s);
    if (how == u"rotate")
        accounts.refreshTokens = RefreshTokens::rotate;
    else if (how == u"keep")
        accounts.refreshTokens = RefreshTokens::keep;
    else if (how == u"none")
        accounts.refreshTokens = RefreshTokens::none;
    else
        return Bad{u"--refresh-tokens takes rotate, keep or none, not \"%1\""_s.arg(how)};
    return {};
}

std::expected<void, QString> chooseBuyers(const QCommandLineParser& parser, SandboxOptions& options) {
    if (parser.isSet(u"buyers"_s)) {
        const QString path = parser.value(u"buyers"_s);
        auto buyers = BuyerBook::load(path);
        if (!buyers)
            return Bad{u"--buyers %1: %2"_s.arg(path, buyers.error())};
        options.buyers = std::move(*buyers);
    }
    if (parser.isSet(u"buyer-seed"_s)) {
        const auto seed = number(parser, u"buyer-seed"_s, 0, std::numeric_limits<std::uint32_t>::max());
        if (!seed)
            return Bad{seed.error()};
        options.buyerSeed = static_cast<std::uint32_t>(*seed);
    }
    return {};
}

std::expected<void, QString> chooseTexts(const QCommandLineParser& parser, ServeCommand& serve) {
    const QString script = parser.value(u"script"_s);
    const QString command = parser.value(u"transcriber"_s);
    if (!script.isEmpty() && !command.isEmpty())
        return Bad{u"Texts come from --script or from --transcriber, not from both"_s};
    if (script.isEmpty() && parser.isSet(u"lengths"_s))
        return Bad{u"--lengths goes with --script"_s};
    if (!script.isEmpty()) {
        auto loaded = loadScript(script, parser.value(u"lengths"_s));
        if (!loaded)
            return Bad{loaded.error()};
        serve.texts = u"texts from the script %1, %2 lines, %3 s"_s.arg(script)
                          .arg(loaded->lines.size())
                          .arg(text::fixed(loaded->durationSeconds(), 0));
        serve.options.texts = scriptTexts(std::move(*loaded));
        return {};
    }
    if (!command.isEmpty()) {
        if (!command.contains(u"{wav}"_s))
            return Bad{u"--transcriber: the command needs {wav} where the file's name goes"_s};
        const auto limit = number(parser, u"transcriber-limit"_s, 1, 3600);
        if (!limit)
            return Bad{limit.error()};
        serve.options.texts = commandTexts({.command = command, .limit = std::chrono::seconds{*limit}});
        serve.texts = u"texts from the recogniser: %1"_s.arg(command);
        return {};
    }
    serve.texts =
        u"no recogniser: each utterance becomes a line with its length. Name one with "
        u"--transcriber 'CMD {wav}' (a command that prints what was said in a WAV file), or a script "
        u"with --script FILE"_s;
    return {};
}

std::expected<Command, QString> parseServe(const QStringList& arguments) {
    QCommandLineParser parser;
    const QCommandLineOption help{{u"help"_s, u"h"_s}};
    parser.addOptions({
        help,
        {u"script"_s, {}, u"file"_s},
        {u"lengths"_s, {}, u"file"_s},
        {u"transcriber"_s, {}, u"command"_s},
        {u"transcriber-limit"_s, {}, u"seconds"_s, u"30"_s},
        {u"coach-port"_s, {}, u"port"_s, u"3001"_s},
        {u"chat-port"_s, {}, u"port"_s, u"3002"_s},
        {u"stt-port"_s, {}, u"port"_s, u"3003"_s},
        {u"user"_s, {}, u"email"_s},
        {u"token-lifetime"_s, {}, u"seconds"_s, u"3600"_s},
        {u"code-lifetime"_s, {}, u"seconds"_s, u"60"_s},
        {u"refresh-tokens"_s, {}, u"how"_s, u"rotate"_s},
        {u"keep-audio"_s, {}, u"folder"_s},
        {u"state"_s, {}, u"folder"_s},
        {u"close-after"_s, {}, u"ms"_s, u"500"_s},
        {u"update"_s, {}, u"version"_s},
        {u"customers"_s, {}, u"file"_s},
        {u"buyers"_s, {}, u"file"_s},
        {u"buyer-seed"_s, {}, u"number"_s},
        {u"fault"_s, {}, u"name"_s},
        {u"proxy"_s, {}, u"mode"_s},
    });
    if (!parser.parse(QStringList{u"corvellan-sandbox"_s} + arguments))
        return Bad{parser.errorText()};
    if (parser.isSet(help))
        return HelpCommand{helpText()};
    if (!parser.positionalArguments().isEmpty())
        return Bad{u"There is no command \"%1\""_s.arg(parser.positionalArguments().first())};

    ServeCommand serve;
    constexpr qint64 highestPort = 65'535;
    const auto coachPort = number(parser, u"coach-port"_s, 0, highestPort);
    const auto chatPort = number(parser, u"chat-port"_s, 0, highestPort);
    const auto providerPort = number(parser, u"stt-port"_s, 0, highestPort);
    const auto closeAfter = number(parser, u"close-after"_s, 0, 3'600'000);
    for (const auto* value : {&coachPort, &chatPort, &providerPort, &closeAfter})
        if (!*value)
            return Bad{value->error()};
    serve.options.coachPort = static_cast<quint16>(*coachPort);
    serve.options.chatPort = static_cast<quint16>(*chatPort);
    serve.options.providerPort = static_cast<quint16>(*providerPort);
    serve.options.closeAfter = std::chrono::milliseconds{*closeAfter};
    serve.options.keepAudioFolder = parser.value(u"keep-audio"_s);
    if (parser.isSet(u"state"_s)) {
        serve.options.stateFolder = parser.value(u"state"_s);
        if (serve.options.stateFolder.isEmpty())
            return Bad{u"--state takes the name of a folder"_s};
    }
    if (parser.isSet(u"update"_s))
        serve.options.feedVersion = parser.value(u"update"_s);
    if (parser.isSet(u"customers"_s)) {
        const QString path = parser.value(u"customers"_s);
        auto customers = CustomerBook::load(path);
        if (!customers)
            return Bad{u"--customers %1: %2"_s.arg(path, customers.error())};
        serve.options.customers = std::move(*customers);
    }
    if (const auto chosen = chooseBuyers(parser, serve.options); !chosen)
        return Bad{chosen.error()};
    for (const auto& name : parser.values(u"fault"_s))
        if (const auto added = serve.options.faults.add(name); !added)
            return Bad{u"--fault: "_s + added.error()};
    for (const auto& mode : parser.values(u"proxy"_s))
        if (const auto added = addProxy(serve.options, mode); !added)
            return Bad{added.error()};
    if (const auto chosen = chooseAccounts(parser, serve.options.accounts); !chosen)
        return Bad{chosen.error()};
    if (const auto chosen = chooseTexts(parser, serve); !chosen)
        return Bad{chosen.error()};
    return serve;
}

std::expected<Command, QString> parseScript(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions({{u"lengths"_s, {}, u"file"_s}, {u"list"_s, {}}, {u"json"_s, {}}});
    if (!parser.parse(QStringList{u"corvellan-sandbox script"_s} + arguments))
        return Bad{parser.errorText()};
    if (parser.positionalArguments().size() != 1 || (parser.isSet(u"list"_s) && parser.isSet(u"json"_s)))
        return Bad{u"Usage: corvellan-sandbox script FILE [--lengths FILE] [--list | --json]"_s};
    return ScriptCommand{.file = parser.positionalArguments().first(),
                         .lengthsFile = parser.value(u"lengths"_s),
                         .form = parser.isSet(u"json"_s) ? ScriptCommand::Form::json : ScriptCommand::Form::list};
}

/// The text of an option, where it is given and is one that a report may carry.
std::expected<std::optional<QString>, QString> reportText(const QCommandLineParser& parser, const QString& option) {
    if (!parser.isSet(option))
        return std::nullopt;
    QString text = parser.value(option);
    if (text.trimmed().isEmpty() || text.size() > SensorReport::longestText)
        return Bad{u"--%1 takes a text of 1 to %2 characters"_s.arg(option).arg(SensorReport::longestText)};
    return text;
}

std::expected<Command, QString> parseExtension(const QStringList& arguments) {
    QCommandLineParser parser;
    const QStringList texts{u"company"_s, u"contact"_s, u"title"_s, u"type"_s, u"id"_s, u"hubspot-id"_s};
    for (const auto& name : texts)
        parser.addOption({name, {}, u"text"_s});
    parser.addOption({u"coach-port"_s, {}, u"port"_s, u"3001"_s});
    if (!parser.parse(QStringList{u"corvellan-sandbox extension"_s} + arguments))
        return Bad{parser.errorText()};
    const QString event = parser.positionalArguments().value(0);
    if (parser.positionalArguments().size() != 1)
        return Bad{u"Usage: corvellan-sandbox extension call-start | call-end | context | disconnect [options]"_s};
    constexpr qint64 highestPort = 65'535;
    const auto port = number(parser, u"coach-port"_s, 1, highestPort);
    if (!port)
        return Bad{port.error()};
    QHash<QString, std::optional<QString>> given;
    bool isAnyGiven = false;
    for (const auto& name : texts) {
        const auto text = reportText(parser, name);
        if (!text)
            return Bad{text.error()};
        isAnyGiven = isAnyGiven || text->has_value();
        given.insert(name, *text);
    }
    const auto contact = given[u"contact"_s];
    const auto either = [](const std::optional<QString>& one, const std::optional<QString>& other) {
        return one ? one : other;
    };
    SensorReport report{
        .entityType = either(given[u"type"_s], contact ? std::optional{u"contact"_s} : std::nullopt),
        .entityId = either(given[u"id"_s], contact),
        .displayName = either(given[u"title"_s], contact),
        .companyName = given[u"company"_s],
        .hubspotCompanyId = given[u"hubspot-id"_s],
    };
    if (event == u"call-start" || event == u"context") {
        report.event = event == u"context" ? SensorReport::Event::context : SensorReport::Event::callStart;
        if (event == u"context" && !isAnyGiven)
            return Bad{u"extension context needs --company, --contact or another of its options"_s};
    } else if (event == u"call-end" || event == u"disconnect") {
        report.event = event == u"call-end" ? SensorReport::Event::callEnd : SensorReport::Event::disconnect;
        if (isAnyGiven)
            return Bad{u"extension %1 takes no other option than --coach-port"_s.arg(event)};
    } else {
        return Bad{u"The extension reports call-start, call-end, context or disconnect, not \"%1\""_s.arg(event)};
    }
    return ExtensionCommand{.report = std::move(report), .coachPort = static_cast<quint16>(*port)};
}

}  // namespace

std::expected<Command, QString> parseCommandLine(const QStringList& arguments) {
    const QString first = arguments.value(0);
    if (first == u"script"_s)
        return parseScript(arguments.sliced(1));
    if (first == u"extension"_s)
        return parseExtension(arguments.sliced(1));
    if (first == u"measure"_s) {
        if (arguments.size() < 2)
            return Bad{u"Usage: corvellan-sandbox measure FILE.wav..."_s};
        return MeasureCommand{arguments.sliced(1)};
    }
    return parseServe(arguments);
}

std::expected<QString, QString> run(const ScriptCommand& command) {
    const auto script = loadScript(command.file, command.lengthsFile);
    if (!script)
        return Bad{script.error()};
    return command.form == ScriptCommand::Form::json ? QString::fromUtf8(script->json()) : script->list();
}

std::expected<QString, QString> run(const ExtensionCommand& command) {
    return sendReport(command.report, command.coachPort);
}

std::expected<QString, QString> run(const MeasureCommand& command) {
    // As the program's clients ask for it: from the first sound to the last, short rests included.
    constexpr TurnDetection detection{.threshold = 0.6, .silence = std::chrono::milliseconds{2000}};
    QStringList lengths;
    for (const auto& path : command.files) {
        const auto audio = readWav(path);
        if (!audio)
            return Bad{audio.error().errorDescription()};
        UtteranceFinder finder{detection, audio->sampleRateHertz};
        auto events = finder.feed(audio->samples);
        std::ranges::move(finder.finish(), std::back_inserter(events));
        double seconds = 0;
        int utterances = 0;
        for (const auto& event : events) {
            if (const auto* utterance = std::get_if<Utterance>(&event)) {
                seconds = utterance->seconds();
                ++utterances;
            }
        }
        if (utterances != 1)
            return Bad{u"%1 holds %2 utterances, not one"_s.arg(path).arg(utterances)};
        lengths.append(text::fixed(seconds, 2));
    }
    return u"["_s + lengths.join(u", "_s) + u"]\n"_s;
}

}  // namespace corvellan::sandbox

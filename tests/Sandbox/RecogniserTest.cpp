#include "Sandbox/Recogniser.h"

#include <QFile>
#include <QTemporaryDir>

#include "ProviderFixture.h"

namespace corvellan::test {

namespace {

class RecogniserTest : public ProviderFixture {};

}  // namespace

TEST_F(RecogniserTest, asksARecogniserForWhatWasSaid) {
    sandbox::SandboxOptions options;
    options.texts = sandbox::commandTexts(
        {.command = u"test -s {wav} && head -c 4 {wav} && echo ' of $((40 + 2))' \"$((40 + 2))\""_s});
    start(std::move(options));
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1).silence(2.1));
    EXPECT_EQ(client->next(completed)[u"transcript"_s], u"RIFF of $((40 + 2)) 42"_s);
}

TEST_F(RecogniserTest, reportsARecogniserThatFails) {
    sandbox::SandboxOptions options;
    options.texts = sandbox::commandTexts({.command = u"echo no model in {wav} | cut -c 1-8 >&2; exit 3"_s});
    start(std::move(options));
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1).silence(2.1));
    const auto error = client->next(u"error"_s)[u"error"_s].toObject();
    EXPECT_EQ(error[u"message"_s], u"Recogniser: status 3: no model"_s);
}

TEST_F(RecogniserTest, endsARecogniserThatTakesTooLongAndAsksItAgainForTheNextUtterance) {
    QTemporaryDir folder;
    const QString marker = folder.filePath(u"second"_s);
    sandbox::SandboxOptions options;
    options.texts = sandbox::commandTexts(
        {.command = u"test -e %1 && echo {wav} | grep -c wav || { touch %1; sleep 1000; }"_s.arg(marker),
         .limit = std::chrono::milliseconds{300}});
    start(std::move(options));
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1).silence(2.1).tone(1).silence(2.1));
    EXPECT_EQ(client->next(u"error"_s)[u"error"_s].toObject()[u"message"_s], u"Recogniser: took longer than 0.3 s"_s);
    const auto done = client->next(completed);
    EXPECT_EQ(done[u"transcript"_s], u"1"_s);
    EXPECT_EQ(done[u"item_id"_s], u"item_0002"_s);
}

TEST_F(RecogniserTest, toleratesAConnectionThatGoesWhileItWorks) {
    QTemporaryDir folder;
    const QString marker = folder.filePath(u"started"_s);
    sandbox::SandboxOptions options;
    options.texts = sandbox::commandTexts({.command = u"touch %1; sleep 1000 # {wav}"_s.arg(marker)});
    start(std::move(options));
    auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1).silence(2.1));
    ASSERT_TRUE(spinUntil([&] { return QFile::exists(marker); }));
    client.reset();
    ASSERT_TRUE(spinUntil([&] { return logs(u"mic: closed"_s); }));
    EXPECT_EQ(get(u"/health"_s).object()[u"status"_s], u"ok"_s);
}

}  // namespace corvellan::test

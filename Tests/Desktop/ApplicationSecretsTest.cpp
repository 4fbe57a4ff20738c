// Dictation into password fields: it is heard here, typed as heard, and nothing of the field or of the words
// is kept or sent.

#include "Desktop/ApplicationFixture.h"
#include "Desktop/FieldPrograms.h"
#include "Dictation/HistoryStore.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

const QString Canary = u"Kanarienvogel-7391"_s;

} // namespace

TEST_F(ApplicationTest, whatIsSaidIntoAPasswordFieldStaysHere)
{
    Config config;
    config.speech = u"cloud"_s;
    configure(config, true);
    const qsizetype remembered = HistoryStore().entries().size();
    qsizetype spoken = ShippedApplication::log().count("dictation how=secure");
    for (const auto &[kind, start] : passwordFields()) {
        SCOPED_TRACE(kind);
        const auto window = start(screen, Canary);
        ASSERT_TRUE(eventually([&] { return reader.focusedField(window->process().id()).has_value(); }));
        speak();
        EXPECT_TRUE(ShippedApplication::waitForLog("dictation how=secure", ++spoken))
            << ShippedApplication::log().right(300).constData();
        speak(CommandKey);
        EXPECT_EQ(server.requests("dictation").size() + server.requests("command").size(), 0);
        EXPECT_EQ(placesOf(Canary), QStringList());
        EXPECT_EQ(HistoryStore().entries().size(), remembered);
    }
}

} // namespace vesk::test

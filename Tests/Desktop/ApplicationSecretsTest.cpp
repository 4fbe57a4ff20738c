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
    const struct {
        const char *what;
        std::function<std::unique_ptr<Peer>(Screen &)> start;
    } rows[] = {
        {"GTK 3", [](Screen &on) { return startGtk(on, 3, u"hidden"_s, Canary, {0, 5}); }},
        {"GTK 4", [](Screen &on) { return startGtk(on, 4, u"hidden"_s, Canary, {0, 5}); }},
        {"GTK 4 password entry", [](Screen &on) { return startGtk(on, 4, u"password"_s, Canary, {0, 5}); }},
        {"Qt", [](Screen &on) { return startQt(on, u"password"_s, Canary, {0, 5}); }},
        {"Chromium", [](Screen &on) { return startChromium(on, u"password"_s, Canary, {0, 5}); }},
    };
    Config config;
    config.speech = u"cloud"_s;
    configure(config, true);
    const qsizetype remembered = HistoryStore().entries().size();
    qsizetype spoken = ShippedApplication::log().count("dictation how=secure");
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const auto window = row.start(screen);
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

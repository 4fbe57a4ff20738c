#include "Desktop/AccessibilityFixture.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Accessibility/FieldFacts.h"

#include <QDirIterator>

namespace vesk::test {

namespace {

using namespace Qt::StringLiterals;

const QString Canary = u"Kanarienvogel-7391"_s;

/// The files of the home folder that hold the secret, in either of the encodings that a program of ours
/// writes.
QStringList filesWithTheSecret()
{
    Log::flush();
    QStringList found;
    QDirIterator files(QDir::homePath(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    int count = 0;
    while (files.hasNext()) {
        QFile file(files.next());
        ++count;
        const bool isOpen = file.open(QIODevice::ReadOnly);
        const QByteArray bytes = file.readAll();
        const auto *const units = reinterpret_cast<const char *>(Canary.utf16());
        if (!isOpen || bytes.contains(Canary.toUtf8())
            || bytes.contains(QByteArray(units, 2 * Canary.size()))) {
            found.append(file.fileName());
        }
    }
    EXPECT_GT(count, 0) << "the log at least";
    return found;
}

} // namespace

class PasswordFieldTest : public AccessibilityTest {
protected:
    PasswordFieldTest()
    {
        QDir().mkpath(QFileInfo(Log::file()).path());
        Log::write(u"A password field is read."_s);
    }

    void expectTheSecretIsKept()
    {
        const FocusContext context = contextWhen([](const FocusContext &seen) { return seen.isSecure; });
        FocusContext expected;
        expected.appName = context.appName;
        expected.bundleID = context.bundleID;
        expected.windowTitle = context.windowTitle;
        expected.role = u"AXTextField"_s;
        expected.isSecure = true;
        EXPECT_EQ(context, expected) << describe(context);
        expectNoAnswer();
        EXPECT_EQ(filesWithTheSecret(), QStringList());
    }

    /// Nor does the element answer to anyone who forgets to look whether it is secure.
    void expectNoAnswer()
    {
        const auto front = awaited(accessibility.frontmostApplication());
        ASSERT_TRUE(front);
        const auto field = awaited(accessibility
                                       .applicationElement(front->processIdentifier,
                                                           {std::chrono::seconds(5), std::chrono::minutes(1)})
                                       ->element(u"AXFocusedUIElement"_s));
        ASSERT_TRUE(field);
        EXPECT_FALSE(awaited(field->text({0, 100})));
        EXPECT_FALSE(awaited(field->range(u"AXSelectedTextRange"_s)));
        EXPECT_FALSE(awaited(field->integer(u"AXNumberOfCharacters"_s)));
        for (const QString &attribute :
             {u"AXValue"_s, u"AXPlaceholderValue"_s, u"AXDescription"_s, u"AXTitle"_s}) {
            EXPECT_FALSE(awaited(field->string(attribute)));
        }
    }
};

TEST_F(PasswordFieldTest, everyKindOfFieldKeepsItsSecret)
{
    for (const auto &[kind, start] : passwordFields()) {
        SCOPED_TRACE(kind);
        const auto window = start(screen, Canary);
        expectTheSecretIsKept();
    }
}

TEST_F(PasswordFieldTest, aFieldThatOnceHidItsTextStaysSecretWhenItShowsIt)
{
    const auto window = startGtk(screen, 4, u"hidden"_s, Canary);
    expectTheSecretIsKept();
    window->process().write("show\n");
    ASSERT_EQ(window->process().readLine(), "done");
    expectTheSecretIsKept();
}

TEST_F(PasswordFieldTest, whatAFieldDisplaysTellsWhetherItHides)
{
    const std::tuple<QString, qint64, bool> rows[] = {
        {u"●●●●"_s, 4, true},   {u"●"_s, 1, true},  {u"●●●x"_s, 4, true},      {u"****"_s, 4, true},
        {u""_s, 4, true},       {u""_s, 0, false},  {u"Dear Sir"_s, 8, false}, {u"www"_s, 3, false},
        {u"●●x●●"_s, 5, false}, {u"x"_s, 1, false}, {u"  "_s, 2, false},
    };
    for (const auto &[displayed, count, isHidden] : rows) {
        EXPECT_EQ(looksHidden(displayed, count), isHidden) << displayed.toStdString();
    }
}

} // namespace vesk::test

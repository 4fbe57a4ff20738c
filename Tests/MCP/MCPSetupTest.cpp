#include "MCP/MCPSetup.h"

#include "Foundation/Files.h"
#include "Foundation/VeskError.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using Case = MCPSetup::State::Case;

class Places final : public OtherPrograms {
public:
    QStringList claudeDesktopFiles() const override
    {
        return {testHome() + u"/Library/Claude/config.json", testHome() + u"/.config/Claude/config.json"};
    }
};

class MCPSetupTest : public HomeTest {
protected:
    static MCPSetup setup() { return MCPSetup(Places(), u"/opt/vesk/bin/vesk"_s); }
    static QString file() { return Places().claudeDesktopFiles().front(); }

    static void put(const QByteArray &content)
    {
        Files::makeFolder(QFileInfo(file()).path());
        Files::replace(file(), content);
    }
};

const QString Sentence =
    u"Claude Desktop's claude_desktop_config.json is not valid JSON, so Vesk left it alone"_s;

} // namespace

TEST_F(MCPSetupTest, theFileSaysWhetherTheServerIsKnown)
{
    const std::pair<QByteArray, MCPSetup::State> rows[] = {
        {"{}", {Case::absent, {}}},
        {R"({"mcpServers": [1]})", {Case::absent, {}}},
        {R"({"mcpServers": {"vesk": "x"}})", {Case::absent, {}}},
        {R"({"mcpServers": {"vesk": {"command": "\/opt\/vesk/bin/vesk", "args": ["--mcp"], "env": {}}}})",
         {Case::added, {}}},
        {R"({"mcpServers": {"vesk": {"command": "/old/vesk", "args": ["--mcp"]}}})",
         {Case::otherCopy, u"/old/vesk"_s}},
        {R"({"mcpServers": {"vesk": {"command": "/opt/vesk/bin/vesk", "args": ["--mcp", "-v"]}}})",
         {Case::otherCopy, u"/opt/vesk/bin/vesk"_s}},
        {R"({"mcpServers": {"vesk": {"command": 5, "args": "--mcp"}}})", {Case::otherCopy, {}}},
        {R"([1])", {Case::unreadable, Sentence}},
        {R"({"a": 1)", {Case::unreadable, Sentence}},
        {"", {Case::unreadable, Sentence}},
    };
    EXPECT_EQ(setup().claudeDesktopState(), MCPSetup::State());
    for (const auto &[content, state] : rows) {
        put(content);
        EXPECT_EQ(setup().claudeDesktopState(), state) << content.constData();
        if (state.stateCase == Case::unreadable) {
            EXPECT_THROW(setup().addToClaudeDesktop(), VeskError);
            EXPECT_EQ(Files::read(file()), content);
        } else {
            setup().addToClaudeDesktop();
            EXPECT_EQ(setup().claudeDesktopState().stateCase, Case::added) << content.constData();
        }
    }
}

TEST_F(MCPSetupTest, everythingElseInTheFileComesBackAsItWasSpelled)
{
    put(R"({"z": 12345678901234567890, "mcpServers": {"other": {"command": "a\/b", "args": []}, "vesk": 1},
        "list": [1.10, 1e5, -0, true, null, {}, "\ud83d\ude00\\\/é"], "a": {"y": 9007199254740993, "x": ""}})");
    setup().addToClaudeDesktop();
    EXPECT_EQ(Files::read(file()).toStdString(), R"({
  "a": {
    "x": "",
    "y": 9007199254740993
  },
  "list": [
    1.10,
    1e5,
    -0,
    true,
    null,
    {},
    "\ud83d\ude00\\/é"
  ],
  "mcpServers": {
    "other": {
      "args": [],
      "command": "a/b"
    },
    "vesk": {
      "args": [
        "--mcp"
      ],
      "command": "/opt/vesk/bin/vesk"
    }
  },
  "z": 12345678901234567890
}
)");
}

TEST_F(MCPSetupTest, permissionsStayAndLinksAreWrittenThrough)
{
    const QString target = testHome() + u"/dotfiles/claude.json";
    Files::makeFolder(QFileInfo(target).path());
    Files::makeFolder(QFileInfo(file()).path());
    ASSERT_TRUE(QFile::link(target, file()));
    setup().addToClaudeDesktop(); // the link points nowhere yet
    ASSERT_EQ(::chmod(QFile::encodeName(target).constData(), 0644), 0);
    Files::read(target);
    setup().addToClaudeDesktop();
    EXPECT_TRUE(QFileInfo(file()).isSymLink());
    EXPECT_EQ(modeOf(target), 0644);
    EXPECT_EQ(setup().claudeDesktopState().stateCase, Case::added);
}

TEST_F(MCPSetupTest, whatCannotBeReadOrWrittenIsSaidAndLeftAlone)
{
    Files::makeFolder(QFileInfo(file()).path());
    ASSERT_TRUE(QFile::link(u"config.json"_s, file())); // a circle
    EXPECT_EQ(setup().claudeDesktopState().stateCase, Case::unreadable);
    EXPECT_THROW(setup().addToClaudeDesktop(), FileError);
    EXPECT_TRUE(QFileInfo(file()).isSymLink());
    emptyTestHome();
    Files::replace(testHome() + u"/Library", "a file in the folder's place");
    EXPECT_THROW(setup().addToClaudeDesktop(), FileError);
    EXPECT_EQ(Files::read(testHome() + u"/Library"), "a file in the folder's place");
}

TEST_F(MCPSetupTest, theBuildOfTheOtherProgramThatIsInstalledIsFound)
{
    EXPECT_EQ(setup().claudeDesktopFile(), file());
    Files::makeFolder(testHome() + u"/.config/Claude");
    EXPECT_EQ(setup().claudeDesktopFile(), Places().claudeDesktopFiles().back());
    put("{}");
    EXPECT_EQ(setup().claudeDesktopFile(), file());
}

TEST_F(MCPSetupTest, otherApplicationsGetWordsToCopy)
{
    EXPECT_EQ(setup().otherAppsJSON(),
              R"({"mcpServers":{"vesk":{"args":["--mcp"],"command":"/opt/vesk/bin/vesk"}}})");
    EXPECT_EQ(setup().claudeCommandLine(),
              u"claude mcp add --scope user vesk -- \"/opt/vesk/bin/vesk\" --mcp"_s);
}

} // namespace vesk

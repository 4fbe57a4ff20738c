#include "CommandLine/Arguments.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;
using Request = Arguments::Request;

TEST(Arguments, wordsAskForOneOfThreeThings)
{
    const std::pair<Request, QStringList> rows[] = {
        {Request::usage,
         {u""_s, u"talk.wav"_s, u"--file"_s, u"--raw"_s, u"--raw --cloud"_s, u"--app Mail"_s,
          u"--selected x"_s, u"--help"_s, u"--help me --file a.wav"_s, u"--file a.wav b.wav"_s,
          u"--file a.wav -x"_s}},
        {Request::work,
         {u"--file a.wav"_s, u"--raw --file a.wav"_s, u"--text "_s, u"--colour blue --text x"_s}},
        {Request::notesServer, {u"--mcp"_s, u"--raw --mcp"_s, u"--mcp --mcp"_s, u"--file --mcp"_s}}};
    for (const auto &[request, lines] : rows) {
        for (const QString &line : lines) {
            EXPECT_EQ(Arguments::parse(line.split(u' ')).request, request) << line.toStdString();
        }
    }
    EXPECT_EQ(Arguments::parse({}).request, Request::usage);
}

TEST(Arguments, aValueIsTheNextWordWhateverItLooksLikeAndTheLastOneCounts)
{
    const Arguments arguments = Arguments::parse({u"--file"_s, u"--raw"_s, u"--app"_s, u"Mail"_s,
                                                  u"--cloud"_s, u"--cloud"_s, u"--app"_s, u"--selected"_s});
    EXPECT_EQ(arguments.request, Request::work);
    EXPECT_EQ(arguments.option("--file"_L1), u"--raw"_s);
    EXPECT_EQ(arguments.option("--app"_L1), u"--selected"_s);
    EXPECT_EQ(arguments.option("--selected"_L1), std::nullopt);
    EXPECT_FALSE(arguments.has("--raw"_L1));
    EXPECT_EQ(arguments.flags, QSet<QString>{u"--cloud"_s});
}

} // namespace vesk

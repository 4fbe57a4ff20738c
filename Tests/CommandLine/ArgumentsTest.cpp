#include "CommandLine/Arguments.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;
using Request = Arguments::Request;

TEST(Arguments, wordsAskForOneOfThreeThings)
{
    const std::pair<QStringList, Request> rows[] = {
        {{}, Request::usage},
        {{u""_s}, Request::usage},
        {{u"talk.wav"_s}, Request::usage},
        {{u"--file"_s}, Request::usage},
        {{u"--raw"_s}, Request::usage},
        {{u"--raw"_s, u"--cloud"_s}, Request::usage},
        {{u"--app"_s, u"Mail"_s}, Request::usage},
        {{u"--selected"_s, u"x"_s}, Request::usage},
        {{u"--help"_s}, Request::usage},
        {{u"--help"_s, u"me"_s, u"--file"_s, u"a.wav"_s}, Request::usage},
        {{u"--file"_s, u"a.wav"_s, u"b.wav"_s}, Request::usage},
        {{u"--file"_s, u"a.wav"_s, u"-x"_s}, Request::usage},
        {{u"--file"_s, u"a.wav"_s}, Request::work},
        {{u"--raw"_s, u"--file"_s, u"a.wav"_s}, Request::work},
        {{u"--text"_s, u""_s}, Request::work},
        {{u"--colour"_s, u"blue"_s, u"--text"_s, u"x"_s}, Request::work},
        {{u"--mcp"_s}, Request::notesServer},
        {{u"--raw"_s, u"--mcp"_s}, Request::notesServer},
        {{u"--mcp"_s, u"--mcp"_s}, Request::notesServer},
        {{u"--file"_s, u"--mcp"_s}, Request::notesServer},
    };
    for (const auto &[words, request] : rows) {
        EXPECT_EQ(Arguments::parse(words).request, request) << words.join(u' ').toStdString();
    }
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

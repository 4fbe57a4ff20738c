#include "Platform/Linux/Speech/SentenceJoin.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

TEST(SentenceJoin, onlyWhatTheCutMadeIsTakenBack)
{
    const std::tuple<QString, QString, double, QString> rows[] = {
        // the sentence goes on
        {u"And so, ask not."_s, u"What your country can do for you."_s, 0.96,
         u"And so, ask not what your country can do for you."_s},
        {u"An all-eating shame."_s, u"And thriftless praise."_s, 0.3,
         u"An all-eating shame and thriftless praise."_s},
        {u"I bought the."_s, u"Yellow house."_s, 0.4, u"I bought the yellow house."_s},
        {u"It was late."_s, u"But we stayed."_s, 0.4, u"It was late, but we stayed."_s},
        {u"Yes."_s, u"it is."_s, 0.4, u"Yes it is."_s},
        {u"We walked along."_s, u"Very slowly."_s, 0.0, u"We walked along very slowly."_s},
        {u"They recognised each other."_s, u"As necessary."_s, 0.32,
         u"They recognised each other as necessary."_s},
        {u"Count, and make my excuse."_s, u"Proving his beauty."_s, 0.32,
         u"Count, and make my excuse proving his beauty."_s},
        {u"Ever tried"_s, u"Ever failed."_s, 0.4, u"Ever tried ever failed."_s},
        {u"First,"_s, u"More bread."_s, 0.4, u"First, more bread."_s},
        // another one begins
        {u"Won such recognition."_s, u"I hope we forget."_s, 0.26,
         u"Won such recognition. I hope we forget."_s},
        {u"It is over."_s, u"What did he say? Nothing."_s, 0.4, u"It is over. What did he say? Nothing."_s},
        {u"It is over."_s, u"Will he come? No."_s, 0.3, u"It is over. Will he come? No."_s},
        {u"It was late."_s, u"King George slept."_s, 0.3, u"It was late. King George slept."_s},
        {u"No matter"_s, u"Try again."_s, 0.61, u"No matter. Try again."_s},
        {u"90210"_s, u"Then more."_s, 0.61, u"90210 Then more."_s},
        {u"It is the."_s, u"House."_s, 1.21, u"It is the. House."_s},
        {u"It is over."_s, u"And then."_s, 0.71, u"It is over. And then."_s},
        {u"Is it the?"_s, u"And more."_s, 0.1, u"Is it the? And more."_s},
        {u"Stop!"_s, u"And listen."_s, 0.1, u"Stop! And listen."_s},
        // points that are part of a word
        {u"Here is Dr."_s, u"And Mrs. Smith."_s, 0.1, u"Here is Dr. And Mrs. Smith."_s},
        {u"Plan B."_s, u"And C."_s, 0.1, u"Plan B. And C."_s},
        {u"Well..."_s, u"And so on."_s, 0.1, u"Well... And so on."_s},
        // capitals that are not the cut's
        {u"He and."_s, u"I'm tired."_s, 0.3, u"He and I'm tired."_s},
        {u"I met the."_s, u"NASA people."_s, 0.3, u"I met the NASA people."_s},
        {u"With."_s, u"Margaret's car."_s, 0.3, u"With Margaret's car."_s},
        {u"Back from."_s, u"Reykjavik."_s, 0.3, u"Back from Reykjavik."_s},
        {u"On the."_s, u"McDonald farm."_s, 0.3, u"On the McDonald farm."_s},
        {u"We use the."_s, u"Rust compiler."_s, 0.3, u"We use the Rust compiler."_s},
        {u"We use the."_s, u"Wooden table."_s, 0.3, u"We use the wooden table."_s},
        {u"He and."_s, u"2 others."_s, 0.3, u"He and 2 others."_s},
        {u""_s, u"And so."_s, 0.1, u" And so."_s},
        {u"Over."_s, u""_s, 0.1, u"Over. "_s},
    };
    const SentenceJoin join({u"Rust"_s, u"tables"_s});
    for (auto [before, after, pause, joined] : rows) {
        join.repair(before, after, AudioDuration(pause));
        EXPECT_EQ(QString(before + u' ' + after), joined);
    }
}

} // namespace vesk

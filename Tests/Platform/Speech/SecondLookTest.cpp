#include "Platform/Linux/Speech/SecondLook.h"

#include "Platform/Linux/Speech/StretchCutter.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <vector>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

constexpr std::size_t Second = StretchCutter::SampleRate;

/// Seconds of it loud and quiet in turn: a voice with pauses.
std::vector<float> voice(std::size_t seconds, bool hasPauses = false)
{
    std::vector<float> samples(seconds * Second);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const bool isPause = hasPauses && i / Second % 2 == 1;
        samples[i] = (isPause ? 0.001F : 0.3F) * (i % 2 == 0 ? 1.0F : -1.0F);
    }
    return samples;
}

/// A model that writes "w" and the seconds where a piece begins and ends, five letters for each second, when
/// the piece suits it.
class Model {
public:
    explicit Model(std::function<bool(std::size_t length, float noise)> hears)
        : m_hears(std::move(hears))
    {
    }

    QString listen(const std::vector<float> &samples)
    {
        return hearAll(samples, [&](std::span<const float> piece, float noise) {
            ++decodes;
            if (!m_hears(piece.size(), noise)) {
                return QString();
            }
            const auto from = static_cast<std::size_t>(piece.data() - samples.data());
            const auto letters = static_cast<qsizetype>((piece.size() * 5 + Second - 1) / Second);
            return QString(QString::number(double(from) / Second, 'f', 0) + u'-' + QString(letters, u'w'));
        });
    }

    int decodes = 0;

private:
    std::function<bool(std::size_t, float)> m_hears;
};

} // namespace

TEST(SecondLook, whatTheModelLeavesOutIsLookedAtAgain)
{
    const struct {
        const char *what;
        std::size_t seconds;
        bool hasPauses;
        std::function<bool(std::size_t, float)> hears;
        int decodes;
        std::size_t parts;
    } rows[] = {
        {"heard at once", 20, false, [](std::size_t, float) { return true; }, 1, 1},
        {"heard behind more noise", 8, false, [](std::size_t, float noise) { return noise > 0.001F; }, 2, 1},
        {"heard in halves", 8, false, [](std::size_t length, float) { return length < 7 * Second; }, 4, 2},
        {"heard in quarters", 16, false, [](std::size_t length, float) { return length < 7 * Second; }, 8, 4},
        {"too short to say much", 1, false, [](std::size_t, float) { return false; }, 1, 0},
        {"never heard", 6, false, [](std::size_t, float) { return false; }, 4, 0},
    };
    for (const auto &row : rows) {
        Model model(row.hears);
        const QString text = model.listen(voice(row.seconds, row.hasPauses));
        EXPECT_EQ(model.decodes, row.decodes) << row.what << ": " << text.toStdString();
        const QStringList parts = text.split(u' ', Qt::SkipEmptyParts);
        EXPECT_EQ(static_cast<std::size_t>(parts.size()), row.parts)
            << row.what << ": " << text.toStdString();
        EXPECT_TRUE(std::ranges::is_sorted(
            parts, {}, [](const QString &part) { return part.section(u'-', 0, 0).toInt(); }))
            << row.what << ": " << text.toStdString();
    }
}

TEST(SecondLook, aFewWordsForALongSpeechAreTooFew)
{
    const auto decodesOf = [](const QString &text, const std::vector<float> &samples) {
        int decodes = 0;
        const QString heard = hearAll(
            samples, [&](std::span<const float>, float) { return ++decodes == 1 ? text : QString(); });
        EXPECT_EQ(heard, text) << "what was understood is never lost";
        return decodes;
    };
    EXPECT_EQ(decodesOf(u"Thirty-six letters in ten loud seconds are few."_s, voice(20)), 16)
        << "the whole twice, then ever smaller parts";
    EXPECT_EQ(decodesOf(u"And fifty letters in ten seconds of speech are enough."_s, voice(20, true)), 1)
        << "the other ten are pauses";
    EXPECT_EQ(decodesOf(u"10001 90210"_s, voice(9)), 1) << "digits are spoken as words";
}

} // namespace vesk

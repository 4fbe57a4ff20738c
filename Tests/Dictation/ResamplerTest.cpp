#include "Dictation/Resampler.h"

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Support/Tones.h"

#include <gtest/gtest.h>

namespace vesk {

namespace {

using namespace test;

constexpr AudioFormat Target = {16'000, 1};

TEST(ResamplerTest, aMinuteOfMicrophoneBlocksLosesNothingToTheCapacity)
{
    FfmpegAudioConverters converters;
    Resampler resampler(Target, converters);
    const AudioFormat microphone = {44'100, 2};
    const AudioBlock second = tone(microphone, 441, 44'100);
    AudioBlock out = {Target, {}};
    for (int i = 0; i < 60; ++i) {
        for (qsizetype first = 0; first < second.frames(); first += 1'024) {
            const auto converted = resampler.convert(part(second, first, 1'024));
            ASSERT_TRUE(converted);
            EXPECT_EQ(converted->format, Target);
            EXPECT_LE(converted->frames(), Resampler::capacity(1'024, 44'100, 16'000));
            append(out, *converted);
        }
    }
    EXPECT_NEAR(static_cast<double>(out.frames()), 60 * 16'000, 32) << "only the filter may still hold sound";
    EXPECT_NEAR(decibels(amplitudeAt(out, 441) / 0.5), 0, 0.5);
}

TEST(ResamplerTest, everyInputFormatIsConvertedAndWhatCannotBeGivesNothing)
{
    FfmpegAudioConverters converters;
    Resampler resampler(Target, converters);
    EXPECT_FALSE(resampler.convert({{0, 0}, {}}));
    EXPECT_FALSE(resampler.convert({{48'000, 0}, {}}));
    EXPECT_FALSE(resampler.convert({{1, 1}, std::vector<float>(4'800)}));
    EXPECT_FALSE(resampler.convert({{48'000, 1}, {}})) << "a block without frames";
    for (const AudioFormat &format :
         {AudioFormat{48'000, 1}, AudioFormat{48'000, 2}, AudioFormat{44'100, 2}}) {
        const auto converted = resampler.convert(tone(format, 440, 4'800));
        ASSERT_TRUE(converted);
        EXPECT_NEAR(amplitudeAt(*converted, 440), 0.5, 0.05);
    }
}

} // namespace

} // namespace vesk

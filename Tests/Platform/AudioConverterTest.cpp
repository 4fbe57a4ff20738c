#include "Platform/AudioConverter.h"

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Support/Tones.h"

#include <gtest/gtest.h>
#include <limits>

namespace vesk {

namespace {

using namespace test;

constexpr qsizetype NoLimit = std::numeric_limits<int>::max();

/// The whole sound, in blocks whose sizes differ and divide nothing.
AudioBlock convertInBlocks(AudioConverter &converter, const AudioBlock &sound, const AudioFormat &to,
                           qsizetype smallest)
{
    AudioBlock all = {to, {}};
    qsizetype size = smallest;
    for (qsizetype first = 0; first < sound.frames(); first += size) {
        size = smallest + (size * 7 + 13) % 500;
        append(all, converter.convert(part(sound, first, size), NoLimit));
    }
    append(all, converter.flush());
    return all;
}

class AudioConverterTest : public testing::Test {
protected:
    FfmpegAudioConverters converters;
};

TEST_F(AudioConverterTest, lengthAndLevelSurviveEveryRate)
{
    for (const auto &[from, to] : {std::pair<int, int>{48'000, 16'000},
                                   {44'100, 16'000},
                                   {8'000, 16'000},
                                   {16'000, 16'000},
                                   {192'000, 16'000},
                                   {16'000, 48'000}}) {
        SCOPED_TRACE(testing::Message() << from << " to " << to);
        const auto converter = converters.make({from, 2}, {to, 1});
        ASSERT_TRUE(converter);
        EXPECT_EQ(converter->inputFormat(), (AudioFormat{from, 2}));
        const AudioBlock out = convertInBlocks(*converter, tone({from, 2}, 440, from), {to, 1}, 101);
        EXPECT_NEAR(static_cast<double>(out.frames()), to, 2);
        EXPECT_NEAR(decibels(amplitudeAt(out, 440) / 0.5), 0, 0.5);
    }
}

TEST_F(AudioConverterTest, noMoreThanTheCapacityComesOutAndTheRestComesLater)
{
    for (const int rate : {48'000, 16'000}) { // with and without a change of rate
        const auto converter = converters.make({rate, 1}, {16'000, 1});
        const AudioBlock sound = tone({rate, 1}, 440, rate / 10);
        const AudioBlock first = converter->convert(sound, 700);
        EXPECT_EQ(first.frames(), 700);
        const AudioBlock second = converter->convert(sound, 0);
        EXPECT_EQ(second.frames(), 0);
        EXPECT_NEAR(static_cast<double>(converter->flush().frames()), 3'200 - 700, 2);
        EXPECT_EQ(converter->flush().frames(), 0);
    }
}

TEST_F(AudioConverterTest, blocksOfAnotherFormatOrWithoutFramesGiveNothing)
{
    const auto converter = converters.make({48'000, 1}, {16'000, 1});
    EXPECT_EQ(converter->convert(tone({44'100, 1}, 440, 4'410), NoLimit).frames(), 0);
    EXPECT_EQ(converter->convert(tone({48'000, 2}, 440, 4'800), NoLimit).frames(), 0);
    EXPECT_EQ(converter->convert({{48'000, 1}, {}}, NoLimit).frames(), 0);
    EXPECT_EQ(converter->flush().frames(), 0) << "none of them may have reached the filter";
}

TEST_F(AudioConverterTest, channelsBecomeTheirAverageAndEqualCountsStayAsTheyAre)
{
    const std::pair<std::vector<float>, std::vector<float>> rows[] = {
        {{1, 1}, {1}},                       // a full-scale voice on both channels does not clip
        {{1, 0}, {0.5F}},                    // on one it keeps its share
        {{0, 0, 0, 0.6F, 0, 0}, {0.1F}},     // also where others keep bass only
        {{.8F, 0, 0, 0, 0, 0, 0, 0}, {.1F}}, // eight inputs of a recorder
        {std::vector<float>(9, 1), {1}},     // a count without loudspeaker positions
        {{0.3F}, {0.3F, 0.3F}},              // one channel fills both
        {{0.3F, -0.7F, 0.1F}, {0.3F, -0.7F, 0.1F}},
    };
    for (const auto &[frame, expected] : rows) {
        SCOPED_TRACE(testing::PrintToString(frame));
        const AudioFormat from = {16'000, static_cast<int>(frame.size())};
        const AudioFormat to = {16'000, static_cast<int>(expected.size())};
        AudioBlock steady = {from, {}};
        for (int i = 0; i < 1'000; ++i) {
            append(steady, {from, frame});
        }
        const auto converter = converters.make(from, to);
        ASSERT_TRUE(converter);
        const AudioBlock out = convertInBlocks(*converter, steady, to, 101);
        ASSERT_EQ(out.frames(), 1'000);
        for (std::size_t i = 0; i < out.samples.size(); ++i) {
            ASSERT_NEAR(out.samples[i], expected[i % expected.size()], 1e-6) << "sample " << i;
        }
    }
}

TEST_F(AudioConverterTest, formatsThatNoDeviceHasHaveNoConverter)
{
    const AudioFormat good = {16'000, 1};
    for (const AudioFormat &bad :
         {AudioFormat{0, 1}, AudioFormat{16'000, 0}, AudioFormat{-48'000, 1}, AudioFormat{16'000, -2},
          AudioFormat{}, AudioFormat{1, 1}, AudioFormat{std::numeric_limits<int>::max(), 1},
          AudioFormat{48'000, 65}, AudioFormat{48'000, 1'000'000}}) {
        EXPECT_FALSE(converters.make(bad, good));
        EXPECT_FALSE(converters.make(good, bad));
    }
}

} // namespace

} // namespace vesk

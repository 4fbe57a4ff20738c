// The recogniser, the models and the detector for real, for files and while a person speaks: the voices are a
// person's recording that comes with the model and sentences drawn at run time, so that nothing here can have
// been written down beforehand.

#include "Dictation/Transcriber.h"
#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"
#include "Support/Tones.h"

#include <QDir>
#include <QRegularExpression>

#include <gmock/gmock.h>
#include <random>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace test;

namespace {

const QString InstalledSpeech = QStringLiteral(VESK_TEST_SPEECH_FOLDER);

/// What can be compared of two texts.
QStringList words(const QString &text)
{
    static const QRegularExpression notLetters(u"[^a-z']+"_s);
    return text.toLower().split(notLetters, Qt::SkipEmptyParts);
}

/// Six short sentences in ten seconds.
const QString Sample = InstalledSpeech + u"/sample.wav";
const QStringList SampleWords =
    words(u"Ever tried. Ever failed. No matter. Try again. Fail again. Fail better."_s);

AudioBlock sample()
{
    FfmpegAudioFiles files;
    const auto reader = files.openForReading(Sample);
    AudioBlock sound = {reader->format(), {}};
    while (const auto block = reader->read()) {
        append(sound, *block);
    }
    return sound;
}

AudioBlock silence(double seconds)
{
    return {{16000, 1}, std::vector<float>(static_cast<std::size_t>(seconds * 16000))};
}

/// In pieces as they come from a sound server.
void feed(SpeechAnalyzer &analyzer, const AudioBlock &sound)
{
    constexpr qsizetype BlockFrames = 683; // 2048 at 48 kHz
    for (qsizetype at = 0; at < sound.frames(); at += BlockFrames) {
        analyzer.feed(part(sound, at, BlockFrames));
    }
}

/// A number of the last line about a live recognition in the log; a negative one when there is none.
double logged(const QString &name)
{
    const QRegularExpression pattern(u" live .*\\b"_s + name + u"=([0-9.]+)"_s);
    double number = -1;
    for (const QByteArray &line : logText().split('\n')) {
        const auto match = pattern.match(QString::fromUtf8(line));
        number = match.hasMatch() ? match.captured(1).toDouble() : number;
    }
    return number;
}

class RecognitionTest : public HomeTest {
protected:
    RecognitionTest() { QDir().mkpath(QFileInfo(Log::file()).path()); }

    Transcriber::Transcript transcribe(const QString &file, const QString &locale = u"en-US"_s,
                                       SherpaSpeechModels &from = models())
    {
        return awaited(Transcriber::transcribe(from, files, file, locale, {}));
    }

    /// Loaded once for the whole program: it takes seconds under a sanitizer.
    static SherpaSpeechModels &models()
    {
        static FfmpegAudioConverters converters;
        static SherpaSpeechModels shared({InstalledSpeech + u"/models", testHome() + u"/Models"}, converters);
        return shared;
    }

    static std::unique_ptr<SpeechAnalyzer> started(SherpaSpeechModels &from = models())
    {
        auto analyzer = from.makeAnalyzer(u"en-US"_s);
        analyzer->start();
        return analyzer;
    }

    /// A folder of the person's own with this description.
    static void describe(const QString &folder, const QByteArray &description)
    {
        QDir().mkpath(at(u"Models/") + folder);
        Files::replace(at(u"Models/") + folder + u"/model.json", description);
    }

    FfmpegAudioFiles files;
};

using LiveRecognition = RecognitionTest;

} // namespace

TEST_F(RecognitionTest, aPersonsVoiceIsWrittenDownFromAnyRate)
{
    // Bare, the model has no word for what was resampled on its way.
    for (const QString &rate : {u"16000"_s, u"44100"_s, u"96000"_s}) {
        runTool(u"sox"_s, {Sample, u"-r"_s, rate, u"-c"_s, u"2"_s, at(u"resampled.wav")});
        EXPECT_EQ(words(transcribe(at(u"resampled.wav")).text), SampleWords) << rate.toStdString();
    }
}

TEST_F(RecognitionTest, sentencesDrawnAtRunTimeAreHeard)
{
    std::random_device seed;
    std::mt19937 random(seed());
    const QStringList parts[] = {
        {u"The teacher"_s, u"My brother"_s, u"The doctor"_s},
        {u" bought"_s, u" painted"_s, u" wanted"_s, u" remembered"_s},
        {u" a yellow house"_s, u" seven green bottles"_s, u" the wooden table"_s, u" a large garden"_s},
        {u" on Monday morning. "_s, u" after the summer. "_s, u" twenty years ago. "_s}};
    // Several, because a synthetic voice may swallow half of any one; over all of them nine words in ten are
    // understood.
    QString sentences;
    for (int i = 0; i < 4; ++i) {
        for (const QStringList &part : parts) {
            sentences += part[static_cast<qsizetype>(random() % part.size())];
        }
    }

    runTool(u"espeak-ng"_s, {u"-s"_s, u"140"_s, u"-w"_s, at(u"said.wav"), sentences});
    const QStringList heard = words(transcribe(at(u"said.wav")).text);
    const QStringList said = words(sentences);
    const auto understood =
        std::ranges::count_if(said, [&heard](const QString &word) { return heard.contains(word); });
    EXPECT_GE(static_cast<double>(understood), 0.6 * static_cast<double>(said.size()))
        << "said: " << sentences.toStdString() << "\nheard: " << heard.join(u' ').toStdString();
}

TEST_F(RecognitionTest, nothingIsHeardWhereNothingIsSaid)
{
    const std::pair<const char *, QStringList> rows[] = {
        {"silence", {u"trim"_s, u"0"_s, u"4"_s}},
        {"noise", {u"synth"_s, u"4"_s, u"whitenoise"_s, u"vol"_s, u"-30dB"_s}},
        {"a tone", {u"synth"_s, u"4"_s, u"sine"_s, u"440"_s, u"vol"_s, u"-20dB"_s}},
        {"a click", {u"synth"_s, u"0.01"_s, u"square"_s, u"100"_s, u"pad"_s, u"1"_s, u"2"_s}},
        {"a tenth of a second", {u"synth"_s, u"0.1"_s, u"sine"_s, u"200"_s}},
    };
    for (const auto &[what, effects] : rows) {
        SCOPED_TRACE(what);
        const QStringList format = {u"-n"_s, u"-r"_s, u"16000"_s, u"-c"_s, u"1"_s, u"-b"_s, u"16"_s};
        runTool(u"sox"_s, QStringList(format) << at(u"quiet.wav") << effects);
        EXPECT_EQ(transcribe(at(u"quiet.wav")).text, QString());
    }
}

TEST_F(RecognitionTest, resultsComeInOrderWithTheirPlaceInTheSound)
{
    // The sample three times, five seconds apart: at least three stretches.
    runTool(u"sox"_s, {Sample, Sample, Sample, at(u"long.wav"), u"pad"_s, u"0"_s, u"5"_s});
    std::optional<AudioDuration> length;
    AudioDuration end(0);
    awaited(Transcriber::transcribe(
        models(), files, at(u"long.wav"), u"en"_s, {},
        [&](std::optional<AudioDuration> known) { length = known; },
        [&](const SpeechResult &result) {
            EXPECT_TRUE(result.start >= end && result.end > result.start);
            end = result.end;
        }));
    EXPECT_GT(end.count(), 24);
    EXPECT_LE(end, length.value_or(AudioDuration(0)));
}

TEST_F(RecognitionTest, localesAreUnderstoodInEverySpellingAndOtherLanguagesAreRefused)
{
    const std::pair<QString, std::optional<QString>> rows[] = {
        {u"en-US"_s, u"en-US"_s},   {u"en_gb"_s, u"en-GB"_s},
        {u"EN"_s, u"en"_s},         {u"en-Latn-US"_s, u"en-Latn-US"_s},
        {u"bg-BG"_s, std::nullopt}, {u"english"_s, std::nullopt},
        {u""_s, std::nullopt},      {u"e"_s, std::nullopt},
        {u"en US"_s, std::nullopt},
    };
    for (const auto &[identifier, locale] : rows) {
        EXPECT_EQ(models().supportedLocale(identifier), locale) << identifier.toStdString();
    }
}

TEST_F(RecognitionTest, aMissingModelIsToldFromAnUnknownLanguage)
{
    FfmpegAudioConverters converters;
    SherpaSpeechModels none({at(u"nothing/models"), at(u"Models")}, converters);
    EXPECT_EQ(none.supportedLocale(u"en-US"_s), u"en-US"_s);
    EXPECT_EQ(none.bestAudioFormat(u"en-US"_s), std::nullopt);
    const auto isMissing = testing::Throws<VeskError>(VeskError::noSpeechModel());
    EXPECT_THAT([&] { awaited(none.prepare(u"en-US"_s)); }, isMissing);
    EXPECT_THAT([&] { transcribe(Sample, u"en-US"_s, none); }, isMissing);
}

TEST_F(RecognitionTest, aFolderThatThePersonAddsBringsItsLanguages)
{
    const QByteArray members = R"(, "files": {"encoder": "encoder.onnx", "decoder": "decoder.onnx",
        "tokens": "tokens.txt"}})";
    // The installed model under another language's name: what is tested is that the choice is data.
    describe(u"mine"_s, R"({"family": "moonshine", "languages": ["eo", "BG"])" + members);
    const QString installed = InstalledSpeech + u"/models/moonshine-base-en/";
    for (const QString &file : {u"encoder.onnx"_s, u"decoder.onnx"_s, u"tokens.txt"_s}) {
        const QString place = at(u"Models/mine/") + file;
        ASSERT_TRUE(QFile::link(QFileInfo(installed + file).absoluteFilePath(), place));
    }
    describe(u"broken"_s, R"({"family": "unheard of", "languages": ["tlh"]})");
    // It knows English as well, but lacks its files.
    describe(u"half"_s, R"({"family": "moonshine", "languages": ["en"])" + members);

    FfmpegAudioConverters converters;
    SherpaSpeechModels extended({InstalledSpeech + u"/models", at(u"Models")}, converters);
    EXPECT_EQ(extended.supportedLocale(u"bg_BG"_s), u"bg-BG"_s);
    EXPECT_EQ(extended.supportedLocale(u"tlh"_s), std::nullopt);
    EXPECT_TRUE(extended.bestAudioFormat(u"en"_s));
    EXPECT_EQ(logText().count("speech model ignored folder=\"broken\""), 1);
    EXPECT_FALSE(transcribe(Sample, u"eo"_s, extended).text.isEmpty());
}

TEST_F(RecognitionTest, aDamagedModelIsASentenceAndNotTheEndOfTheProgram)
{
    const QString installed = InstalledSpeech + u"/models/moonshine-base-en/";
    const QByteArray cutOff = Files::read(installed + u"encoder.onnx").first(1'000'000);
    const QByteArray tokens = Files::read(installed + u"tokens.txt");
    const QByteArray page = "<html>Not found</html>"; // instead of a download
    for (const QByteArray family : {"whisper", "parakeet", "moonshine"}) {
        describe(u"damaged"_s,
                 R"({"languages": ["xx"], "files": {"encoder": "encoder.onnx", "decoder": "decoder.onnx",
                     "joiner": "joiner.onnx", "tokens": "tokens.txt"}, "family": ")"
                     + family + "\"}");
        for (const auto &[model, table] : {std::pair(page, tokens), {cutOff, tokens}, {cutOff, page}}) {
            SCOPED_TRACE(family.toStdString() + ": " + model.left(10).toStdString());
            for (const QString &file : {u"encoder.onnx"_s, u"decoder.onnx"_s, u"joiner.onnx"_s}) {
                Files::replace(at(u"Models/damaged/") + file, model);
            }
            Files::replace(at(u"Models/damaged/tokens.txt"), table);
            FfmpegAudioConverters converters;
            SherpaSpeechModels damaged({InstalledSpeech + u"/models", at(u"Models")}, converters);
            EXPECT_THROW(awaited(damaged.prepare(u"xx"_s)), RecognizerError);
        }
    }
}

TEST_F(LiveRecognition, whatWasSaidIsRecognisedInOrderBeforeThePersonStops)
{
    const auto analyzer = started();
    AudioBlock sound = sample();
    append(sound, silence(2.5)); // the key is still held
    feed(*analyzer, sound);
    QString text;
    AudioDuration end(0);
    while (words(text).size() < SampleWords.size()) {
        const auto piece = awaited(analyzer->nextResult());
        ASSERT_TRUE(piece);
        EXPECT_TRUE(piece->start >= end && piece->end > piece->start);
        end = piece->end;
        text += piece->text + u' ';
    }
    EXPECT_EQ(words(text), SampleWords);
    analyzer->finish();
    feed(*analyzer, sample()); // is too late
    EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt);
    EXPECT_GE(logged(u"stretches"_s), 2);
    EXPECT_EQ(logged(u"speculative"_s), logged(u"stretches"_s));
    EXPECT_GT(logged(u"first"_s), 0);
    EXPECT_LT(logged(u"first"_s), logged(u"released"_s));
    EXPECT_NEAR(logged(u"speech"_s), 12.5, 0.1);
}

TEST_F(LiveRecognition, whatIsSaidBeforeTheModelIsThereIsKept)
{
    FfmpegAudioConverters converters;
    SherpaSpeechModels cold({InstalledSpeech + u"/models", testHome() + u"/Models"}, converters);
    const auto analyzer = cold.makeAnalyzer(u"en-US"_s);
    const Task<> loading = cold.prepare(u"en-US"_s);
    analyzer->setContextualStrings({u"EverTried"_s});
    analyzer->start();
    feed(*analyzer, sample());
    analyzer->finish();
    ASSERT_FALSE(loading.isReady());
    const QString text = awaited(Transcriber::collect(*analyzer));
    EXPECT_TRUE(text.contains(u"EverTried"_s)) << "the person's spelling";
    EXPECT_EQ(words(text).mid(1), SampleWords.mid(2));
    EXPECT_TRUE(eventually([&] { return loading.isReady(); }));
}

TEST_F(LiveRecognition, silenceAndNothingGiveNoResult)
{
    for (const double seconds : {0.0, 0.01, 3.0}) {
        const auto analyzer = started();
        feed(*analyzer, silence(seconds));
        analyzer->finish();
        EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt) << seconds;
    }
}

TEST_F(LiveRecognition, cancelledOrDroppedInMidSpeechItLeavesNothingBehind)
{
    const auto analyzer = started();
    const Task<std::optional<SpeechResult>> waiting = analyzer->nextResult();
    feed(*analyzer, sample());
    analyzer->cancelAndFinishNow();
    analyzer->finish();
    EXPECT_TRUE(eventually([&] { return waiting.isReady(); }));
    EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt);

    feed(*started(), sample());
}

TEST_F(LiveRecognition, aMissingModelEndsTheResults)
{
    FfmpegAudioConverters converters;
    SherpaSpeechModels none({at(u"no/models"), at(u"no")}, converters);
    const auto analyzer = started(none);
    feed(*analyzer, sample());
    analyzer->finish();
    EXPECT_THROW(awaited(analyzer->nextResult()), VeskError);
}

} // namespace vesk

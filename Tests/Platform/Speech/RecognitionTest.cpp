// The recogniser, the models and the detector for real: the voices are a person's recording that comes with
// the model and sentences drawn at run time, so that nothing here can have been written down beforehand.

#include "Dictation/Transcriber.h"
#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Foundation/VeskError.h"
#include "Platform/Speech/InstalledModels.h"
#include "Support/Await.h"

#include <QDir>

#include <random>

namespace vesk {

using namespace Qt::StringLiterals;
using test::InstalledSpeech;
using test::words;

namespace {

class RecognitionTest : public HomeTest {
protected:
    Transcriber::Transcript transcribe(const QString &file, const QString &locale = u"en-US"_s,
                                       const QStringList &vocabulary = {})
    {
        return awaited(Transcriber::transcribe(models(), files, file, locale, vocabulary));
    }

    static SherpaSpeechModels &models() { return test::installedModels(); }

    FfmpegAudioFiles files;
};

} // namespace

TEST_F(RecognitionTest, aPersonsVoiceIsWrittenDown)
{
    EXPECT_EQ(words(transcribe(InstalledSpeech + u"/sample.wav").text),
              words(u"Ever tried. Ever failed. No matter. Try again. Fail again. Fail better."_s));
}

TEST_F(RecognitionTest, soundFromAnyRateIsWrittenDownAsWell)
{
    // Bare, the model has no word for what was resampled on its way.
    for (const QString &rate : {u"44100"_s, u"48000"_s, u"96000"_s}) {
        runTool(u"sox"_s,
                {InstalledSpeech + u"/sample.wav", u"-r"_s, rate, u"-c"_s, u"2"_s, at(u"resampled.wav")});
        EXPECT_EQ(words(transcribe(at(u"resampled.wav")).text),
                  words(u"Ever tried. Ever failed. No matter. Try again. Fail again. Fail better."_s))
            << rate.toStdString();
    }
}

TEST_F(RecognitionTest, sentencesDrawnAtRunTimeAreHeard)
{
    std::random_device seed;
    std::mt19937 random(seed());
    const QStringList subjects = {u"The teacher"_s, u"My brother"_s, u"The doctor"_s};
    const QStringList verbs = {u"bought"_s, u"painted"_s, u"wanted"_s, u"remembered"_s};
    const QStringList objects = {u"a yellow house"_s, u"seven green bottles"_s, u"the wooden table"_s,
                                 u"a very large garden"_s};
    const QStringList times = {u"on Monday morning"_s, u"after the summer"_s, u"twenty years ago"_s};
    const auto draw = [&](const QStringList &from) {
        return from[static_cast<qsizetype>(random() % from.size())];
    };
    // Several, because a synthetic voice may swallow half of any one; over all of them nine words in ten are
    // understood.
    QString sentences;
    for (int i = 0; i < 4; ++i) {
        sentences +=
            QStringList{draw(subjects), draw(verbs), draw(objects), draw(times)}.join(u' ') + u". "_s;
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
    const QString sample = InstalledSpeech + u"/sample.wav";
    runTool(u"sox"_s, {sample, sample, sample, at(u"long.wav"), u"pad"_s, u"0"_s, u"5"_s});
    std::optional<AudioDuration> length;
    std::vector<SpeechResult> results;
    awaited(Transcriber::transcribe(
        models(), files, at(u"long.wav"), u"en"_s, {},
        [&](std::optional<AudioDuration> known) { length = known; },
        [&](const SpeechResult &result) { results.push_back(result); }));
    ASSERT_GE(results.size(), 2U);
    ASSERT_TRUE(length);
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_LT(results[i].start, results[i].end);
        EXPECT_LE(results[i].end, *length);
        if (i > 0) {
            EXPECT_GE(results[i].start, results[i - 1].end);
        }
    }
    EXPECT_GT(results.back().end.count(), 24);
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
    const auto isMissingModel = [](const std::function<void()> &action) {
        try {
            action();
        } catch (const VeskError &error) {
            return error == VeskError::noSpeechModel();
        }
        return false;
    };
    EXPECT_TRUE(isMissingModel([&] { awaited(none.prepare(u"en-US"_s)); }));
    EXPECT_TRUE(isMissingModel([&] {
        awaited(Transcriber::transcribe(none, files, InstalledSpeech + u"/sample.wav", u"en-US"_s, {}));
    }));
}

TEST_F(RecognitionTest, aFolderThatThePersonAddsBringsItsLanguages)
{
    // The installed model under another language's name: what is tested is that the choice is data.
    const QString folder = at(u"Models/mine");
    QDir().mkpath(folder);
    const QString installed = InstalledSpeech + u"/models/moonshine-base-en/";
    for (const QString &file : {u"encoder.onnx"_s, u"decoder.onnx"_s, u"tokens.txt"_s}) {
        ASSERT_TRUE(QFile::link(QFileInfo(installed + file).absoluteFilePath(), folder + u'/' + file));
    }
    Files::replace(folder + u"/model.json", R"({"family": "moonshine", "languages": ["eo", "BG"],
        "files": {"encoder": "encoder.onnx", "decoder": "decoder.onnx", "tokens": "tokens.txt"}})");
    QDir().mkpath(QFileInfo(Log::file()).path());
    QDir().mkpath(at(u"Models/broken"));
    Files::replace(at(u"Models/broken/model.json"), R"({"family": "unheard of", "languages": ["tlh"]})");

    // It knows English as well, but lacks a file.
    QDir().mkpath(at(u"Models/half"));
    Files::replace(at(u"Models/half/model.json"), R"({"family": "moonshine", "languages": ["en"],
        "files": {"encoder": "encoder.onnx", "decoder": "decoder.onnx", "tokens": "tokens.txt"}})");

    FfmpegAudioConverters converters;
    SherpaSpeechModels extended({InstalledSpeech + u"/models", at(u"Models")}, converters);
    EXPECT_EQ(extended.supportedLocale(u"bg_BG"_s), u"bg-BG"_s);
    EXPECT_EQ(extended.supportedLocale(u"tlh"_s), std::nullopt);
    EXPECT_TRUE(extended.bestAudioFormat(u"en"_s));
    EXPECT_EQ(logText().count("speech model ignored folder=\"broken\""), 1);
    const auto transcript =
        awaited(Transcriber::transcribe(extended, files, InstalledSpeech + u"/sample.wav", u"eo"_s, {}));
    EXPECT_FALSE(transcript.text.isEmpty());
}

TEST_F(RecognitionTest, aDamagedModelIsASentenceAndNotTheEndOfTheProgram)
{
    const QString installed = InstalledSpeech + u"/models/moonshine-base-en/";
    const QByteArray cutOff = Files::read(installed + u"encoder.onnx").first(1'000'000);
    const QByteArray tokens = Files::read(installed + u"tokens.txt");
    const std::tuple<const char *, QByteArray, QByteArray> rows[] = {
        {"a page instead of a model", "<html>Not found</html>", tokens},
        {"a download that was cut off", cutOff, tokens},
        {"a page instead of the tokens", cutOff, "<html>Not found</html>"},
        {"nothing", "", ""},
    };
    const QString folder = at(u"Models/damaged");
    QDir().mkpath(folder);
    for (const QString &family : {u"whisper"_s, u"parakeet"_s, u"moonshine"_s}) {
        for (const auto &[what, model, table] : rows) {
            SCOPED_TRACE(family.toStdString() + ", " + what);
            for (const char *file : {"encoder.onnx", "decoder.onnx", "joiner.onnx"}) {
                Files::replace(folder + u'/' + QLatin1StringView(file), model);
            }
            Files::replace(folder + u"/tokens.txt", table);
            const QString description =
                uR"({"family": "%1", "languages": ["xx"], "files": {"encoder": "encoder.onnx",
                      "decoder": "decoder.onnx", "joiner": "joiner.onnx", "tokens": "tokens.txt"}})"_s;
            Files::replace(folder + u"/model.json", description.arg(family).toUtf8());
            FfmpegAudioConverters converters;
            SherpaSpeechModels damaged({InstalledSpeech + u"/models", at(u"Models")}, converters);
            EXPECT_THROW(awaited(damaged.prepare(u"xx"_s)), RecognizerError);
        }
    }
}

} // namespace vesk

#include "Platform/Linux/Speech/VocabularyCorrection.h"

#include "Platform/Linux/Speech/Vocabulary/WordLists.h"

#include <gtest/gtest.h>
#include <random>

using namespace Qt::StringLiterals;

namespace vesk {

namespace {

/// What a person who works with computers and people may have written down.
const QStringList Vocabulary =
    QStringLiteral(
        "Zürich, QCoro, Nadezhda, PostgreSQL, Kubernetes, PulseAudio, Vesk, Thera, Kroner, Siobhan, Łukasz, "
        "O'Shaughnessy, H264, Qt, kubectl, Will, May, Rust, go, Redis, Светлана, Вера, Мир, Ljubljana, "
        "Node.js, Müller, Marc, Olga Petrova, macOS, Visual Studio Code, Bank of Cyprus, YouTube, NoSQL, "
        "OnePlus, HTTPS, McDonald's, C++, Wireshark, Keycloak, FFmpeg, CMake, GStreamer, SQLite, RabbitMQ, "
        "GraphQL, PyTorch, KeePassXC, Tchaikovsky, Atorvastatin, Omeprazole, Reykjavík, Gdańsk, Dvořák, "
        "McAllister, Mario, Oleksandr, Wayland, Schwarzenegger, systemd, Ewan, zsh, GTK, Ayşe, Grafana, "
        "Jira, Wi-Fi, Catherine, Anneliese, TypeScript, Marianne, Matthias")
        .split(QStringLiteral(", "));

class VocabularyCorrectionTest : public testing::Test {
protected:
    void expectAll(const std::vector<std::pair<QString, QString>> &rows) const
    {
        for (const auto &[heard, wanted] : rows) {
            EXPECT_EQ(correction.corrected(heard).toStdString(), wanted.toStdString());
        }
    }

    VocabularyCorrection correction{Vocabulary};
};

} // namespace

/// Most rows are what the recogniser wrote when such words were read to it.
TEST_F(VocabularyCorrectionTest, whatSoundsLikeAnEntryBecomesIt)
{
    expectAll({
        {u"we flew to zurich yesterday"_s, u"we flew to Zürich yesterday"_s},
        {u"We talked about QQoro yesterday."_s, u"We talked about QCoro yesterday."_s},
        {u"the queue coro library"_s, u"the QCoro library"_s},
        {u"Please ask Q Koro about the plan"_s, u"Please ask QCoro about the plan"_s},
        {u"ask nadeshda about it"_s, u"ask Nadezhda about it"_s},
        {u"ask Nadejda about it"_s, u"ask Nadezhda about it"_s},
        {u"post gress queue ell is running"_s, u"PostgreSQL is running"_s},
        {u"we use postgres ql here"_s, u"we use PostgreSQL here"_s},
        {u"our kuber netties cluster"_s, u"our Kubernetes cluster"_s},
        {u"Please ask Cubanates about the plan."_s, u"Please ask Kubernetes about the plan."_s},
        {u"vesc and vesque"_s, u"Vesk and Vesk"_s},
        {u"Wukash wrote this"_s, u"Łukasz wrote this"_s},
        {u"ask mr oh shaughnessy"_s, u"ask mr O'Shaughnessy"_s},
        {u"open wire shark and Key Cloak"_s, u"open Wireshark and Keycloak"_s},
        {u"ffm peg can do it"_s, u"FFmpeg can do it"_s},
        {u"Please ask seamake about the plan"_s, u"Please ask CMake about the plan"_s},
        {u"G-Streamer or G Streamer"_s, u"GStreamer or GStreamer"_s},
        {u"We talked about sq light yesterday"_s, u"We talked about SQLite yesterday"_s},
        {u"rabbit mq and Graf QL and Grafql"_s, u"RabbitMQ and GraphQL and GraphQL"_s},
        {u"train it with pie torch"_s, u"train it with PyTorch"_s},
        {u"Keypass XC has it"_s, u"KeePassXC has it"_s},
        {u"Chekovsky and chikovsky"_s, u"Tchaikovsky and Tchaikovsky"_s},
        {u"adorvastatin with ompresol"_s, u"Atorvastatin with Omeprazole"_s},
        {u"from Liblana to Liu Blyana"_s, u"from Ljubljana to Ljubljana"_s},
        {u"from Gudansk to Reiki Avik"_s, u"from Gdańsk to Reykjavík"_s},
        {u"MC Alistair agreed"_s, u"McAllister agreed"_s},
        {u"schwartzenegger said so"_s, u"Schwarzenegger said so"_s},
        {u"We talked about system D yesterday"_s, u"We talked about systemd yesterday"_s},
        {u"Muller and Mueller"_s, u"Müller and Müller"_s},
        {u"Katherine and Annaliese"_s, u"Catherine and Anneliese"_s},
        {u"svetlana wrote this"_s, u"Светлана wrote this"_s},
        {u"ask Olga Petrowa"_s, u"ask Olga Petrova"_s},
        {u"the node js server"_s, u"the Node.js server"_s},
        {u"on you tube"_s, u"on YouTube"_s},
        {u"over h t t p s"_s, u"over HTTPS"_s},
        {u"encoded as h 264 or H.264"_s, u"encoded as H264 or H264"_s},
        {u"written in type script"_s, u"written in TypeScript"_s},
        {u"We met Mark yesterday"_s, u"We met Marc yesterday"_s},
    });
}

TEST_F(VocabularyCorrectionTest, spellingOfAnEntryWinsWhenOnlyCaseAndAccentsDiffer)
{
    expectAll({
        {u"qt and QT"_s, u"Qt and Qt"_s},
        {u"mac OS and Macos"_s, u"macOS and macOS"_s},
        {u"visual studio code"_s, u"Visual Studio Code"_s},
        {u"the bank of cyprus"_s, u"the Bank of Cyprus"_s},
        {u"mcdonald's and McDonalds"_s, u"McDonald's and McDonald's"_s},
        {u"вера и СВЕТЛАНА"_s, u"Вера и Светлана"_s},
        {u"ZU\u0308RICH"_s, u"Zürich"_s},
        {u"the wifi and a WiFi"_s, u"the Wi-Fi and a Wi-Fi"_s},
    });
}

TEST_F(VocabularyCorrectionTest, whatStandsAroundTheWordStays)
{
    expectAll({
        {u"  zurich,  \"nadeshda\" (pulse  audio)…"_s, u"  Zürich,  \"Nadezhda\" (PulseAudio)…"_s},
        {u"zurich's lake and nadeshda’s house"_s, u"Zürich's lake and Nadezhda’s house"_s},
        {u"two zurichs"_s, u"two Zürichs"_s},
        {u"pulse\naudio"_s, u"pulse\naudio"_s},
        {u"pulse, audio"_s, u"pulse, audio"_s},
        {u"Kubectle is here. Kubectle too, kubectle"_s, u"Kubectl is here. Kubectl too, kubectl"_s},
        {u"We use Kubectle. \"Kubectle\" is good"_s, u"We use kubectl. \"Kubectl\" is good"_s},
        {u"zurich-based"_s, u"Zürich-based"_s},
        {u""_s, u""_s},
    });
}

TEST_F(VocabularyCorrectionTest, whatIsSomethingElseStays)
{
    const QString untouched = QStringLiteral(
        // ordinary words near an entry
        "the corner of the desk there | these corners and their desks | a queue alone | "
        "a vast mask and a vest | the theory of theatre | the crown and the crooner | a cute cut | "
        "jerk and jury | graphing a graph | we marched and marked | "
        "please mark it. Mark left early | a miller's millet | deviant and divorce | "
        "the whale and the wayward | the typescript of a novel | read this and radish | "
        // entries that are ordinary words
        "will you go in may | Will May go? The rust will go | It may rust | "
        // ordinary words that would spell an entry
        "the sky was red is what she said | one plus one is two | there is no SQL in it | "
        "he said no. SQL is next | the bank of the river | system wide and systemwide | "
        // other names, other abbreviations
        "Maria called Marion and Marlon | Ask Evan and Ivan and Erwin | Aleksandr and Alexandre | "
        "Olga Petrov and Olga Ivanova | csh and bash and ksh | GDK and AES and GTX | "
        "a VESC motor controller | Grafano and Grafani | Vesko and Veska and Vasek | "
        "Theora and Thora | Jora and Gyro | Grafton and Griffin | h 265 and H two six four | "
        "Christoph and Kristof | Vera and vera | the mir station | "
        // not prose
        "write to zurich@example.org | see zurich.example.org | in /srv/zurich/redis | "
        "C plus plus and C | the file system.d there | call Matthieu S at noon | "
        "visual studio codes | $zurich and #zurich");
    for (const QString &text : untouched.split(QStringLiteral(" | "))) {
        EXPECT_EQ(correction.corrected(text).toStdString(), text.toStdString());
    }
}

TEST(VocabularyCorrectionOf, nothingChangesWithoutAnEntryThatCouldChangeAnything)
{
    const QString heard = u"we will go to Zurich, zurich"_s;
    for (const QStringList &vocabulary :
         {QStringList{}, QStringList{u""_s, u"  "_s, u"!"_s}, QStringList{u"will"_s, u"Go"_s, u"to"_s}}) {
        const VocabularyCorrection correction(vocabulary);
        EXPECT_TRUE(correction.isEmpty());
        EXPECT_EQ(correction.corrected(heard), heard);
    }
}

TEST(VocabularyCorrectionOf, aNameThatIsWrittenDownIsNotTakenForItsNeighbour)
{
    const QString heard = u"We met Mark and Katherine"_s;
    EXPECT_EQ(VocabularyCorrection({u"Marc"_s, u"Mark"_s, u"Catherine"_s, u"Katherine"_s}).corrected(heard),
              heard);
    EXPECT_NE(VocabularyCorrection({u"Marc"_s, u"Catherine"_s}).corrected(heard), heard);
}

TEST(VocabularyCorrectionOf, anEntryThatWasPutInMayBePartOfALongerOne)
{
    const VocabularyCorrection correction(
        {u"Reykjavík"_s, u"Gdańsk"_s, u"Ljubljana"_s, u"ReykjavíkGdańskLjubljana"_s});
    EXPECT_EQ(correction.corrected(u"by Reiki Avik Gudansk Liu Blyana"_s), u"by ReykjavíkGdańskLjubljana"_s);
}

TEST(VocabularyCorrectionOf, ordinarySentencesStayWhateverOrdinaryWordsAreInTheVocabulary)
{
    const QStringList ordinary = QString::fromLatin1(WordLists::Ordinary).split(u'\n', Qt::SkipEmptyParts);
    std::mt19937 random(20240607); // the same words on every run
    const auto draw = [&](std::size_t count) {
        QStringList words;
        std::ranges::sample(ordinary, std::back_inserter(words), static_cast<qsizetype>(count), random);
        std::ranges::shuffle(words, random);
        return words;
    };
    const QStringList vocabulary = draw(500);
    // With a name, so that there is something to look for.
    const VocabularyCorrection correction(QStringList(vocabulary) << u"Kubernetes"_s);
    for (int i = 0; i < 300; ++i) {
        QString text = draw(20).join(u' ') + u". "_s + vocabulary[i];
        text.front() = text.front().toUpper();
        ASSERT_EQ(correction.corrected(text).toStdString(), text.toStdString());
    }
}

} // namespace vesk

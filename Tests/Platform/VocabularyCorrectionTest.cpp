#include "Platform/Linux/Speech/VocabularyCorrection.h"

#include "Platform/Linux/Speech/Vocabulary/WordLists.h"

#include <gtest/gtest.h>
#include <random>

using namespace Qt::StringLiterals;

namespace vesk {

namespace {

/// What a person who works with computers and people may have written down.
const QStringList Vocabulary{
    u"Zürich"_s,
    u"QCoro"_s,
    u"Nadezhda"_s,
    u"PostgreSQL"_s,
    u"Kubernetes"_s,
    u"PulseAudio"_s,
    u"Vesk"_s,
    u"Thera"_s,
    u"Kroner"_s,
    u"Siobhan"_s,
    u"Łukasz"_s,
    u"O'Shaughnessy"_s,
    u"H264"_s,
    u"Qt"_s,
    u"kubectl"_s,
    u"Will"_s,
    u"May"_s,
    u"Rust"_s,
    u"go"_s,
    u"Redis"_s,
    u"Светлана"_s,
    u"Вера"_s,
    u"Мир"_s,
    u"Ljubljana"_s,
    u"Node.js"_s,
    u"Müller"_s,
    u"Marc"_s,
    u"Olga Petrova"_s,
    u"macOS"_s,
    u"Visual Studio Code"_s,
    u"Bank of Cyprus"_s,
    u"YouTube"_s,
    u"NoSQL"_s,
    u"OnePlus"_s,
    u"HTTPS"_s,
    u"McDonald's"_s,
    u"C++"_s,
    u"Wireshark"_s,
    u"Keycloak"_s,
    u"FFmpeg"_s,
    u"CMake"_s,
    u"GStreamer"_s,
    u"SQLite"_s,
    u"RabbitMQ"_s,
    u"GraphQL"_s,
    u"PyTorch"_s,
    u"KeePassXC"_s,
    u"Tchaikovsky"_s,
    u"Atorvastatin"_s,
    u"Omeprazole"_s,
    u"Reykjavík"_s,
    u"Gdańsk"_s,
    u"Dvořák"_s,
    u"McAllister"_s,
    u"Mario"_s,
    u"Oleksandr"_s,
    u"Wayland"_s,
    u"Schwarzenegger"_s,
    u"systemd"_s,
    u"Ewan"_s,
    u"zsh"_s,
    u"GTK"_s,
    u"Ayşe"_s,
    u"Grafana"_s,
    u"Jira"_s,
    u"Wi-Fi"_s,
    u"Catherine"_s,
    u"Anneliese"_s,
    u"TypeScript"_s,
    u"Marianne"_s,
    u"Matthias"_s,
};

struct Row {
    QString heard;
    QString wanted;
};

class VocabularyCorrectionTest : public testing::Test {
protected:
    VocabularyCorrection correction{Vocabulary};
};

} // namespace

/// Most rows are what the recogniser wrote when such words were read to it.
TEST_F(VocabularyCorrectionTest, whatSoundsLikeAnEntryBecomesIt)
{
    const std::vector<Row> rows{
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
        {u"We talked about Cubanetes yesterday"_s, u"We talked about Kubernetes yesterday"_s},
        {u"restart pulse audio now"_s, u"restart PulseAudio now"_s},
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
        {u"Dvorak was born there"_s, u"Dvořák was born there"_s},
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
    };
    for (const Row &row : rows) {
        EXPECT_EQ(correction.corrected(row.heard).toStdString(), row.wanted.toStdString());
    }
}

TEST_F(VocabularyCorrectionTest, spellingOfAnEntryWinsWhenOnlyCaseAndAccentsDiffer)
{
    const std::vector<Row> rows{
        {u"qt and QT"_s, u"Qt and Qt"_s},
        {u"mac OS and Macos"_s, u"macOS and macOS"_s},
        {u"visual studio code"_s, u"Visual Studio Code"_s},
        {u"the bank of cyprus"_s, u"the Bank of Cyprus"_s},
        {u"mcdonald's and McDonalds"_s, u"McDonald's and McDonald's"_s},
        {u"вера и СВЕТЛАНА"_s, u"Вера и Светлана"_s},
        {u"ZU\u0308RICH"_s, u"Zürich"_s},
        {u"the wifi and a WiFi"_s, u"the Wi-Fi and a Wi-Fi"_s},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(correction.corrected(row.heard).toStdString(), row.wanted.toStdString());
    }
}

TEST_F(VocabularyCorrectionTest, whatStandsAroundTheWordStays)
{
    const std::vector<Row> rows{
        {u"  zurich,  \"nadeshda\" (pulse  audio)…"_s, u"  Zürich,  \"Nadezhda\" (PulseAudio)…"_s},
        {u"zurich's lake and nadeshda’s house"_s, u"Zürich's lake and Nadezhda’s house"_s},
        {u"two zurichs"_s, u"two Zürichs"_s},
        {u"pulse\naudio"_s, u"pulse\naudio"_s},
        {u"pulse, audio"_s, u"pulse, audio"_s},
        {u"Kubectle is here. Kubectle too, kubectle"_s, u"Kubectl is here. Kubectl too, kubectl"_s},
        {u"We use Kubectle. \"Kubectle\" is good"_s, u"We use kubectl. \"Kubectl\" is good"_s},
        {u"zurich-based"_s, u"Zürich-based"_s},
        {u""_s, u""_s},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(correction.corrected(row.heard).toStdString(), row.wanted.toStdString());
    }
}

TEST_F(VocabularyCorrectionTest, whatIsSomethingElseStays)
{
    const QStringList untouched{
        // ordinary words near an entry
        u"the corner of the desk there"_s,
        u"these corners and their desks"_s,
        u"a queue alone"_s,
        u"a vast mask and a vest"_s,
        u"the theory of theatre"_s,
        u"the crown and the crooner"_s,
        u"a cute cut"_s,
        u"jerk and jury"_s,
        u"graphing a graph"_s,
        u"we marched and marked"_s,
        u"please mark it. Mark left early"_s,
        u"a miller's millet"_s,
        u"deviant and divorce"_s,
        u"the whale and the wayward"_s,
        u"the typescript of a novel"_s,
        u"read this and radish"_s,
        // entries that are ordinary words
        u"will you go in may"_s,
        u"Will May go? The rust will go"_s,
        u"It may rust"_s,
        // ordinary words that would spell an entry
        u"the sky was red is what she said"_s,
        u"one plus one is two"_s,
        u"there is no SQL in it"_s,
        u"he said no. SQL is next"_s,
        u"the bank of the river"_s,
        u"system wide and systemwide"_s,
        // other names, other abbreviations
        u"Maria called Marion and Marlon"_s,
        u"Ask Evan and Ivan and Erwin"_s,
        u"Aleksandr and Alexandre"_s,
        u"Olga Petrov and Olga Ivanova"_s,
        u"csh and bash and ksh"_s,
        u"GDK and AES and GTX"_s,
        u"a VESC motor controller"_s,
        u"Grafano and Grafani"_s,
        u"Vesko and Veska and Vasek"_s,
        u"Theora and Thora"_s,
        u"Jora and Gyro"_s,
        u"Grafton and Griffin"_s,
        u"h 265 and H two six four"_s,
        u"Christoph and Kristof"_s,
        u"Vera and vera"_s,
        u"the mir station"_s,
        // not prose
        u"write to zurich@example.org"_s,
        u"see zurich.example.org"_s,
        u"in /srv/zurich/redis"_s,
        u"C plus plus and C"_s,
        u"the file system.d there"_s,
        u"call Matthieu S at noon"_s,
        u"visual studio codes"_s,
        u"$zurich and #zurich"_s,
    };
    for (const QString &text : untouched) {
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

namespace {

/// Words drawn from the list of ordinary ones, the same on every run.
class Draw {
public:
    Draw()
    {
        for (std::size_t begin = 0; begin < WordLists::Ordinary.size();) {
            const std::size_t end = WordLists::Ordinary.find('\n', begin);
            m_words.push_back(WordLists::Ordinary.substr(begin, end - begin));
            begin = end + 1;
        }
    }

    QString word() { return QString::fromLatin1(m_words.at(number(m_words.size()))); }

    template <typename List>
    auto of(const List &list)
    {
        return list.at(qsizetype(number(std::size_t(list.size()))));
    }

    QString sentence(std::size_t count)
    {
        QStringList words;
        for (std::size_t i = 0; i < count; ++i) {
            words << word();
        }
        words.front().front() = words.front().front().toUpper();
        return words.join(u' ') + u'.';
    }

    std::size_t number(std::size_t below)
    {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(m_random);
    }

private:
    std::vector<std::string_view> m_words;
    std::mt19937 m_random{20240607};
};

} // namespace

TEST(VocabularyCorrectionProperty, ordinarySentencesStayWhateverOrdinaryWordsAreInTheVocabulary)
{
    Draw draw;
    QStringList vocabulary;
    for (int i = 0; i < 500; ++i) {
        vocabulary << draw.word();
    }
    vocabulary << u"Kubernetes"_s; // so that there is something to look for
    const VocabularyCorrection correction(vocabulary);
    for (int i = 0; i < 300; ++i) {
        QString text = draw.sentence(20);
        text += u' ' + draw.of(vocabulary);
        ASSERT_EQ(correction.corrected(text).toStdString(), text.toStdString());
    }
}

TEST(VocabularyCorrectionProperty, correctingTwiceIsCorrectingOnce)
{
    Draw draw;
    const VocabularyCorrection correction(Vocabulary);
    const QString letters = u"aeioubcdfghklmnprstvwz' -.,AZQé"_s;
    int changed = 0;
    for (int i = 0; i < 400; ++i) {
        QStringList pieces;
        for (int j = 0; j < 12; ++j) {
            QString piece = draw.number(2) == 0 ? draw.word() : draw.of(Vocabulary).toLower();
            for (std::size_t slips = draw.number(3); slips > 0; --slips) {
                piece.replace(qsizetype(draw.number(std::size_t(piece.size()))), 1, draw.of(letters));
            }
            pieces << piece;
        }
        const QString heard = pieces.join(u' ');
        const QString once = correction.corrected(heard);
        changed += once == heard ? 0 : 1;
        ASSERT_EQ(correction.corrected(once).toStdString(), once.toStdString()) << heard.toStdString();
    }
    EXPECT_GT(changed, 300);
}

TEST(VocabularyCorrectionProperty, everyEntryIsItself)
{
    const VocabularyCorrection correction(Vocabulary);
    for (const QString &entry : Vocabulary) {
        EXPECT_EQ(correction.corrected(u"we saw "_s + entry + u" there"_s).toStdString(),
                  QString(u"we saw "_s + entry + u" there"_s).toStdString());
    }
}

} // namespace vesk

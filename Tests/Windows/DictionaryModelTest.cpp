#include "Windows/DictionaryModel.h"

#include "Support/TemporaryHome.h"
#include "Windows/SettingsStore.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class DictionaryModelTest : public HomeTest {
protected:
    DictionaryModelTest()
    {
        QObject::connect(&words, &DictionaryModel::said,
                         [this](const QString &sentence) { said = sentence; });
        words.addLines(u"Vesk\nŁódź\nrsync"_s);
        said.clear();
    }

    static QString inFile() { return Config::load().vocabulary.join(u'|'); }
    bool rename(int row, const QString &name) { return words.setData(words.index(row), name, Qt::EditRole); }

    SettingsStore settings;
    DictionaryModel words{settings};
    QAbstractItemModelTester tester{&words, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QString said;
};

} // namespace

TEST_F(DictionaryModelTest, pastedLinesBecomeWordsWithoutBlanksAndRepetitions)
{
    const struct {
        QString pasted;
        QString added;
        QString said;
    } rows[] = {
        {u"  Antonia   Dimitrova \r\n\n\t\n QCoro"_s, u"|Antonia Dimitrova|QCoro"_s, u"2 words added."_s},
        {u"vesk\nVesk"_s, u"|vesk"_s, u"One word added. 1 already there."_s},
        {u"rsync"_s, {}, u"That word is already in the dictionary."_s},
        {u"rsync\nVesk"_s, {}, u"All of these words are already in the dictionary."_s},
        {u" \n "_s, {}, u"There is no word in that text."_s},
    };
    for (const auto &row : rows) {
        words.addLines(row.pasted);
        EXPECT_EQ(inFile(), QString(u"Vesk|Łódź|rsync"_s + row.added)) << row.pasted.toStdString();
        EXPECT_EQ(said, row.said);
        if (!row.added.isEmpty()) {
            words.undoStack().undo(); // all of it in one step
        }
        EXPECT_EQ(inFile(), u"Vesk|Łódź|rsync");
    }
}

TEST_F(DictionaryModelTest, aNameThatCannotBeIsRefusedWithASentence)
{
    EXPECT_FALSE(rename(1, u"Vesk"_s));
    EXPECT_EQ(said, u"“Vesk” is already in the dictionary.");
    EXPECT_FALSE(rename(1, u"  "_s));
    EXPECT_EQ(inFile(), u"Vesk|Łódź|rsync");
    EXPECT_TRUE(rename(1, u" Gdańsk "_s));
    EXPECT_TRUE(rename(2, u"rsync"_s)) << "its own name";
    EXPECT_EQ(inFile(), u"Vesk|Gdańsk|rsync");
}

TEST_F(DictionaryModelTest, everyStepIsTakenBackInTurnAndDoneAgain)
{
    rename(0, u"VESK"_s);
    words.remove({words.index(2), words.index(0), words.index(2)});
    EXPECT_EQ(inFile(), u"Łódź");
    words.undoStack().undo();
    EXPECT_EQ(inFile(), u"VESK|Łódź|rsync");
    words.undoStack().undo();
    EXPECT_EQ(inFile(), u"Vesk|Łódź|rsync");
    words.undoStack().redo();
    words.undoStack().redo();
    EXPECT_EQ(inFile(), u"Łódź");
    EXPECT_EQ(words.text(), u"Łódź\n");
}

TEST_F(DictionaryModelTest, wordsAddedByHandSurviveWhatWasBegunBefore)
{
    Config byHand = Config::load();
    byHand.vocabulary.append(u"by hand"_s);
    byHand.write(); // not noticed yet

    words.remove({words.index(0)});

    EXPECT_EQ(inFile(), u"Vesk|Łódź|rsync|by hand");
    EXPECT_FALSE(said.isEmpty());
    EXPECT_FALSE(words.undoStack().canUndo()) << "an older step would take the new word away";
    words.remove({words.index(0)});
    EXPECT_EQ(inFile(), u"Łódź|rsync|by hand");
}

} // namespace vesk

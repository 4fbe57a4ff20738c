#pragma once

#include "Platform/Linux/Speech/Vocabulary/VocabularyIndex.h"

#include <QStringList>

namespace vesk {

/// Puts a person's own words right in recognised text: the recogniser takes no hints, so "Cubanetes" becomes
/// "Kubernetes" afterwards. Made once for a vocabulary and fixed from then on; any thread may use it. It
/// never fails: what it does not understand stays as it was heard.
///
/// How. First by letters: a run of words whose letters are an entry's, case, accents, blanks and hyphens
/// aside, takes the entry's spelling ("zurich", "pulse audio"). Then by sound: runs of one to four words
/// whose sounds (Phonetics.h) are near an entry's and whose letters are too, no more than 45 of 100 changed,
/// 50 where the sound is the same. How near depends on the length (SoundMatch.cpp): up to three sounds never,
/// four and five only the same sound, more from eight on, a tenth of a consonant for each. The closest match
/// wins.
///
/// What keeps ordinary text safe. A word of an English dictionary, or a regular form of one, is never given
/// up alone, and an entry that is one ("Will", "Rust") changes nothing. Several such words are given up only
/// together, for an entry spelled or parted as they are, and none of them a small one: "red is" is not Redis.
/// A known name gives way to an entry of the same sound only ("Katherine" to "Catherine"), unless it is in
/// the vocabulary itself. A capital inside a sentence makes "Mark" a name, at its beginning it does not.
///
/// Left alone, because no safe way was found: entries of one or two letters and entries with digits, unless
/// spelled alike; numbers said as words; abbreviations that differ in a letter ("zsh", "csh"); entries with
/// signs that are said in many ways ("C++", "AT&T"); names whose spelling hides their sound ("Siobhan" said
/// as shavon); Cyrillic entries that are an English word or name in Latin letters; addresses and paths.
///
/// Measured with a synthetic voice before the recogniser: of what it wrote for 83 names and terms, 51 of 291
/// were right and 164 afterwards; of 60 others, kept away while this was made, 49 and 104 of 214; no word was
/// replaced by a wrong entry. Benchmarks/VocabularyCorrection.cpp counts what happens to ordinary prose.
class VocabularyCorrection {
public:
    explicit VocabularyCorrection(const QStringList &vocabulary);

    /// The text with the person's spellings; punctuation and spacing around them stay. Correcting twice is
    /// correcting once.
    QString corrected(const QString &text) const;

    /// Nothing would ever be corrected.
    bool isEmpty() const { return m_index.isEmpty(); }

private:
    QString correctedOnce(const QString &text) const;

    VocabularyIndex m_index;
};

} // namespace vesk

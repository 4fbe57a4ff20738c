#pragma once

#include "Platform/Linux/Speech/Vocabulary/WordKind.h"

#include <QStringView>

#include <string>
#include <vector>

namespace vesk {

/// A word of recognised text and where it stands.
struct HeardWord {
    qsizetype begin = 0;
    qsizetype end = 0;                 ///< behind its last letter
    qsizetype stemEnd = 0;             ///< before an ending 's
    std::string letters;               ///< everything from begin to end, as `Letters::key` makes it
    std::string stem;                  ///< what stands before the 's
    std::string sounds;                ///< of the stem
    WordKind kind = WordKind::unknown; ///< of the stem
    bool isCompound = false;           ///< two ordinary words written as one: "systemwide"
    bool followsDot = false;           ///< a point and nothing else stands before it
    bool followsClosely = false;       ///< only a blank, a hyphen or a point stands before it
    bool isBoundBefore = false; ///< part of an address, a path or a dotted name that goes on to the left
    bool isBoundAfter = false;  ///< the same to the right
    bool startsSentence = false;
    bool isCapitalised = false;
    bool isAcronym = false;     ///< two to five capitals and nothing else
    bool canBeMisheard = false; ///< of Latin letters only

    bool hasEnding() const { return stemEnd != end; }
};

/// The words of a text in their order. Pure, for any thread.
std::vector<HeardWord> heardWords(QStringView text);

} // namespace vesk

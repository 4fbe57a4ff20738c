#pragma once

#include "Foundation/Json.h"

#include <QMap>

#include <optional>
#include <variant>

/// What goes into the server's operations and what comes out of them; ServerClient offers the operations
/// themselves. Each answer decodes itself and throws DecodingError when the server sent something else.
namespace vesk {

/// A recording that was uploaded, transcribed and cleaned up.
struct Dictated {
    QString text; ///< to be inserted
    QString raw;  ///< as the server heard it
    qint64 words = 0;

    static Dictated decode(const JsonReader &answer);
};

/// What is to be done with a selection: typed, or spoken into a file.
struct TypedInstruction {
    QString text;
};
struct SpokenInstruction {
    QString audioFile;
};
using Instruction = std::variant<TypedInstruction, SpokenInstruction>;

struct Commanded {
    QString text;             ///< replaces the selection
    bool isUnchanged = false; ///< the selection is to be left alone
    QString instruction;      ///< as the server took it

    static Commanded decode(const JsonReader &answer);
};

/// A note as the server is given it; its keys are the business of whoever prepares it.
using NoteMaterial = QMap<QString, QString>;

struct NoteSummary {
    QString title;
    QString summary;

    static NoteSummary decode(const JsonReader &answer);
};

/// The question that the server words itself: a catch-up on the meeting so far.
inline constexpr QStringView MissedQuestion = u"What did I miss?";

/// A sign-in whose letter is on its way.
struct Started {
    QString request;      ///< to poll with
    double pollEvery = 0; ///< seconds

    static Started decode(const JsonReader &answer);
};

struct Account {
    QString email;

    static Account decode(const JsonReader &answer);
    friend bool operator==(const Account &, const Account &) = default;
};

/// One look at a sign-in under way.
struct Poll {
    struct SignedIn {
        QString token;
        Account account;
    };
    std::optional<SignedIn> signedIn; ///< nothing while the link in the letter has not been pressed

    static Poll decode(const JsonReader &answer);
};

} // namespace vesk

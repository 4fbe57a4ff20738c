#pragma once

#include <QHash>
#include <QStringList>

#include <optional>

namespace vesk {

/// What one folder of a speech model holds, as its "model.json" says. A plain value; adding a model is adding
/// a folder.
struct ModelDescription {
    enum class Family { moonshine, whisper, parakeet };

    QString name;   ///< for people
    QString folder; ///< absolute
    Family family = Family::moonshine;
    QStringList languages;         ///< language subtags in lower case, such as "en"
    QHash<QString, QString> files; ///< role ("encoder") → absolute path

    /// Empty for a role that the description does not name.
    QString file(QLatin1StringView role) const { return files.value(QString(role)); }

    /// Whether every file it names is there.
    bool isComplete() const;

    /// Whether the files look like what they should be. The recogniser ends the whole process when it is
    /// given anything else, so a download that went wrong must be found before.
    bool isPlausible() const;

    /// Reads folder + "/model.json". Throws FileError or DecodingError.
    static ModelDescription read(const QString &folder);
};

/// The descriptions in the sub-folders of `folder`, by name. A folder whose description cannot be read is
/// left out, and the log says why, once for each reason. Empty when the folder does not exist.
QList<ModelDescription> readModelDescriptions(const QString &folder);

} // namespace vesk

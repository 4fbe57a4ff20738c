#include "Platform/Linux/Speech/ModelDescription.h"

#include "Foundation/Files.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <mutex>
#include <set>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using Family = ModelDescription::Family;

struct FamilyRow {
    QLatin1StringView name;
    Family family = Family::moonshine;
    QList<QLatin1StringView> roles; ///< the files that a model of this family consists of
};

const std::array<FamilyRow, 3> &families()
{
    static const std::array<FamilyRow, 3> rows = {{
        {"moonshine"_L1, Family::moonshine, {"encoder"_L1, "decoder"_L1, "tokens"_L1}},
        {"whisper"_L1, Family::whisper, {"encoder"_L1, "decoder"_L1, "tokens"_L1}},
        {"parakeet"_L1, Family::parakeet, {"encoder"_L1, "decoder"_L1, "joiner"_L1, "tokens"_L1}},
    }};
    return rows;
}

const FamilyRow &familyNamed(const QString &name)
{
    for (const FamilyRow &row : families()) {
        if (row.name == name) {
            return row;
        }
    }
    throw DecodingError(u"\"family\" must be moonshine, whisper or parakeet, not "_s + name);
}

/// Each line of a table of tokens is "token number"; the token that is a blank leaves only the number.
bool isTokenTable(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    bool hasLines = false;
    while (!file.atEnd()) {
        const QList<QByteArray> fields = file.readLine().simplified().split(' ');
        bool isNumber = false;
        fields.last().toInt(&isNumber);
        if (!isNumber || fields.size() > 2) {
            return false;
        }
        hasLines = true;
    }
    return hasLines;
}

/// An ONNX file is a protocol buffer whose first member, number 1, is a small integer: the format's version.
bool isOnnx(const QString &path)
{
    constexpr char FirstMember = 0x08;
    constexpr qint64 SmallestModel = 1024;
    QFile file(path);
    char first = 0;
    return file.open(QIODevice::ReadOnly) && file.size() >= SmallestModel && file.getChar(&first)
        && first == FirstMember;
}

/// Descriptions are read for every question about models; what is wrong with one need be said once.
void logIgnored(const QString &folder, const QString &reason)
{
    static std::mutex mutex;
    static std::set<QString> said;
    const QString line = u"speech model ignored folder=\"%1\" reason=\"%2\""_s.arg(folder, reason);
    const std::lock_guard lock(mutex);
    if (said.insert(line).second) {
        Log::write(line);
    }
}

} // namespace

bool ModelDescription::isPlausible() const
{
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        const bool fits = file.key() == "tokens"_L1 ? isTokenTable(file.value()) : isOnnx(file.value());
        if (!fits) {
            Log::write(u"speech model damaged file=\"%1\""_s.arg(Text::fileName(file.value())));
            return false;
        }
    }
    return true;
}

bool ModelDescription::isComplete() const
{
    return std::ranges::all_of(files, [](const QString &path) { return QFileInfo(path).isFile(); });
}

ModelDescription ModelDescription::read(const QString &folder)
{
    const JsonReader reader(Json::object(Files::read(folder + u"/model.json")));
    const FamilyRow &row = familyNamed(reader.string("family"_L1));
    ModelDescription description;
    description.name = reader.optionalString("name"_L1).value_or(Text::fileName(folder));
    description.folder = folder;
    description.family = row.family;
    for (const QString &language : reader.optionalStrings("languages"_L1).value_or(QStringList())) {
        description.languages.append(language.toLower());
    }
    if (description.languages.isEmpty()) {
        throw DecodingError(u"\"languages\" must name at least one language"_s);
    }
    const auto files = reader.optionalObject("files"_L1);
    if (!files) {
        throw DecodingError(u"\"files\" is missing"_s);
    }
    for (const QLatin1StringView role : row.roles) {
        description.files.insert(QString(role), QDir(folder).absoluteFilePath(files->string(role)));
    }
    return description;
}

QList<ModelDescription> readModelDescriptions(const QString &folder)
{
    QList<ModelDescription> descriptions;
    const QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        try {
            descriptions.append(ModelDescription::read(folder + u'/' + name));
        } catch (const FileError &error) {
            logIgnored(name, Text::systemReason(error.errorNumber())); // its sentence has the whole path
        } catch (const UserError &error) {
            logIgnored(name, error.errorDescription());
        }
    }
    return descriptions;
}

} // namespace vesk

#include "Server/ServerContext.h"

#include <QJsonObject>

namespace vesk {

using namespace Qt::StringLiterals;

QJsonValue serverContext(const std::optional<FocusContext> &context)
{
    if (!context) {
        return QJsonValue::Undefined;
    }
    QJsonObject app;
    app.insert("name"_L1, context->appName);
    app.insert("bundle_id"_L1, context->bundleID);

    QJsonObject field;
    const auto add = [](QJsonObject &object, QLatin1StringView key, const std::optional<QString> &value) {
        if (value) {
            object.insert(key, *value);
        }
    };
    add(field, "role"_L1, context->role);
    add(field, "label"_L1, context->label);
    add(field, "text_before"_L1, context->textBefore);
    add(field, "selected"_L1, context->selectedText);
    add(field, "text_after"_L1, context->textAfter);

    QJsonObject object;
    object.insert("app"_L1, app);
    object.insert("secure"_L1, context->isSecure);
    add(object, "window_title"_L1, context->windowTitle);
    if (!field.isEmpty()) {
        object.insert("field"_L1, field);
    }
    return object;
}

} // namespace vesk

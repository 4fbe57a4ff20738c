#include "Windows/CopyText.h"

#include "Platform/Pasteboard.h"

namespace vesk {

namespace {

Task<> copy(Pasteboard &pasteboard, QList<PasteboardItem> items)
{
    co_await pasteboard.write(PasteboardName::general, std::move(items));
}

} // namespace

void copyText(Pasteboard &pasteboard, const QString &text)
{
    const PasteboardItem item = {{{QLatin1String(PasteboardType::String), text.toUtf8(), {}}}};
    launch(QStringLiteral("copy"), copy(pasteboard, {item}));
}

} // namespace vesk

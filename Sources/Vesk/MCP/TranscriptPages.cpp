#include "MCP/TranscriptPages.h"

#include "Foundation/Graphemes.h"

namespace vesk {

QStringList transcriptPages(const QStringList &lines)
{
    QStringList pages;
    qsizetype size = 0;
    for (const QString &line : lines) {
        const qsizetype count = Graphemes::count(line);
        if (!pages.isEmpty() && size + count <= PageSize) {
            pages.back() += u'\n' + line;
        } else {
            pages.append(line);
            size = 0;
        }
        size += count + 1;
    }
    return pages;
}

} // namespace vesk

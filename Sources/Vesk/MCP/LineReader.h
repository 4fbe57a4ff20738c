#pragma once

#include <QByteArray>

#include <optional>

namespace vesk {

/// Reads a descriptor line by line. Blocking.
class LineReader {
public:
    struct Line {
        QByteArrayView bytes;   ///< without its line feed; valid until the next line is asked for
        bool isTooLong = false; ///< then `bytes` is its beginning; the rest has been read and forgotten
    };

    /// Far beyond every message; a line that is longer would only fill the memory.
    static constexpr qsizetype LongestLine = 16L * 1024 * 1024;

    explicit LineReader(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    /// Nothing at the end of the input, or when it cannot be read. The last line need not have a line feed.
    std::optional<Line> next();

    /// Why the input could not be read on; 0 when it could, or has ended.
    int errorNumber() const { return m_errorNumber; }

private:
    bool readMore();

    int m_descriptor;
    int m_errorNumber = 0;
    QByteArray m_buffer;
    qsizetype m_begin = 0;    // of the next line in the buffer
    qsizetype m_searched = 0; // no line feed is before this
    qsizetype m_end = 0;      // of what has been read
};

} // namespace vesk

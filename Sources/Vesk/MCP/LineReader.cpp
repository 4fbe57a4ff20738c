#include "MCP/LineReader.h"

#include "Foundation/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace vesk {

std::optional<LineReader::Line> LineReader::next()
{
    bool isTooLong = false;
    while (true) {
        const char *from = m_buffer.constData() + m_searched;
        const auto *feed =
            static_cast<const char *>(std::memchr(from, '\n', static_cast<std::size_t>(m_end - m_searched)));
        if (feed != nullptr) {
            const qsizetype end = feed - m_buffer.constData();
            const Line line{QByteArrayView(m_buffer).sliced(m_begin, end - m_begin), isTooLong};
            m_begin = m_searched = end + 1;
            return line;
        }
        m_searched = m_end;
        if (m_end - m_begin > LongestLine) {
            isTooLong = true;
            m_searched = m_end = m_begin;
        }
        if (!readMore()) {
            if (m_begin == m_end && !isTooLong) {
                return std::nullopt;
            }
            const Line line{QByteArrayView(m_buffer).sliced(m_begin, m_end - m_begin), isTooLong};
            m_begin = m_searched = m_end;
            return line;
        }
    }
}

bool LineReader::readMore()
{
    constexpr qsizetype Step = 64L * 1024;
    if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.constData() + m_begin,
                     static_cast<std::size_t>(m_end - m_begin));
        m_searched -= m_begin;
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_buffer.size() - m_end < Step) {
        m_buffer.resize(std::max(m_end + Step, 2 * m_end));
    }
    while (true) {
        const ssize_t got =
            ::read(m_descriptor, m_buffer.data() + m_end, static_cast<std::size_t>(m_buffer.size() - m_end));
        if (got >= 0) {
            m_end += got;
            return got > 0;
        }
        if (errno == EAGAIN) {
            waitUntilReady(m_descriptor, POLLIN);
        } else if (errno != EINTR) {
            m_errorNumber = errno;
            return false;
        }
    }
}

} // namespace vesk

#include "BoundedLog.h"

#include "Milestones.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

KelvoBoundedLog::KelvoBoundedLog(int fileFd, int terminalFd, unsigned long long limit, bool showDebug)
    : m_fileFd(fileFd), m_terminalFd(terminalFd), m_limit(limit), m_showDebug(showDebug)
{}

void KelvoBoundedLog::Take(const char *data, size_t size)
{
    if (m_truncated || size == 0)
        return;
    unsigned long long room = m_limit - m_kept;
    if (size <= room) {
        m_Keep(data, size);
        return;
    }
    m_Keep(data, static_cast<size_t>(room));
    m_truncated = true;
    // The notice stands on a line of its own in the file and on the terminal.
    if (!m_endsWithNewline)
        m_WriteAll(m_fileFd, "\n", 1);
    m_WriteAll(m_fileFd, kTruncatedLine, strlen(kTruncatedLine));
    Finish();
    m_ShowLine(kTruncatedLine);
}

void KelvoBoundedLog::Finish()
{
    if (m_partial.empty())
        return;
    m_ShowLine(m_partial + "\n");
    m_partial.clear();
}

void KelvoBoundedLog::m_Keep(const char *data, size_t size)
{
    if (size == 0)
        return;
    m_WriteAll(m_fileFd, data, size);
    m_kept += size;
    m_endsWithNewline = data[size - 1] == '\n';
    if (m_terminalFd < 0)
        return;
    // The lines shown go out in one write per chunk read, not one per line: a dump logs hundreds
    // of thousands of lines.
    std::string shown;
    shown.reserve(size);
    const char *end = data + size;
    for (const char *p = data; p < end;) {
        const char *newline = static_cast<const char *>(memchr(p, '\n', static_cast<size_t>(end - p)));
        if (!newline) {
            m_partial.append(p, end);
            break;
        }
        if (m_milestones) {
            m_partial.append(p, newline + 1);
            m_milestones->Line(m_partial);
            m_partial.clear();
        } else if (m_partial.empty()) {
            if (m_Shows(p))
                shown.append(p, newline + 1);
        } else {
            m_partial.append(p, newline + 1);
            if (m_Shows(m_partial.c_str()))
                shown += m_partial;
            m_partial.clear();
        }
        p = newline + 1;
    }
    m_WriteAll(m_terminalFd, shown.data(), shown.size());
}

bool KelvoBoundedLog::m_Shows(const char *line) const
{
    return m_showDebug || !(line[0] == 'D' && line[1] == '/');
}

void KelvoBoundedLog::m_ShowLine(const std::string &line)
{
    if (m_milestones) {
        m_milestones->Line(line);
        return;
    }
    if (m_Shows(line.c_str()))
        m_WriteAll(m_terminalFd, line.data(), line.size());
}

void KelvoBoundedLog::m_WriteAll(int fd, const char *data, size_t size)
{
    while (fd >= 0 && size > 0) {
        ssize_t n = write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;  // a full disk or a closed terminal loses the rest; the run goes on
        data += n;
        size -= static_cast<size_t>(n);
    }
}

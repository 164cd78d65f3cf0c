#include "batch.h"

#include "cli.h"

#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Batch {

namespace {

// Both buffers are fixed: memory stays the same for a line or a billion. A line
// longer than the input buffer is reported and skipped.
constexpr size_t kInputBufferSize = size_t(1) << 20;
constexpr size_t kOutputBufferSize = size_t(1) << 20;
constexpr qint64 kProgressIntervalMs = 200;
constexpr int kProgressBarWidth = 30;

/// Reads lines from a file descriptor through one fixed buffer.
class LineReader
{
public:
    explicit LineReader(int fd) : m_fd(fd), m_buffer(kInputBufferSize) {}

    /// The next line without its line break (and without a carriage return
    /// before it); false at the end. `tooLong` marks a line that did not fit
    /// the buffer: its text is cut and the rest of it skipped.
    bool next(const char*& begin, size_t& length, bool& tooLong)
    {
        tooLong = false;
        for (;;) {
            const char* start = m_buffer.data() + m_begin;
            const size_t available = m_end - m_begin;
            if (const void* newline = std::memchr(start, '\n', available)) {
                length = size_t(static_cast<const char*>(newline) - start);
                m_begin += length + 1;
                return deliver(start, length, begin);
            }
            if (m_eof) {
                if (available == 0)
                    return false;
                m_begin = m_end;
                length = available;
                return deliver(start, length, begin);
            }
            if (m_begin == 0 && m_end == m_buffer.size()) {
                // The line fills the whole buffer: hand out what there is and
                // drop the rest of it up to its line break.
                tooLong = true;
                length = available;
                m_begin = m_end;
                m_skipping = true;
                return deliver(start, length, begin);
            }
            fill();
        }
    }

    qint64 bytesRead() const { return m_bytesRead; }
    bool failed() const { return m_error != 0; }
    int error() const { return m_error; }

private:
    bool deliver(const char* start, size_t& length, const char*& begin)
    {
        if (length > 0 && start[length - 1] == '\r')
            --length;
        begin = start;
        return true;
    }

    void fill()
    {
        if (m_begin > 0) {
            std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
            m_end -= m_begin;
            m_begin = 0;
        }
        while (!m_eof && m_end < m_buffer.size()) {
            const ssize_t n = ::read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                m_error = n < 0 ? errno : 0;
                m_eof = true;
                break;
            }
            m_bytesRead += n;
            if (m_skipping) {
                const void* newline = std::memchr(m_buffer.data() + m_end, '\n', size_t(n));
                if (!newline)
                    continue; // still inside the overlong line: overwrite
                const size_t keep =
                    size_t(m_buffer.data() + m_end + n - static_cast<const char*>(newline) - 1);
                std::memmove(m_buffer.data(), static_cast<const char*>(newline) + 1, keep);
                m_end = keep;
                m_skipping = false;
                continue;
            }
            m_end += size_t(n);
            // One read is enough when it brought a line break.
            if (std::memchr(m_buffer.data() + m_end - n, '\n', size_t(n)))
                break;
        }
    }

    int m_fd;
    std::vector<char> m_buffer;
    size_t m_begin = 0;
    size_t m_end = 0;
    bool m_eof = false;
    bool m_skipping = false;
    int m_error = 0;
    qint64 m_bytesRead = 0;
};

/// Buffered UTF-8 output to a file descriptor.
class Writer
{
public:
    explicit Writer(int fd) : m_fd(fd), m_buffer(kOutputBufferSize) {}
    ~Writer() { flush(); }

    void append(const char* data, size_t length)
    {
        if (length > m_buffer.size() - m_used) {
            flush();
            if (length > m_buffer.size()) {
                writeAll(data, length);
                return;
            }
        }
        std::memcpy(m_buffer.data() + m_used, data, length);
        m_used += length;
    }
    void append(char c)
    {
        if (m_used == m_buffer.size())
            flush();
        m_buffer[m_used++] = c;
    }
    void appendNumber(qint64 number)
    {
        char digits[24];
        const int n = std::snprintf(digits, sizeof digits, "%lld", static_cast<long long>(number));
        append(digits, size_t(n));
    }
    void appendUtf8(const QString& text)
    {
        // Three bytes per UTF-16 unit at most (a surrogate pair gives four for two).
        const size_t worst = size_t(text.size()) * 3;
        if (worst > m_buffer.size() - m_used) {
            flush();
            if (worst > m_buffer.size()) {
                const QByteArray bytes = text.toUtf8();
                writeAll(bytes.constData(), size_t(bytes.size()));
                return;
            }
        }
        char* out = m_buffer.data() + m_used;
        const QChar* in = text.constData();
        const QChar* const end = in + text.size();
        for (; in != end; ++in) {
            const unsigned c = in->unicode();
            if (c < 0x80) {
                *out++ = char(c);
            } else if (c < 0x800) {
                *out++ = char(0xC0 | (c >> 6));
                *out++ = char(0x80 | (c & 0x3F));
            } else if (in->isHighSurrogate() && in + 1 != end && in[1].isLowSurrogate()) {
                const unsigned u = QChar::surrogateToUcs4(in[0], in[1]);
                ++in;
                *out++ = char(0xF0 | (u >> 18));
                *out++ = char(0x80 | ((u >> 12) & 0x3F));
                *out++ = char(0x80 | ((u >> 6) & 0x3F));
                *out++ = char(0x80 | (u & 0x3F));
            } else {
                const unsigned u = in->isSurrogate() ? 0xFFFDu : c;
                *out++ = char(0xE0 | (u >> 12));
                *out++ = char(0x80 | ((u >> 6) & 0x3F));
                *out++ = char(0x80 | (u & 0x3F));
            }
        }
        m_used = size_t(out - m_buffer.data());
    }
    /// RFC 4180: quoted when it holds a separator, a quote, a line break or
    /// blanks at either end; quotes inside doubled.
    void appendCsvField(const QString& text)
    {
        bool quote = !text.isEmpty() && (text.front().isSpace() || text.back().isSpace());
        for (const QChar c : text)
            quote = quote || c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n') ||
                    c == QLatin1Char('\r');
        if (!quote) {
            appendUtf8(text);
            return;
        }
        append('"');
        QString doubled = text;
        appendUtf8(doubled.replace(QLatin1Char('"'), QLatin1String("\"\"")));
        append('"');
    }

    void flush()
    {
        writeAll(m_buffer.data(), m_used);
        m_used = 0;
    }
    bool failed() const { return m_failed; }

private:
    void writeAll(const char* data, size_t length)
    {
        while (length > 0 && !m_failed) {
            const ssize_t n = ::write(m_fd, data, length);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                m_failed = true;
                break;
            }
            data += n;
            length -= size_t(n);
        }
    }

    int m_fd;
    std::vector<char> m_buffer;
    size_t m_used = 0;
    bool m_failed = false;
};

/// "[#####.....]  42%  1234567 lines" on a terminal's standard error.
class Progress
{
public:
    Progress(qint64 total) : m_total(total) { m_clock.start(); }

    /// Redraws at most five times a second unless `force`d.
    void update(qint64 done, qint64 lines, bool force = false)
    {
        if (!force && m_clock.elapsed() < m_lastDraw + kProgressIntervalMs)
            return;
        m_lastDraw = m_clock.elapsed();
        const int percent = m_total > 0 ? int(qMin<qint64>(100, done * 100 / m_total)) : 100;
        const int filled = percent * kProgressBarWidth / 100;
        char bar[kProgressBarWidth + 1];
        std::memset(bar, '#', size_t(filled));
        std::memset(bar + filled, '.', size_t(kProgressBarWidth - filled));
        bar[kProgressBarWidth] = '\0';
        std::fprintf(stderr, "\r[%s] %3d%%  %lld lines", bar, percent, static_cast<long long>(lines));
        std::fflush(stderr);
        m_shown = true;
    }
    void clear()
    {
        if (m_shown)
            std::fputs("\r\033[K", stderr);
        m_shown = false;
    }

private:
    qint64 m_total;
    QElapsedTimer m_clock;
    qint64 m_lastDraw = -kProgressIntervalMs;
    bool m_shown = false;
};

bool isBlankOrComment(const char* text, size_t length)
{
    for (size_t i = 0; i < length; ++i) {
        if (text[i] == ' ' || text[i] == '\t')
            continue;
        return text[i] == '#';
    }
    return true;
}

/// Most position files are ASCII: widen in place into a string that keeps its
/// buffer from line to line; anything else goes through the UTF-8 decoder.
void decode(const char* text, size_t length, QString& line)
{
    for (size_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(text[i]) >= 0x80) {
            line = QString::fromUtf8(text, int(length));
            return;
        }
    }
    line.resize(int(length));
    QChar* out = line.data();
    for (size_t i = 0; i < length; ++i)
        out[i] = QLatin1Char(text[i]);
}

} // namespace

int run(const Options& options, const LineConverter& converter)
{
    const bool fromFile = !options.inputPath.isEmpty() && options.inputPath != QLatin1String("-");
    int fd = STDIN_FILENO;
    if (fromFile) {
        fd = ::open(QFile::encodeName(options.inputPath).constData(), O_RDONLY);
        if (fd < 0)
            throw Cli::UsageError{QStringLiteral("cannot read '%1': %2")
                                      .arg(options.inputPath, QString::fromLocal8Bit(std::strerror(errno)))};
    }
    const QByteArray source = fromFile ? options.inputPath.toUtf8() : QByteArrayLiteral("<stdin>");

    struct stat info;
    // A regular file has a size to measure progress by, also as "< file".
    const bool knownSize = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    std::unique_ptr<Progress> progress;
    if (knownSize && ::isatty(STDERR_FILENO))
        progress = std::make_unique<Progress>(qint64(info.st_size));
    const bool interactive = ::isatty(STDOUT_FILENO);

    LineReader reader(fd);
    Writer out(STDOUT_FILENO);
    const int columns = qMax(1, int(options.columns.size()));
    std::vector<QString> fields(static_cast<size_t>(columns));
    QString line;
    QString error;
    qint64 lineNumber = 0;
    qint64 converted = 0;
    qint64 failed = 0;

    if (options.csv) {
        out.append("line,input", 10);
        for (const QString& column : options.columns) {
            out.append(',');
            out.appendCsvField(column);
        }
        out.append('\n');
    }

    const char* text = nullptr;
    size_t length = 0;
    bool tooLong = false;
    while (reader.next(text, length, tooLong)) {
        ++lineNumber;
        // A byte-order mark is not part of the first position.
        if (lineNumber == 1 && length >= 3 && std::memcmp(text, "\xEF\xBB\xBF", 3) == 0) {
            text += 3;
            length -= 3;
        }
        const bool passThrough = !tooLong && isBlankOrComment(text, length);
        bool ok = false;
        if (!passThrough) {
            decode(text, length, line);
            if (tooLong) {
                error = QStringLiteral("line longer than %1 bytes").arg(kInputBufferSize);
            } else {
                error.clear();
                ok = converter(line, fields, error);
            }
            ok ? ++converted : ++failed;
            if (!ok) {
                if (progress)
                    progress->clear();
                if (interactive)
                    out.flush();
                Cli::err(QStringLiteral("%1:%2: cannot convert \"%3\": %4\n")
                             .arg(QString::fromUtf8(source))
                             .arg(lineNumber)
                             .arg(tooLong ? line.left(40) + QStringLiteral("...") : line, error));
            }
        }

        if (options.csv) {
            out.appendNumber(lineNumber);
            out.append(',');
            if (passThrough)
                out.appendCsvField(QString::fromUtf8(text, int(length)));
            else
                out.appendCsvField(line);
            for (int i = 0; i < columns; ++i) {
                out.append(',');
                if (ok)
                    out.appendCsvField(fields[size_t(i)]);
            }
        } else if (passThrough) {
            out.append(text, length);
        } else if (ok) {
            for (int i = 0; i < columns; ++i) {
                if (i > 0)
                    out.append('\t');
                out.appendUtf8(fields[size_t(i)]);
            }
        }
        out.append('\n');
        if (interactive)
            out.flush();
        if (progress && (lineNumber & 0x3FF) == 0)
            progress->update(reader.bytesRead(), lineNumber);
    }
    out.flush();
    if (progress) {
        progress->update(reader.bytesRead(), lineNumber, true);
        progress->clear();
    }
    if (fromFile)
        ::close(fd);

    int code = failed == 0 ? Cli::Success : Cli::Failure;
    if (reader.failed()) {
        Cli::err(QStringLiteral("%1: read error: %2\n")
                     .arg(QString::fromUtf8(source), QString::fromLocal8Bit(std::strerror(reader.error()))));
        code = Cli::Failure;
    }
    if (out.failed()) {
        Cli::err(QStringLiteral("kvtool: cannot write the output\n"));
        code = Cli::Failure;
    }
    Cli::err(QStringLiteral("%1 converted, %2 failed\n").arg(converted).arg(failed));
    return code;
}

} // namespace Batch

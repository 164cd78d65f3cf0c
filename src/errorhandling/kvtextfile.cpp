#include "errorhandling/kvtextfile.h"

#include "errorhandling/errorhandler.h"
#include "errorhandling/kvexception.h"
#include "errorhandling/quality.h"
#include "errorhandling/quality_p.h"

#include <QTextStream>

#include <vector>

namespace {

// The source and lines a missing file is reported with since the first
// version; log filters match them, so they do not follow this file's layout.
constexpr QLatin1String kTextFileSource("errorhandling\\kvtextfile", 24); // with its length, for clang
constexpr unsigned short kMissingFileTraceLine = 37;
constexpr unsigned int kMissingFileLine = 39;

} // namespace

KvTextFile::KvTextFile(const QString& path, bool mayBeMissing) : m_File(path)
{
    if (!mayBeMissing && !m_File.exists()) {
        if (ErrorHandler::Instance().GetMessageMask() & ErrorHandler::TraceMask)
            _Q_Trace(path, kTextFileSource, kMissingFileTraceLine);
        throw KvException(QStringLiteral("File does not exist - see Details"), kTextFileSource,
                          QStringLiteral("KvTextFile"), QStringLiteral("ctor"), kMissingFileLine,
                          kLibraryErrorId);
    }
    m_File.open(QIODevice::ReadWrite);
}

KvTextFile::~KvTextFile()
{
    // The stream must go before the device it reads.
    m_pReadStream.reset();
    if (m_File.isOpen())
        m_File.close();
}

bool KvTextFile::Open(int mode)
{
    if (!m_File.exists())
        return false;
    return m_File.open(QIODevice::OpenMode(mode));
}

bool KvTextFile::isOpen() const
{
    return m_File.isOpen();
}

QString KvTextFile::ReadLine()
{
    if (!m_pReadStream)
        m_pReadStream = std::make_unique<QTextStream>(&m_File);
    if (m_pReadStream->atEnd())
        return QString();
    return m_pReadStream->readLine();
}

unsigned short KvTextFile::WriteLine(const std::string& text)
{
    // The bytes as they are and a line end, flushed: what a text stream taking the
    // text as Latin-1 (which maps every byte to itself) writes, without building one
    // and its codec for every line.
    std::string line;
    line.reserve(text.size() + 1);
    line.append(text).push_back('\n');
    m_File.write(line.data(), static_cast<qint64>(line.size()));
    m_File.flush();
    return static_cast<unsigned short>(text.size() + 2);
}

unsigned short KvTextFile::WriteLine(const QString& text)
{
    std::vector<wchar_t> wide(static_cast<size_t>(text.size()) + 1, L'\0');
    text.toWCharArray(wide.data());
    QTextStream stream(&m_File);
    stream << static_cast<const void*>(wide.data()) << Qt::endl;
    m_File.flush();
    return static_cast<unsigned short>(text.size() + 2);
}

bool KvTextFile::atEnd() const
{
    if (m_pReadStream)
        return m_pReadStream->atEnd();
    return m_File.atEnd();
}

unsigned int KvTextFile::size() const
{
    return static_cast<unsigned int>(m_File.size());
}

LogFile::LogFile(const QString& path) : KvTextFile(path, true) {}

bool LogFile::AddMessage(const std::string& line)
{
    return AppendLine(line) != 0;
}

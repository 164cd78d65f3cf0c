#include "errorhandling/quality.h"
#include "errorhandling/quality_p.h"

#include "errorhandling/errorhandler.h"
#include "errorhandling/kvexception.h"

#include "errorhandling/qualitylock_p.h"

#include <atomic>

namespace {

QString fromWide(const wchar_t* text)
{
    return text ? QString::fromWCharArray(text) : QString();
}

void reportContractFailure(const QString& reason, const wchar_t* fileName, const QString& className,
                           unsigned short line)
{
    ErrorHandler& handler = ErrorHandler::Instance();
    QualityLock locker(handler.GetQualityMutex());
    KvException exception(reason, fromWide(fileName), className, QString(), line, kLibraryErrorId);
    IErrorHandler* errorHandler = ErrorHandler::Interface();
    errorHandler->ProtocolException(exception);
    errorHandler->PostErrorDialog(exception, false, -1, false);
}

// The lines block traces report since their first version (see kQualitySource).
constexpr unsigned short kBlockEntryLine = 129;
constexpr unsigned short kBlockExitLine = 136;

// Shared by every block tracer of the process. Atomic only so that tracers in
// different threads do not race; the depth itself is not per thread.
std::atomic<int> s_nBlockDepth{0};

} // namespace

void _Q_require(const wchar_t* fileName, unsigned short line)
{
    reportContractFailure(QStringLiteral("REQUIREMENT FAILED"), fileName, QString(), line);
}

void _Q_ensure(const wchar_t* fileName, unsigned short line)
{
    reportContractFailure(QStringLiteral("ENSURE FAILED"), fileName, QString(), line);
}

void _Q_assert(const wchar_t* expression, const wchar_t* fileName, unsigned short line)
{
    reportContractFailure(QLatin1String("ASSERTION FAILED ") + fromWide(expression), fileName, QString(),
                          line);
}

void _Q_premethod(const wchar_t* className, const wchar_t* fileName, unsigned short line)
{
    reportContractFailure(QStringLiteral("PREMETHOD FAILED"), fileName, fromWide(className), line);
}

void _Q_postmethod(const wchar_t* className, const wchar_t* fileName, unsigned short line)
{
    reportContractFailure(QStringLiteral("POSTMETHOD FAILED"), fileName, fromWide(className), line);
}

void _Q_Trace(const QString& text, const QString& fileName, unsigned short line)
{
    constexpr int maxMessageLength = 400;
    constexpr int maxPieces = 5;

    ErrorHandler& handler = ErrorHandler::Instance();
    QualityLock locker(handler.GetQualityMutex());
    const QString noName;
    if (text.size() <= maxMessageLength) {
        handler.ProtocolMessage(text, fileName, noName, noName, line, kTraceLevel);
        return;
    }

    // Leave room for the file name and line that the log line carries too.
    int chunk = 340 - QString::number(line).size() - fileName.size();
    if (chunk < 201)
        chunk = 200;
    const int length = text.size();
    const int parts = (length + chunk - 1) / chunk;
    const QString ofParts = QLatin1Char('/') + QString::number(parts) + QLatin1Char(']');

    for (int k = 1, pos = 0; pos < length && k <= maxPieces; ++k, pos += chunk) {
        // The piece length is the end position of the nominal chunk, so later
        // pieces are longer and overlap the next ones; log readers expect it.
        const QString piece = text.mid(pos, pos + chunk);
        QString marker;
        if (k < parts && k < maxPieces)
            marker =
                k == 1 ? QStringLiteral(" [to be continued; part: ") : QStringLiteral(" [message part: ");
        else if (pos + chunk >= length && k < maxPieces)
            marker = QStringLiteral(" [message end; part: ");
        else
            marker = QStringLiteral(" [message end (truncated); part: ");
        handler.ProtocolMessage(piece.left(maxMessageLength) + marker + QString::number(k) + ofParts,
                                fileName, noName, noName, line, kTraceLevel);
    }
}

std::wstring KvCutSourcePath(const wchar_t* path)
{
    if (!path)
        return std::wstring();
    const std::wstring full(path);
    const auto isSeparator = [](wchar_t c) { return c == L'/' || c == L'\\'; };

    std::wstring::size_type nameBegin = full.size();
    while (nameBegin > 0 && !isSeparator(full[nameBegin - 1]))
        --nameBegin;
    std::wstring name = full.substr(nameBegin);
    const std::wstring::size_type dot = name.rfind(L'.');
    if (dot != std::wstring::npos && dot > 0)
        name.erase(dot);
    if (nameBegin == 0)
        return name;

    std::wstring::size_type folderEnd = nameBegin - 1;
    std::wstring::size_type folderBegin = folderEnd;
    while (folderBegin > 0 && !isSeparator(full[folderBegin - 1]))
        --folderBegin;
    if (folderBegin == folderEnd)
        return name;
    return full.substr(folderBegin, folderEnd - folderBegin) + L'\\' + name;
}

BLOCK_TRACE::BLOCK_TRACE(QString name)
{
    if (ErrorHandler::Instance().GetMessageMask() & ErrorHandler::TraceMask)
        _Q_Trace(GetIndent() + name + QLatin1String(" {"), kQualitySource, kBlockEntryLine);
    ++s_nBlockDepth;
}

BLOCK_TRACE::~BLOCK_TRACE()
{
    --s_nBlockDepth;
    if (ErrorHandler::Instance().GetMessageMask() & ErrorHandler::TraceMask)
        _Q_Trace(GetIndent() + QLatin1Char('}'), kQualitySource, kBlockExitLine);
}

QString BLOCK_TRACE::GetIndent()
{
    const int depth = s_nBlockDepth.load();
    return QLatin1Char('*') + QString(depth > 0 ? depth : 0, QLatin1Char(' '));
}

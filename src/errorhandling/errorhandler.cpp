#include "errorhandling/errorhandler.h"

#include "errorhandling/quality_p.h"
#include "errorhandling/qualitylock_p.h"
#include "qthelpers/signalhandler.h"
#include <QCoreApplication>
#include <QDir>

std::unique_ptr<IMessageDialog> ErrorHandler::s_MessageDlg;
std::unique_ptr<ILogTracer> ErrorHandler::s_LogTracer;
std::unique_ptr<QObject> ErrorHandler::s_MessageDlgLifetimeHandler;

ILogTracer::~ILogTracer() = default;
IMessageDialog::~IMessageDialog() = default;
IErrorHandler::~IErrorHandler() = default;
IErrorHandlerBase::~IErrorHandlerBase() = default;

ErrorHandler::ExceptionBlocker::ExceptionBlocker()
{
    ErrorHandler::Instance().SetbBlockException(true);
}

ErrorHandler::ExceptionBlocker::~ExceptionBlocker()
{
    ErrorHandler::Instance().SetbBlockException(false);
}

ErrorHandler& ErrorHandler::Instance()
{
    static ErrorHandler instance;
    return instance;
}

IErrorHandler* ErrorHandler::Interface()
{
    return &Instance();
}

ErrorHandler::ErrorHandler()
    : QObject(nullptr), m_pQualityMutex(std::make_unique<QRecursiveMutex>()),
      m_pMessages(std::make_unique<MessageList>())
{
    qRegisterMetaType<QString>("QString");
    qRegisterMetaType<std::uint16_t>("std::uint16_t");
    qRegisterMetaType<std::uint8_t>("std::uint8_t");
    connect(this, &ErrorHandler::si_protocolMessage, this, &ErrorHandler::sl_protocolMessage,
            Qt::QueuedConnection);
    TurnLogFileOn();
}

ErrorHandler::~ErrorHandler() = default;

void ErrorHandler::ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                                   std::uint16_t line, std::uint8_t level)
{
    QualityLock locker(m_pQualityMutex.get());
    Q_EMIT si_protocolMessage(reason, fileName, className, methodName, line, level);
}

void ErrorHandler::sl_protocolMessage(QString reason, QString fileName, QString className, QString methodName,
                                      std::uint16_t line, std::uint8_t level)
{
    Log(KvException(reason, fileName, className, methodName, line, kLibraryErrorId), level);
}

void ErrorHandler::ProtocolException(const KvException& e)
{
    Log(e, 1);
}

void ErrorHandler::Log(const KvException& e, unsigned char level)
{
    // ProtocolException records in the caller's thread while queued messages
    // are recorded in the handler's; the quality mutex keeps them apart.
    QualityLock locker(m_pQualityMutex.get());
    if (m_bBlockExceptions)
        return;
    if (!m_bConfigured)
        Configure();

    const QString text = e.GetExceptionWideText(FieldList, level);
    m_pMessages->AddMessage(std::make_shared<Message>(text, e.GetErrorTime(), level));

    // The text file is the fallback for when the live log is not available.
    if (m_bLogFileOn && m_pLogFile && !(s_LogTracer && s_LogTracer->IsOpen()))
        m_pLogFile->AddMessage(e.GetExceptionAsciiText(Readable, level));

    if (s_LogTracer) {
        QString traceText = e.GetExceptionWideText(FieldList, level).simplified();
        traceText.remove(QLatin1Char('\n'));
        s_LogTracer->SendDataTrace(traceText);
    }
}

void ErrorHandler::Configure()
{
    if (!s_LogTracer)
        return;
    m_bConfigured = true;
    try {
        s_LogTracer->SendDataTrace(
            QStringLiteral("ErrorHandler::Configure() - MessageMask: %1 Configuration applied")
                .arg(m_nMessageMask));
    } catch (const KvException&) {
        m_bConfigured = false;
    }
}

void ErrorHandler::TurnLogFileOff()
{
    m_bLogFileOn = false;
    m_pLogFile.reset();
}

void ErrorHandler::TurnLogFileOn()
{
    if (m_bLogFileOn)
        return;
    m_bLogFileOn = true;
    QString path = QDir::tempPath();
    if (!path.endsWith(QDir::separator()))
        path += QDir::separator();
    m_pLogFile.reset();
    m_pLogFile = std::make_unique<LogFile>(path + QLatin1String("Logger.txt"));
}

int ErrorHandler::ShowErrorDialog(const KvException& e, bool b1, int n, bool b2, bool b3)
{
    if (!s_MessageDlg)
        return -2;
    return s_MessageDlg->ShowException(e, 1, b1, n, b2, b3);
}

int ErrorHandler::ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3)
{
    if (!s_MessageDlg)
        return -2;
    return s_MessageDlg->ShowText(text, 1, b1, n, b2, b3);
}

void ErrorHandler::PostErrorDialog(KvException& e, bool b1, int n, bool b2)
{
    if (s_MessageDlg)
        s_MessageDlg->PostException(e, 1, b1, n, b2);
}

void ErrorHandler::PostErrorDialog(const QString& text, bool b1, int n, bool b2)
{
    if (s_MessageDlg)
        s_MessageDlg->PostText(text, 1, b1, n, b2);
}

void ErrorHandler::ShowWarningDialog(QString text)
{
    if (s_MessageDlg)
        s_MessageDlg->ShowText(text, 254, true, -1, true, false);
}

void ErrorHandler::InitGetNextMessage(bool& atEnd, unsigned char level)
{
    m_nReadFilterLevel = level;
    m_bReadPastCursorRange = false;
    m_pMessages->SetCurrentPosition(0);
    atEnd = m_pMessages->GetList().empty();
    if (level != 0 && !atEnd) {
        GetNextMessage(atEnd);
        if (!atEnd) {
            m_bReadPastCursorRange = false;
            m_pMessages->SetCurrentPosition(
                static_cast<unsigned char>(m_pMessages->GetCurrentPosition() - 1));
        }
    }
}

QString ErrorHandler::GetNextMessage(bool& atEnd)
{
    // At most one pass over the positions the 8-bit cursor can reach.
    for (int step = 0; step < 256 && !m_bReadPastCursorRange; ++step) {
        const unsigned char position = m_pMessages->GetCurrentPosition();
        const std::shared_ptr<Message> message = m_pMessages->GetCurrentMessage();
        if (!message)
            break;
        m_pMessages->SetCurrentPosition(static_cast<unsigned char>(position + 1));
        if (position == 255)
            m_bReadPastCursorRange = true;
        if (m_nReadFilterLevel == 0 || message->GetWarningLevel() <= m_nReadFilterLevel) {
            atEnd = false;
            return message->GetText();
        }
    }
    atEnd = true;
    return QString();
}

void ErrorHandler::SetMessageMask(unsigned int mask)
{
    m_nMessageMask = mask;
}

void ErrorHandler::SetMessageMask(unsigned int bits, bool on)
{
    if (on)
        m_nMessageMask |= bits;
    else
        m_nMessageMask &= ~bits;
}

unsigned int ErrorHandler::GetMessageMask() const
{
    return m_nMessageMask;
}

void ErrorHandler::SetbBlockException(bool block)
{
    m_bBlockExceptions = block;
}

void ErrorHandler::trace(QString reason, QString fileName, QString className, QString methodName,
                         std::uint16_t line, std::uint8_t level)
{
    ProtocolMessage(reason, fileName, className, methodName, line, level);
}

void ErrorHandler::errorDialog(QString text, bool b1, int n, bool b2)
{
    PostErrorDialog(text, b1, n, b2);
}

ILogTracer* ErrorHandler::GetLogTracer()
{
    return s_LogTracer.get();
}

IMessageDialog* ErrorHandler::GetMessageDlg()
{
    return s_MessageDlg.get();
}

void ErrorHandler::SetLogTracer(std::unique_ptr<ILogTracer> tracer)
{
    QualityLock locker(Instance().GetQualityMutex());
    s_LogTracer = std::move(tracer);
}

void ErrorHandler::SetMessageDlg(std::unique_ptr<IMessageDialog> dialog)
{
    s_MessageDlg = std::move(dialog);
    QCoreApplication* app = QCoreApplication::instance();
    if (s_MessageDlgLifetimeHandler || !app)
        return;
    QObject* watcher = QObjectHelpers::SignalHandler::connectHandler<void()>(
        app, SIGNAL(aboutToQuit()), [] { s_MessageDlg.reset(); }, nullptr, Qt::AutoConnection);
    if (!watcher)
        return;
    // Kept apart from the application object, so it outlives it at exit.
    watcher->setParent(nullptr);
    s_MessageDlgLifetimeHandler.reset(watcher);
}

void ErrorHandler::AddUncaughtHandler(std::function<void()> handler)
{
    m_UncaughtHandlers.push_back(std::move(handler));
}

void ErrorHandler::NotifyUncaughtHandlers()
{
    for (const auto& handler : m_UncaughtHandlers)
        handler();
}

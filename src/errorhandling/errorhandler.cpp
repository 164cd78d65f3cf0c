#include "errorhandling/errorhandler.h"

#include "errorhandling/quality_p.h"
#include "errorhandling/qualitylock_p.h"
#include "qthelpers/signalhandler.h"
#include <QCoreApplication>
#include <QDir>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

// Reports waiting for the handler's thread. Its own mutex only guards the
// queue and is never held while waiting for the quality mutex, or the other
// way round while recording.
struct ErrorHandler::PendingReports
{
    struct Report
    {
        QString reason;
        QString fileName;
        QString className;
        QString methodName;
        std::uint16_t line;
        std::uint8_t level;
    };

    // How long another thread waits for the handler's thread to make room
    // before it takes the handler's thread for one that records nothing.
    static constexpr std::chrono::milliseconds ownerPatience{50};

    std::mutex mutex;
    std::condition_variable room;
    std::deque<Report> queue;
    // Counts reports taken out of the queue, so waiters see progress.
    std::uint64_t taken = 0;
    bool wakeUpPosted = false;
    // The handler's thread let a full queue wait for ownerPatience; until it
    // records again, a full queue is emptied by whoever finds it full.
    bool ownerIdle = false;
    QCoreApplication* watchedApp = nullptr;

    // Blocks while the queue is full and the handler's thread keeps taking
    // reports out of it.
    void waitForRoom()
    {
        std::unique_lock<std::mutex> lock(mutex);
        while (static_cast<int>(queue.size()) >= MaxPendingReports && !ownerIdle) {
            const std::uint64_t seen = taken;
            if (!room.wait_for(lock, ownerPatience, [&] {
                    return static_cast<int>(queue.size()) < MaxPendingReports || taken != seen;
                }))
                ownerIdle = true;
        }
    }
};

namespace {

// The handler alive, for the flush at the end of an application, which may
// come after the handler's own end at exit.
std::atomic<ErrorHandler*> s_pLiveHandler{nullptr};

void flushAtApplicationEnd()
{
    if (ErrorHandler* handler = s_pLiveHandler.load())
        handler->flush();
}

} // namespace

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
      m_pMessages(std::make_unique<MessageList>()), m_pPending(std::make_unique<PendingReports>())
{
    qRegisterMetaType<QString>("QString");
    qRegisterMetaType<std::uint16_t>("std::uint16_t");
    qRegisterMetaType<std::uint8_t>("std::uint8_t");
    TurnLogFileOn();
    s_pLiveHandler = this;
}

ErrorHandler::~ErrorHandler()
{
    s_pLiveHandler = nullptr;
    flush();
}

void ErrorHandler::ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                                   std::uint16_t line, std::uint8_t level)
{
    PendingReports& pending = *m_pPending;
    // Another thread waits for room before it takes the quality mutex, which
    // the handler's thread needs to make room; a thread that already holds it
    // must not wait at all.
    const bool mayWait = QThread::currentThread() != thread() && !QualityLock::heldByThisThread();
    for (;;) {
        if (mayWait)
            pending.waitForRoom();
        QualityLock locker(m_pQualityMutex.get());
        std::unique_lock<std::mutex> lock(pending.mutex);
        if (static_cast<int>(pending.queue.size()) >= MaxPendingReports) {
            if (mayWait && !pending.ownerIdle)
                continue; // another report took the room first
            // No thread can add to the queue while this one holds the quality
            // mutex, so recording it here keeps the order.
            lock.unlock();
            DeliverPending();
            lock.lock();
        }
        pending.queue.push_back({reason, fileName, className, methodName, line, level});
        const bool wakeUp = !pending.wakeUpPosted;
        pending.wakeUpPosted = true;
        lock.unlock();
        Q_EMIT si_protocolMessage(reason, fileName, className, methodName, line, level);
        if (wakeUp)
            PostWakeUp();
        return;
    }
}

void ErrorHandler::PostWakeUp()
{
    WatchApplication();
    QMetaObject::invokeMethod(
        this,
        [this] {
            {
                std::lock_guard<std::mutex> lock(m_pPending->mutex);
                m_pPending->wakeUpPosted = false;
                m_pPending->ownerIdle = false;
            }
            DeliverPending();
        },
        Qt::QueuedConnection);
}

void ErrorHandler::flush()
{
    DeliverPending();
}

void ErrorHandler::DeliverPending()
{
    PendingReports& pending = *m_pPending;
    for (;;) {
        // Taking reports and recording them is one step under the quality
        // mutex, so records keep the order of the queue whoever records. All
        // that wait are taken at once: the waiting reporters are woken once for
        // the whole room rather than once per report, and refill the queue
        // while these are recorded.
        QualityLock locker(m_pQualityMutex.get());
        std::deque<PendingReports::Report> reports;
        {
            std::lock_guard<std::mutex> lock(pending.mutex);
            if (pending.queue.empty())
                return;
            reports.swap(pending.queue);
            pending.taken += reports.size();
        }
        pending.room.notify_all();
        for (PendingReports::Report& report : reports)
            sl_protocolMessage(std::move(report.reason), std::move(report.fileName),
                               std::move(report.className), std::move(report.methodName), report.line,
                               report.level);
    }
}

// Pending reports are recorded when the application is about to leave its
// event loop and, for programs that never enter one, when it is destroyed.
void ErrorHandler::WatchApplication()
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app)
        return;
    {
        std::lock_guard<std::mutex> lock(m_pPending->mutex);
        if (m_pPending->watchedApp == app)
            return;
        m_pPending->watchedApp = app;
    }
    connect(app, &QCoreApplication::aboutToQuit, this, &ErrorHandler::flush, Qt::DirectConnection);
    connect(
        app, &QObject::destroyed, this,
        [this] {
            std::lock_guard<std::mutex> lock(m_pPending->mutex);
            m_pPending->watchedApp = nullptr;
        },
        Qt::DirectConnection);
    // Post routines run once, from the destructor of the application object.
    qAddPostRoutine(flushAtApplicationEnd);
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

// The log file, the message list and the dialog are touched under the quality
// mutex: contract checks and a reporting thread that finds the queue full
// record in their own threads.
void ErrorHandler::TurnLogFileOff()
{
    QualityLock locker(m_pQualityMutex.get());
    m_bLogFileOn = false;
    m_pLogFile.reset();
}

void ErrorHandler::TurnLogFileOn()
{
    QualityLock locker(m_pQualityMutex.get());
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
    QualityLock locker(m_pQualityMutex.get());
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
    QualityLock locker(m_pQualityMutex.get());
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
        m_nMessageMask.fetch_or(bits);
    else
        m_nMessageMask.fetch_and(~bits);
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
    {
        QualityLock locker(Instance().GetQualityMutex());
        s_MessageDlg = std::move(dialog);
    }
    QCoreApplication* app = QCoreApplication::instance();
    if (s_MessageDlgLifetimeHandler || !app)
        return;
    QObject* watcher = QObjectHelpers::SignalHandler::connectHandler<void()>(
        app, SIGNAL(aboutToQuit()),
        [] {
            QualityLock locker(Instance().GetQualityMutex());
            s_MessageDlg.reset();
        },
        nullptr, Qt::AutoConnection);
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

#ifndef KVBASE_ERRORHANDLING_ERRORHANDLER_H
#define KVBASE_ERRORHANDLING_ERRORHANDLER_H

#include "kvbase_export.h"

#include "errorhandling/kvexception.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"

#include <QObject>
#include <QRecursiveMutex>
#include <QString>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// Receives the handler's records for a live log (another process reads them).
/// While IsOpen() is true the text log file is not written.
class KVBASE_EXPORT ILogTracer
{
public:
    virtual ~ILogTracer();
    virtual void SendDataTrace(QString text) = 0;
    virtual void ReportException(QString text) = 0;
    virtual bool IsOpen() = 0;
};

/// Shows or queues messages for the user; implemented by the application.
/// The trailing bool/int arguments are passed through from the ErrorHandler
/// call unchanged; their meaning belongs to the application.
class KVBASE_EXPORT IMessageDialog
{
public:
    virtual ~IMessageDialog();
    virtual int ShowText(const QString& text, unsigned char level, bool, int, bool, bool) = 0;
    virtual int ShowException(const KvException& e, unsigned char level, bool, int, bool, bool) = 0;
    /// Never called by ErrorHandler; applications use it to show the message list.
    virtual void ShowMessageList() = 0;
    virtual void PostException(KvException& e, unsigned char level, bool, int, bool) = 0;
    virtual void PostText(const QString& text, unsigned char level, bool, int, bool) = 0;
};

/// The full face of the error handler.
class KVBASE_EXPORT IErrorHandler
{
public:
    virtual ~IErrorHandler();
    virtual void ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                                 std::uint16_t line, std::uint8_t level) = 0;
    virtual void TurnLogFileOff() = 0;
    virtual void TurnLogFileOn() = 0;
    virtual int ShowErrorDialog(const KvException& e, bool, int, bool, bool) = 0;
    virtual int ShowErrorDialog(const QString& text, bool, int, bool, bool) = 0;
    virtual void PostErrorDialog(KvException& e, bool, int, bool) = 0;
    virtual void PostErrorDialog(const QString& text, bool, int, bool) = 0;
    virtual void ProtocolException(const KvException& e) = 0;
    virtual void InitGetNextMessage(bool& atEnd, unsigned char level) = 0;
    virtual QString GetNextMessage(bool& atEnd) = 0;
    virtual void SetMessageMask(unsigned int mask) = 0;
    virtual unsigned int GetMessageMask() const = 0;
    virtual void ShowWarningDialog(QString text) = 0;

protected:
    virtual void SetbBlockException(bool block) = 0;
};

/// The minimal face for code that only traces and asks for error dialogs.
class KVBASE_EXPORT IErrorHandlerBase
{
public:
    virtual ~IErrorHandlerBase();
    virtual void trace(QString reason, QString fileName, QString className, QString methodName,
                       std::uint16_t line, std::uint8_t level) = 0;
    virtual void errorDialog(QString text, bool, int, bool) = 0;
};

/// The process-wide sink for every reported failure and message.
///
/// Messages (level 1 error, 2..254 warning, 255 information, 3 developer
/// trace) may come from any thread; ProtocolMessage queues them, in the order
/// they are made, for the thread that first called Instance() (the handler's
/// thread). There each is added to the message list (newest first, 100
/// entries), written to "Logger.txt" in the temporary directory unless an
/// open log tracer takes it, and passed to the log tracer. ProtocolException
/// records at once in the caller's thread. One recursive mutex, the quality
/// mutex, serialises all reporting and recording.
///
/// Delivery: pending reports are recorded when the handler's thread runs its
/// event loop, at flush(), when the application is about to quit or its
/// QCoreApplication is destroyed, and when the handler is destroyed at process
/// exit, so none is lost. At most MaxPendingReports wait: when the queue is
/// full, a report made in the handler's thread first records what is pending;
/// a report from another thread waits until the handler's thread makes room,
/// unless that thread has recorded nothing for 50 ms (it runs no event loop,
/// or is blocked) or the reporting thread holds the quality mutex, in which
/// case the reporting thread records the pending reports itself under the
/// quality mutex. Memory stays bounded, and no thread waits for a thread that
/// waits for it.
///
/// A program whose handler thread runs no event loop (a batch tool, a
/// service's start-up, a test) need not do anything for its reports to reach
/// the list and "Logger.txt" in the end, but must call flush() before it reads
/// the message list or the log file, or wherever they must be current. Code
/// that reads the message list while other threads report holds the quality
/// mutex.
class KVBASE_EXPORT ErrorHandler : public QObject, public IErrorHandler, public IErrorHandlerBase
{
    Q_OBJECT

public:
    /// Mask bit that switches block traces and timed-call traces on (set by default).
    static constexpr unsigned int TraceMask = 0x20;
    /// Reports that may wait for the handler's thread (about 150 bytes each).
    static constexpr int MaxPendingReports = 4096;

    /// Blocks recording while it lives. Guards do not nest: the first one to
    /// end unblocks, even while an outer guard still lives.
    class KVBASE_EXPORT ExceptionBlocker
    {
    public:
        ExceptionBlocker();
        ~ExceptionBlocker();
        ExceptionBlocker(const ExceptionBlocker&) = delete;
        ExceptionBlocker& operator=(const ExceptionBlocker&) = delete;
    };

    static ErrorHandler& Instance();
    static IErrorHandler* Interface();

    ~ErrorHandler() override;

    /// Queues the report (see the class comment); si_protocolMessage is emitted
    /// with it in the reporting thread.
    void ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                         std::uint16_t line, std::uint8_t level) override;
    void ProtocolException(const KvException& e) override;
    /// Records every pending report now, in the calling thread and in the order
    /// they were made. Callable from any thread.
    void flush();

    void TurnLogFileOff() override;
    void TurnLogFileOn() override;

    /// -2 when no message dialog is installed, else the dialog's result.
    int ShowErrorDialog(const KvException& e, bool b1, int n, bool b2, bool b3) override;
    int ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3) override;
    void PostErrorDialog(KvException& e, bool b1, int n, bool b2) override;
    void PostErrorDialog(const QString& text, bool b1, int n, bool b2) override;
    void ShowWarningDialog(QString text) override;

    /// Starts a newest-first walk over the message list; a non-zero level
    /// skips messages whose level is numerically greater (milder).
    void InitGetNextMessage(bool& atEnd, unsigned char level) override;
    QString GetNextMessage(bool& atEnd) override;

    void SetMessageMask(unsigned int mask) override;
    /// Sets (on) or clears (off) the given bits.
    void SetMessageMask(unsigned int bits, bool on);
    unsigned int GetMessageMask() const override;

    void trace(QString reason, QString fileName, QString className, QString methodName, std::uint16_t line,
               std::uint8_t level) override;
    void errorDialog(QString text, bool b1, int n, bool b2) override;

    LogFile* GetLogFile() const { return m_pLogFile.get(); }
    MessageList* GetMessages() const { return m_pMessages.get(); }
    QRecursiveMutex* GetQualityMutex() const { return m_pQualityMutex.get(); }

    static ILogTracer* GetLogTracer();
    static IMessageDialog* GetMessageDlg();
    /// Takes ownership; the previous tracer is destroyed.
    static void SetLogTracer(std::unique_ptr<ILogTracer> tracer);
    /// Takes ownership; the previous dialog is destroyed. The dialog is
    /// dropped when the application is about to quit, so requests made during
    /// shutdown are ignored.
    static void SetMessageDlg(std::unique_ptr<IMessageDialog> dialog);

    void AddUncaughtHandler(std::function<void()> handler);
    /// Calls the handlers in insertion order; an empty one throws std::bad_function_call.
    void NotifyUncaughtHandlers();

Q_SIGNALS:
    void si_protocolMessage(QString reason, QString fileName, QString className, QString methodName,
                            std::uint16_t line, std::uint8_t level);

protected Q_SLOTS:
    void sl_protocolMessage(QString reason, QString fileName, QString className, QString methodName,
                            std::uint16_t line, std::uint8_t level);

protected:
    void SetbBlockException(bool block) override;

private:
    struct PendingReports;

    ErrorHandler();
    void Log(const KvException& e, unsigned char level);
    void Configure();
    void DeliverPending();
    void PostWakeUp();
    void WatchApplication();

    std::atomic<bool> m_bBlockExceptions{false};
    bool m_bConfigured = false;
    bool m_bLogFileOn = false;
    unsigned char m_nReadFilterLevel = 0;
    // The read cursor is 8-bit; this stops a walk that has passed position 255
    // instead of letting it start over at the newest message forever.
    bool m_bReadPastCursorRange = false;
    std::atomic<unsigned int> m_nMessageMask{TraceMask};
    std::unique_ptr<QRecursiveMutex> m_pQualityMutex;
    std::unique_ptr<LogFile> m_pLogFile;
    std::unique_ptr<MessageList> m_pMessages;
    std::vector<std::function<void()>> m_UncaughtHandlers;
    std::unique_ptr<PendingReports> m_pPending;

    static std::unique_ptr<IMessageDialog> s_MessageDlg;
    static std::unique_ptr<ILogTracer> s_LogTracer;
    static std::unique_ptr<QObject> s_MessageDlgLifetimeHandler;
};

#endif

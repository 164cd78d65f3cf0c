#ifndef KVBASE_ERRORHANDLING_ERRORHANDLER_H
#define KVBASE_ERRORHANDLING_ERRORHANDLER_H

/// \file errorhandling/errorhandler.h
/// \brief The process-wide error handler and the plug-in interfaces it feeds.

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
///
/// Installed with ErrorHandler::SetLogTracer(), which takes ownership. The
/// handler calls it while holding its quality mutex, one call at a time, but
/// not always from one thread: records of ErrorHandler::ProtocolMessage() come
/// from the handler's thread, records of ErrorHandler::ProtocolException() and
/// of the contract checks from the thread that reports. An implementation that
/// touches thread-bound objects must hand the work over itself.
class KVBASE_EXPORT ILogTracer
{
public:
    virtual ~ILogTracer();
    /// One record, in the "\@"-separated layout of KvException::GetExceptionWideText
    /// (FieldList), simplified and without line feeds; also the configuration line
    /// "ErrorHandler::Configure() - MessageMask: <mask> Configuration applied".
    /// Called as described for the class; must not throw.
    /// \param text the record, never containing a line feed
    virtual void SendDataTrace(QString text) = 0;
    /// Reports an exception text to the live log. ErrorHandler never calls it;
    /// it is there for applications that report to the live log directly, in
    /// their own thread.
    /// \param text the exception text, in any layout the application chooses
    virtual void ReportException(QString text) = 0;
    /// Whether the live log takes records now; while true, "Logger.txt" is not
    /// written. Called before every record, from the threads described for
    /// the class.
    /// \return true when the live log is available
    virtual bool IsOpen() = 0;
};

/// Shows or queues messages for the user; implemented by the application and
/// installed with ErrorHandler::SetMessageDlg(), which takes ownership.
/// The trailing bool/int arguments are passed through from the ErrorHandler
/// call unchanged; their meaning belongs to the application.
///
/// Threads: the Show functions run in the thread that called
/// ErrorHandler::ShowErrorDialog() or ErrorHandler::ShowWarningDialog(),
/// normally the GUI thread. The Post functions run in any thread that reports:
/// every failed contract check (KV_ASSERT and its siblings) posts from its own
/// thread while holding the handler's quality mutex, so they must only queue
/// the message (for example with a queued signal to the GUI thread) and
/// return.
class KVBASE_EXPORT IMessageDialog
{
public:
    virtual ~IMessageDialog();
    /// Shows a text and waits for the user; called in the thread that asked
    /// for the dialog.
    /// \param text  the message
    /// \param level message level: 1 error, 2..254 warning (254 from
    ///              ErrorHandler::ShowWarningDialog()), 255 information
    /// \return the application's result, handed back by ErrorHandler::ShowErrorDialog()
    virtual int ShowText(const QString& text, unsigned char level, bool, int, bool, bool) = 0;
    /// Shows an exception and waits for the user; called in the thread that
    /// asked for the dialog.
    /// \param e     the exception to show
    /// \param level message level, 1 (error) from ErrorHandler::ShowErrorDialog()
    /// \return the application's result, handed back by ErrorHandler::ShowErrorDialog()
    virtual int ShowException(const KvException& e, unsigned char level, bool, int, bool, bool) = 0;
    /// Never called by ErrorHandler; applications use it to show the message
    /// list, in their GUI thread.
    virtual void ShowMessageList() = 0;
    /// Queues an exception for showing and returns at once; called from any
    /// thread, see the class description.
    /// \param e     the exception; the dialog may copy it, the reference ends with the call
    /// \param level message level, 1 (error) from ErrorHandler::PostErrorDialog()
    virtual void PostException(KvException& e, unsigned char level, bool, int, bool) = 0;
    /// Queues a text for showing and returns at once; called from any thread.
    /// \param text  the message
    /// \param level message level, 1 (error) from ErrorHandler::PostErrorDialog()
    virtual void PostText(const QString& text, unsigned char level, bool, int, bool) = 0;
};

/// The full face of the error handler, as ErrorHandler::Interface() returns
/// it; ErrorHandler is its one implementation, and the descriptions here are
/// its behaviour.
class KVBASE_EXPORT IErrorHandler
{
public:
    virtual ~IErrorHandler();
    /// Records a message: queued to the handler's thread, which adds it to the
    /// message list, to "Logger.txt" (unless an open log tracer takes it) and
    /// to the log tracer, as a KvException with error id 0xFFFFFFFF.
    /// Any thread may call it; see ErrorHandler for when the report is recorded.
    /// \param reason     what happened
    /// \param fileName   cut source path, such as "coord\\maskconv"
    /// \param className  reporting class, may be empty
    /// \param methodName reporting method, may be empty
    /// \param line       source line, 0..65535
    /// \param level      1 error, 2..254 warning, 255 information; 3 for developer traces
    virtual void ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                                 std::uint16_t line, std::uint8_t level) = 0;
    /// Stops writing "Logger.txt" and closes it. Call from the handler's thread.
    virtual void TurnLogFileOff() = 0;
    /// Opens "Logger.txt" in QDir::tempPath() again (writing from its start)
    /// if it is off; on at construction. Call from the handler's thread.
    virtual void TurnLogFileOn() = 0;
    /// Shows an exception as an error (level 1) through the installed
    /// IMessageDialog and waits for it. Call from the GUI thread.
    /// \param e the exception to show
    /// \return the dialog's result, or -2 when no dialog is installed (also during shutdown)
    virtual int ShowErrorDialog(const KvException& e, bool, int, bool, bool) = 0;
    /// Shows a text as an error (level 1) through the installed IMessageDialog
    /// and waits for it. Call from the GUI thread.
    /// \param text the message
    /// \return the dialog's result, or -2 when no dialog is installed (also during shutdown)
    virtual int ShowErrorDialog(const QString& text, bool, int, bool, bool) = 0;
    /// Asks the installed IMessageDialog to show an exception as an error
    /// later; does nothing without a dialog. Any thread may call it.
    /// \param e the exception to show
    virtual void PostErrorDialog(KvException& e, bool, int, bool) = 0;
    /// Asks the installed IMessageDialog to show a text as an error later;
    /// does nothing without a dialog. Any thread may call it.
    /// \param text the message
    virtual void PostErrorDialog(const QString& text, bool, int, bool) = 0;
    /// Records an exception as an error (level 1) at once, in the calling
    /// thread, the same three ways as ProtocolMessage(). Any thread may call it.
    /// \param e the exception to record
    virtual void ProtocolException(const KvException& e) = 0;
    /// Starts a newest-first walk over the message list. Call from the
    /// handler's thread.
    /// \param atEnd set to true when there is nothing to read
    /// \param level 0 for every message, else the mildest level to return:
    ///              messages whose level is numerically greater are skipped
    virtual void InitGetNextMessage(bool& atEnd, unsigned char level) = 0;
    /// The next message text of the walk started by InitGetNextMessage(), in
    /// the "\@"-separated layout ("!\@reason\@file\@line\@class\@method\@hh:mm:ss").
    /// Only the first 256 entries of the list can be reached.
    /// Call from the handler's thread.
    /// \param atEnd set to true, with an empty result, when no message is left
    /// \return the message text
    virtual QString GetNextMessage(bool& atEnd) = 0;
    /// Replaces the message mask; bit 0x20 (ErrorHandler::TraceMask) switches
    /// block and timing traces on. Any thread may call it.
    /// \param mask the new mask
    virtual void SetMessageMask(unsigned int mask) = 0;
    /// The message mask, 0x20 by default. Any thread may call it.
    /// \return the mask
    virtual unsigned int GetMessageMask() const = 0;
    /// Shows a warning (level 254) through the installed IMessageDialog with
    /// the arguments true, -1, true, false; does nothing without a dialog.
    /// Call from the GUI thread.
    /// \param text the warning
    virtual void ShowWarningDialog(QString text) = 0;

protected:
    /// While blocked, nothing is recorded; see ErrorHandler::ExceptionBlocker.
    /// \param block true to drop messages, false to record them again
    virtual void SetbBlockException(bool block) = 0;
};

/// The minimal face for code that only traces and asks for error dialogs.
class KVBASE_EXPORT IErrorHandlerBase
{
public:
    virtual ~IErrorHandlerBase();
    /// Same as IErrorHandler::ProtocolMessage(). Any thread may call it.
    /// \param reason     what happened
    /// \param fileName   cut source path
    /// \param className  reporting class, may be empty
    /// \param methodName reporting method, may be empty
    /// \param line       source line, 0..65535
    /// \param level      1 error, 2..254 warning, 255 information; 3 for developer traces
    virtual void trace(QString reason, QString fileName, QString className, QString methodName,
                       std::uint16_t line, std::uint8_t level) = 0;
    /// Same as IErrorHandler::PostErrorDialog() with a text. Any thread may call it.
    /// \param text the message
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
///
/// \code
/// int main(int argc, char** argv)
/// {
///     QApplication app(argc, argv);
///     ErrorHandler& handler = ErrorHandler::Instance();       // lives in the GUI thread
///     ErrorHandler::SetMessageDlg(std::make_unique<MyMessageBox>());
///     handler.ProtocolMessage(QStringLiteral("tuner lost"), QStringLiteral("radio\\tuner"),
///                             QStringLiteral("Tuner"), QStringLiteral("poll"), 120, 2);
///     return app.exec();                                       // records the queued message
/// }
/// \endcode
class KVBASE_EXPORT ErrorHandler : public QObject, public IErrorHandler, public IErrorHandlerBase
{
    Q_OBJECT

public:
    /// Mask bit that switches block traces and timed-call traces on (set by default).
    static constexpr unsigned int TraceMask = 0x20;
    /// Reports that may wait for the handler's thread (about 150 bytes each).
    static constexpr int MaxPendingReports = 4096;

    /// Blocks recording while it lives. Guards do not nest: the first one to
    /// end unblocks, even while an outer guard still lives. The block is
    /// process-wide, whichever thread holds the guard.
    class KVBASE_EXPORT ExceptionBlocker
    {
    public:
        /// Blocks recording.
        ExceptionBlocker();
        /// Unblocks recording.
        ~ExceptionBlocker();
        ExceptionBlocker(const ExceptionBlocker&) = delete;
        ExceptionBlocker& operator=(const ExceptionBlocker&) = delete;
    };

    /// The singleton, created by the first call (thread-safe) and destroyed
    /// at process exit. It lives in the thread of that first call, which must
    /// run a Qt event loop for queued messages to be recorded.
    /// \return the error handler
    static ErrorHandler& Instance();
    /// The singleton's IErrorHandler face. Any thread may call it.
    /// \return never null
    static IErrorHandler* Interface();

    ~ErrorHandler() override;

    /// Queues the report (see the class comment); si_protocolMessage is emitted
    /// with it in the reporting thread.
    /// \param reason     what happened
    /// \param fileName   cut source path, such as "coord\\maskconv"
    /// \param className  reporting class, may be empty
    /// \param methodName reporting method, may be empty
    /// \param line       source line, 0..65535
    /// \param level      1 error, 2..254 warning, 255 information; 3 for developer traces
    void ProtocolMessage(QString reason, QString fileName, QString className, QString methodName,
                         std::uint16_t line, std::uint8_t level) override;
    void ProtocolException(const KvException& e) override;
    /// Records every pending report now, in the calling thread and in the order
    /// they were made. Callable from any thread.
    void flush();

    void TurnLogFileOff() override;
    void TurnLogFileOn() override;

    int ShowErrorDialog(const KvException& e, bool b1, int n, bool b2, bool b3) override;
    int ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3) override;
    void PostErrorDialog(KvException& e, bool b1, int n, bool b2) override;
    void PostErrorDialog(const QString& text, bool b1, int n, bool b2) override;
    void ShowWarningDialog(QString text) override;

    void InitGetNextMessage(bool& atEnd, unsigned char level) override;
    QString GetNextMessage(bool& atEnd) override;

    void SetMessageMask(unsigned int mask) override;
    /// Sets or clears some bits of the message mask. Any thread may call it.
    /// \param bits the bits to change
    /// \param on   true sets them, false clears them
    void SetMessageMask(unsigned int bits, bool on);
    unsigned int GetMessageMask() const override;

    void trace(QString reason, QString fileName, QString className, QString methodName, std::uint16_t line,
               std::uint8_t level) override;
    void errorDialog(QString text, bool b1, int n, bool b2) override;

    /// The text log "Logger.txt", owned by the handler; use it in the handler's thread.
    /// \return null while the log file is off
    LogFile* GetLogFile() const { return m_pLogFile.get(); }
    /// The message list (newest first, 100 entries), owned by the handler;
    /// read it in the handler's thread.
    /// \return never null
    MessageList* GetMessages() const { return m_pMessages.get(); }
    /// The recursive mutex that serialises all reporting; lock it to keep
    /// reports out while several calls must stay together. Any thread may call it.
    /// \return never null
    QRecursiveMutex* GetQualityMutex() const { return m_pQualityMutex.get(); }

    /// The installed log tracer. Use it in the handler's thread.
    /// \return null when none is installed
    static ILogTracer* GetLogTracer();
    /// The installed message dialog. Use it in the GUI thread.
    /// \return null when none is installed or after the application began to quit
    static IMessageDialog* GetMessageDlg();
    /// Installs the log tracer; takes ownership and destroys the previous one.
    /// Any thread may call it; it waits for a report in progress.
    /// \param tracer the new tracer, or null to remove it
    static void SetLogTracer(std::unique_ptr<ILogTracer> tracer);
    /// Installs the message dialog; takes ownership and destroys the previous
    /// one. The dialog is dropped when the application is about to quit, so
    /// requests made during shutdown are ignored. Call from the GUI thread,
    /// after the QCoreApplication exists.
    /// \param dialog the new dialog, or null to remove it
    static void SetMessageDlg(std::unique_ptr<IMessageDialog> dialog);

    /// Adds a function for NotifyUncaughtHandlers(). Not locked: call from
    /// one thread, normally during start-up.
    /// \param handler called on notification; must not be empty
    void AddUncaughtHandler(std::function<void()> handler);
    /// Calls the handlers in insertion order, in the calling thread; an empty
    /// one throws std::bad_function_call.
    void NotifyUncaughtHandlers();

Q_SIGNALS:
    /// Carries ProtocolMessage() to the handler's thread (queued); the
    /// arguments are those of ProtocolMessage().
    /// \param reason     what happened
    /// \param fileName   cut source path
    /// \param className  reporting class
    /// \param methodName reporting method
    /// \param line       source line
    /// \param level      message level
    void si_protocolMessage(QString reason, QString fileName, QString className, QString methodName,
                            std::uint16_t line, std::uint8_t level);

protected Q_SLOTS:
    /// Records one queued message in the handler's thread.
    /// \param reason     what happened
    /// \param fileName   cut source path
    /// \param className  reporting class
    /// \param methodName reporting method
    /// \param line       source line
    /// \param level      message level
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

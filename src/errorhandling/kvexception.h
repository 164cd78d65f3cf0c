#ifndef KVBASE_ERRORHANDLING_KVEXCEPTION_H
#define KVBASE_ERRORHANDLING_KVEXCEPTION_H

/// \file errorhandling/kvexception.h
/// \brief KvException, the library's one exception type, and its text layouts.

#include "kvbase_export.h"

#include <QString>
#include <QTime>

#include <exception>
#include <string>
#include <vector>

/// Text layouts of KvException::GetExceptionWideText. Other values (valid
/// ones, by the fixed underlying type) render as "Unknown FormatMode Selected".
enum KvExceptionTextFormat : int
{
    ReasonOnly = 1, ///< the reason text alone
    FieldList = 2,  ///< code\@reason\@file\@line\@class\@method\@hh:mm:ss, for machine reading
    Readable = 3    ///< one human-readable line ending in a line feed
};

/// The library's one exception type: what went wrong, where (file, line,
/// class, method), when (local time of day at construction) and an error id.
/// A plain value: copies keep the source's time. Reentrant, never throws.
///
/// Message levels used by the text layouts: 1 error, 2..254 warning of that
/// level (0 renders as a warning of level 0 too), 255 information.
///
/// \code
/// const KvException e(QStringLiteral("Division by zero"), QStringLiteral("calc"),
///                     QStringLiteral("Calc"), QStringLiteral("Run"), 42, 0);
/// e.GetExceptionWideText(FieldList, 1);   // "!@Division by zero@calc@42@Calc@Run@10:15:02"
/// e.GetExceptionWideText(Readable, 1);    // "Error::\t10:15:02:\tDivision by zero in file calc ..."
/// ErrorHandler::Instance().ProtocolException(e);
/// \endcode
class KVBASE_EXPORT KvException : public std::exception
{
public:
    /// Reason "NO REASON", file "NO FILENAME", class "NO CLASSNAME", method
    /// "NO METHODNAME", line 0, error id 0, time now.
    KvException();
    /// Stores the texts as given (an empty one stays empty); the time is now.
    /// \param reason     what went wrong
    /// \param fileName   cut source path, such as "coord\\maskconv"
    /// \param className  the class that raised it
    /// \param methodName the method that raised it
    /// \param line       source line
    /// \param errorId    numeric code; the contract checks use 0xFFFFFFFF
    KvException(QString reason, QString fileName, QString className, QString methodName, unsigned int line,
                unsigned int errorId);
    /// As the QString constructor; the reason is UTF-8, the three C strings
    /// Latin-1, and a null pointer gives an empty string.
    /// \param reason     what went wrong, UTF-8
    /// \param fileName   cut source path, Latin-1, may be null
    /// \param className  the class that raised it, Latin-1, may be null
    /// \param methodName the method that raised it, Latin-1, may be null
    /// \param line       source line
    /// \param errorId    numeric code
    KvException(std::string reason, const char* fileName, const char* className, const char* methodName,
                unsigned int line, unsigned int errorId);
    /// Copies all fields, the time included.
    /// \param other the exception to copy
    KvException(const KvException& other);
    /// Copies all fields, the time included.
    /// \param other the exception to copy
    /// \return this exception
    KvException& operator=(const KvException& other);
    ~KvException() override;

    /// Equal when time, texts (case-sensitive), line and error id are equal.
    /// \param other the exception to compare with
    /// \return true when all seven fields are equal
    bool operator==(const KvException& other) const;
    /// The negation of operator==().
    /// \param other the exception to compare with
    /// \return true when any field differs
    bool operator!=(const KvException& other) const;

    /// GetExceptionWideText() converted to UTF-8; honours overrides of the wide text.
    /// \param format the text layout
    /// \param level  message level: 1 error, 2..254 warning, 255 information
    /// \return the text in UTF-8
    virtual std::string GetExceptionAsciiText(KvExceptionTextFormat format, unsigned char level) const;
    /// The exception as text in one of three layouts (see KvExceptionTextFormat).
    /// Level 1 is labelled "Error:" with code "!", 255 "Info:" with an empty
    /// code, any other N "Warning (Level N)" with code N. The Readable layout
    /// appends ":\t" to the label, so errors begin "Error::\t" on purpose.
    /// \param format the text layout; any other value gives "Unknown FormatMode Selected"
    /// \param level  message level, 0..255
    /// \return the text
    virtual QString GetExceptionWideText(KvExceptionTextFormat format, unsigned char level) const;

    /// \return what went wrong
    const QString& GetErrorReason() const { return m_strErrorReason; }
    /// \return the cut source path of the raising file
    const QString& GetFileName() const { return m_strFileName; }
    // Without "Get", unlike its siblings: applications call it by this name.
    /// \return the class that raised it
    const QString& ClassName() const { return m_strClassName; }
    /// \return the method that raised it
    const QString& GetMethodName() const { return m_strMethodName; }
    /// \return the local time of day of construction (or as set)
    const QTime& GetErrorTime() const { return m_ErrorTime; }
    /// \return the source line
    unsigned int GetLineNumber() const { return m_nLineNumber; }
    /// \return the numeric code; 0xFFFFFFFF for contract checks
    unsigned int GetErrorId() const { return m_nErrorId; }

    /// \param reason what went wrong
    void SetErrorReason(const QString& reason) { m_strErrorReason = reason; }
    /// \param fileName cut source path
    void SetFileName(const QString& fileName) { m_strFileName = fileName; }
    /// \param className the raising class
    void SetClassName(const QString& className) { m_strClassName = className; }
    /// \param methodName the raising method
    void SetMethodName(const QString& methodName) { m_strMethodName = methodName; }
    /// \param time local time of day
    void SetErrorTime(const QTime& time) { m_ErrorTime = time; }
    /// \param line source line
    void SetLineNumber(unsigned int line) { m_nLineNumber = line; }
    /// \param errorId numeric code
    void SetErrorId(unsigned int errorId) { m_nErrorId = errorId; }

private:
    QTime m_ErrorTime;
    QString m_strErrorReason;
    QString m_strFileName;
    QString m_strClassName;
    QString m_strMethodName;
    unsigned int m_nLineNumber = 0;
    unsigned int m_nErrorId = 0;
};

/// Reserved for failures that carry an argument list. Every operation is inert
/// on purpose and applications rely on it: the constructors build a default
/// KvException, assignment changes nothing, both comparisons return false and
/// the text is always empty.
class KVBASE_EXPORT KvArgumentListException : public KvException
{
public:
    /// The defaults of KvException(), an empty argument list and extra text.
    KvArgumentListException();
    /// Ignores every argument and builds what the default constructor builds.
    /// \param reason     ignored
    /// \param fileName   ignored
    /// \param className  ignored
    /// \param methodName ignored
    /// \param line       ignored
    /// \param arguments  ignored
    /// \param errorId    ignored
    /// \param extra      ignored
    KvArgumentListException(QString reason, QString fileName, QString className, QString methodName,
                            unsigned int line, const std::vector<QString>& arguments, unsigned long errorId,
                            QString extra);
    /// Builds what the default constructor builds.
    /// \param other ignored
    KvArgumentListException(const KvArgumentListException& other);
    /// Changes nothing.
    /// \param other ignored
    /// \return this object
    KvArgumentListException& operator=(const KvArgumentListException& other);
    ~KvArgumentListException() override;

    /// \param other ignored
    /// \return always false
    bool operator==(const KvArgumentListException& other) const;
    /// \param other ignored
    /// \return always false
    bool operator!=(const KvArgumentListException& other) const;

    /// \param format ignored
    /// \param level  ignored
    /// \return always an empty string
    QString GetExceptionWideText(KvExceptionTextFormat format, unsigned char level) const override;

private:
    std::vector<QString> m_Arguments;
    QString m_strExtra;
};

#endif

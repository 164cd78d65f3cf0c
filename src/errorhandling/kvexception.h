#ifndef KVBASE_ERRORHANDLING_KVEXCEPTION_H
#define KVBASE_ERRORHANDLING_KVEXCEPTION_H

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
    FieldList = 2,  ///< code@reason@file@line@class@method@hh:mm:ss, for machine reading
    Readable = 3    ///< one human-readable line ending in a line feed
};

/// The library's one exception type: what went wrong, where (file, line,
/// class, method), when (local time of day at construction) and an error id.
/// A plain value: copies keep the source's time. Reentrant, never throws.
///
/// Message levels used by the text layouts: 1 error, 2..254 warning of that
/// level (0 renders as a warning of level 0 too), 255 information.
class KVBASE_EXPORT KvException : public std::exception
{
public:
    KvException();
    KvException(QString reason, QString fileName, QString className, QString methodName, unsigned int line,
                unsigned int errorId);
    /// The reason is UTF-8, the three C strings Latin-1; a null pointer gives an empty string.
    KvException(std::string reason, const char* fileName, const char* className, const char* methodName,
                unsigned int line, unsigned int errorId);
    KvException(const KvException& other);
    KvException& operator=(const KvException& other);
    ~KvException() override;

    bool operator==(const KvException& other) const;
    bool operator!=(const KvException& other) const;

    /// GetExceptionWideText converted to UTF-8; honours overrides of the wide text.
    virtual std::string GetExceptionAsciiText(KvExceptionTextFormat format, unsigned char level) const;
    virtual QString GetExceptionWideText(KvExceptionTextFormat format, unsigned char level) const;

    const QString& GetErrorReason() const { return m_strErrorReason; }
    const QString& GetFileName() const { return m_strFileName; }
    // Without "Get", unlike its siblings: applications call it by this name.
    const QString& ClassName() const { return m_strClassName; }
    const QString& GetMethodName() const { return m_strMethodName; }
    const QTime& GetErrorTime() const { return m_ErrorTime; }
    unsigned int GetLineNumber() const { return m_nLineNumber; }
    unsigned int GetErrorId() const { return m_nErrorId; }

    void SetErrorReason(const QString& reason) { m_strErrorReason = reason; }
    void SetFileName(const QString& fileName) { m_strFileName = fileName; }
    void SetClassName(const QString& className) { m_strClassName = className; }
    void SetMethodName(const QString& methodName) { m_strMethodName = methodName; }
    void SetErrorTime(const QTime& time) { m_ErrorTime = time; }
    void SetLineNumber(unsigned int line) { m_nLineNumber = line; }
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
    KvArgumentListException();
    KvArgumentListException(QString reason, QString fileName, QString className, QString methodName,
                            unsigned int line, const std::vector<QString>& arguments, unsigned long errorId,
                            QString extra);
    KvArgumentListException(const KvArgumentListException& other);
    KvArgumentListException& operator=(const KvArgumentListException& other);
    ~KvArgumentListException() override;

    bool operator==(const KvArgumentListException& other) const;
    bool operator!=(const KvArgumentListException& other) const;

    QString GetExceptionWideText(KvExceptionTextFormat format, unsigned char level) const override;

private:
    std::vector<QString> m_Arguments;
    QString m_strExtra;
};

#endif

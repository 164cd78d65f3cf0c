#ifndef KVBASE_ERRORHANDLING_KVTEXTFILE_H
#define KVBASE_ERRORHANDLING_KVTEXTFILE_H

/// \file errorhandling/kvtextfile.h
/// \brief A line-oriented text file and the error handler's log file.

#include "kvbase_export.h"

#include <QFile>
#include <QString>

#include <memory>
#include <string>

class QTextStream;

/// A line-oriented text file, opened for reading and writing without
/// truncation, so writes overwrite an existing file from its start.
/// Not locked: one thread at a time. Lines are read as UTF-8.
///
/// \code
/// KvTextFile file(QDir::tempPath() + QStringLiteral("/scan.txt"), true);
/// file.WriteLine(std::string("channel 975"));   // returns 13
/// \endcode
class KVBASE_EXPORT KvTextFile
{
public:
    /// Opens the file for reading and writing.
    /// \param path         the file
    /// \param mayBeMissing true creates a missing file; false throws KvException
    ///                     ("File does not exist - see Details", line 39) for it
    KvTextFile(const QString& path, bool mayBeMissing);
    /// Closes the file.
    virtual ~KvTextFile();

    KvTextFile(const KvTextFile&) = delete;
    KvTextFile& operator=(const KvTextFile&) = delete;

    /// \param mode QIODevice::OpenMode bits
    /// \return false when no file exists at the path, else QFile::open()'s result
    bool Open(int mode);
    /// \return whether the file is open
    bool isOpen() const;

    /// \return the next line without its terminator; empty at the end
    QString ReadLine();

    /// Writes the bytes of text unchanged and a line end.
    /// \param text the bytes of the line (Latin-1 as far as text goes)
    /// \return the length of text plus 2, cut to 16 bits, whether or not the bytes reached the file
    unsigned short WriteLine(const std::string& text);
    /// Writes the address of a temporary wide copy of text in hexadecimal,
    /// not the text. Existing files depend on this; use the narrow overload
    /// for text.
    /// \param text only its length is used
    /// \return the length of text plus 2, cut to 16 bits
    unsigned short WriteLine(const QString& text);
    /// Same as WriteLine(const std::string&).
    /// \param text the bytes of the line
    /// \return the length of text plus 2
    unsigned short AppendLine(const std::string& text) { return WriteLine(text); }
    /// Same as WriteLine(const QString&): writes an address, not the text.
    /// \param text only its length is used
    /// \return the length of text plus 2
    unsigned short AppendLine(const QString& text) { return WriteLine(text); }

    /// \return whether reading has reached the end of the file
    bool atEnd() const;
    /// \return the size of the file in bytes
    unsigned int size() const;

private:
    QFile m_File;
    std::unique_ptr<QTextStream> m_pReadStream;
};

/// The text log of the error handler; never throws, creates the file if missing.
/// Each new LogFile writes from the start of an existing file, so a longer
/// old tail stays behind the new lines.
class KVBASE_EXPORT LogFile : public KvTextFile
{
public:
    /// \param path the log file, created when missing
    explicit LogFile(const QString& path);

    /// Writes one line.
    /// \param line the bytes of the line
    /// \return always true
    bool AddMessage(const std::string& line);
};

#endif

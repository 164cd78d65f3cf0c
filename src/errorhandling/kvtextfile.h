#ifndef KVBASE_ERRORHANDLING_KVTEXTFILE_H
#define KVBASE_ERRORHANDLING_KVTEXTFILE_H

#include "kvbase_export.h"

#include <QFile>
#include <QString>

#include <memory>
#include <string>

class QTextStream;

/// A line-oriented text file, opened for reading and writing without
/// truncation, so writes overwrite an existing file from its start.
/// Not locked: one thread at a time.
class KVBASE_EXPORT KvTextFile
{
public:
    /// With mayBeMissing false, a missing file throws KvException
    /// ("File does not exist - see Details"); otherwise a missing file is created.
    KvTextFile(const QString& path, bool mayBeMissing);
    virtual ~KvTextFile();

    KvTextFile(const KvTextFile&) = delete;
    KvTextFile& operator=(const KvTextFile&) = delete;

    /// False when no file exists at the path; otherwise QFile::open with the
    /// QIODevice::OpenMode bits in mode.
    bool Open(int mode);
    bool isOpen() const;

    /// The next line without its terminator; empty at the end.
    QString ReadLine();

    /// Writes the bytes of text unchanged and a line end; returns the length
    /// of text plus 2, cut to 16 bits, whether or not the bytes reached the file.
    unsigned short WriteLine(const std::string& text);
    /// Writes the address of a temporary wide copy of text in hexadecimal,
    /// not the text. Existing files depend on this; use the narrow overload
    /// for text. Returns the length of text plus 2.
    unsigned short WriteLine(const QString& text);
    unsigned short AppendLine(const std::string& text) { return WriteLine(text); }
    unsigned short AppendLine(const QString& text) { return WriteLine(text); }

    bool atEnd() const;
    /// Size of the file in bytes.
    unsigned int size() const;

private:
    QFile m_File;
    std::unique_ptr<QTextStream> m_pReadStream;
};

/// The text log of the error handler; never throws, creates the file if missing.
class KVBASE_EXPORT LogFile : public KvTextFile
{
public:
    explicit LogFile(const QString& path);

    /// Appends one line; true when anything was written (always).
    bool AddMessage(const std::string& line);
};

#endif

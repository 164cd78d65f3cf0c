#ifndef KVTOOL_CLI_H
#define KVTOOL_CLI_H

#include <QByteArray>
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>
#include <utility>

namespace Cli {

/// The program's exit codes.
enum ExitCode
{
    Success = 0,
    Failure = 1, ///< a result that is a failure: a token not valid, a line that could not be converted
    Usage = 2    ///< the command line itself is wrong: unknown command or option, missing file
};

/// Thrown for a wrong command line; main() prints it as one line that points at
/// the command's help and exits with Usage.
struct UsageError
{
    QString message;
};

/// Thrown to end the program early with a code, after the text has been written
/// (help, version).
struct Exit
{
    int code;
};

/// The command being run ("coord", "jwt sign"), for messages; set by CommandLine.
QString currentCommand();
void setCurrentCommand(const QString& command);

/// Writes text as UTF-8, unbuffered beyond stdio's own buffer.
void print(FILE* stream, const QString& text);
inline void out(const QString& text)
{
    print(stdout, text);
}
inline void err(const QString& text)
{
    print(stderr, text);
}

/// The whole file, or a UsageError naming it when it cannot be read. A path of
/// "-" reads standard input.
QByteArray readFile(const QString& path, const QString& what);

/// Reads a key, secret or token file. A trailing line break is not part of it:
/// `echo secret > file` is the usual way to make one.
QByteArray readTrimmedFile(const QString& path, const QString& what);

/// A command's parser: QCommandLineParser with the program's rules for help,
/// errors and positional values that look like negative numbers ("-33.9 18.4"
/// is a position, not a cluster of short options).
class CommandLine
{
public:
    /// `command` as typed after "kvtool" ("coord", "jwt sign"); `synopsis` is
    /// the usage line after the command name.
    CommandLine(const QString& command, const QString& synopsis, const QString& description);

    void addOption(const QCommandLineOption& option);
    /// Documents a positional argument in the help text.
    void addPositional(const QString& name, const QString& description);
    /// Extra paragraphs printed after the options in the help text.
    void setEpilog(const QString& text) { m_epilog = text; }

    /// `arguments` starts with the command name. Prints help and throws Exit on
    /// --help; throws UsageError on an unknown option or a missing value.
    void parse(const QStringList& arguments);

    bool isSet(const QString& name) const { return m_parser.isSet(name); }
    QString value(const QString& name) const;
    QStringList values(const QString& name) const;
    const QStringList& positional() const { return m_positional; }

    /// The value of an integer option, or `fallback` when it is not set; a
    /// UsageError when it is not a whole number within [minimum, maximum].
    long long integer(const QString& name, long long fallback, long long minimum, long long maximum) const;

    const QString& command() const { return m_command; }
    QString helpText() const;

private:
    QString restore(const QString& text) const;

    QString m_command;
    QString m_synopsis;
    QString m_epilog;
    QCommandLineParser m_parser;
    QList<QCommandLineOption> m_options;
    QStringList m_hidden; ///< arguments that were taken out of the parser's sight
    QStringList m_positional;
};

} // namespace Cli

#endif

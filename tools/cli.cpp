#include "cli.h"

#include <QFile>

namespace Cli {

namespace {

// Stands in for an argument the parser must not see; cannot start with "-".
const QChar kMarker(0x1);

bool looksLikeNegativeNumber(const QString& argument)
{
    return argument.size() > 1 && argument.at(0) == QLatin1Char('-') &&
           (argument.at(1).isDigit() || argument.at(1) == QLatin1Char('.'));
}

QString& current()
{
    static QString command;
    return command;
}

} // namespace

QString currentCommand()
{
    return current();
}

void setCurrentCommand(const QString& command)
{
    current() = command;
}

void print(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

QByteArray readFile(const QString& path, const QString& what)
{
    QFile file;
    const bool opened = path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                   : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    if (!opened)
        throw UsageError{QStringLiteral("cannot read %1 '%2': %3").arg(what, path, file.errorString())};
    return file.readAll();
}

QByteArray readTrimmedFile(const QString& path, const QString& what)
{
    QByteArray bytes = readFile(path, what);
    if (bytes.endsWith('\n'))
        bytes.chop(1);
    if (bytes.endsWith('\r'))
        bytes.chop(1);
    return bytes;
}

CommandLine::CommandLine(const QString& command, const QString& synopsis, const QString& description)
    : m_command(command), m_synopsis(synopsis)
{
    setCurrentCommand(command);
    m_parser.setApplicationDescription(description);
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    addOption(QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                                 QStringLiteral("Shows this help.")));
}

void CommandLine::addOption(const QCommandLineOption& option)
{
    m_parser.addOption(option);
    m_options.append(option);
}

void CommandLine::addPositional(const QString& name, const QString& description)
{
    m_parser.addPositionalArgument(name, description);
}

void CommandLine::parse(const QStringList& arguments)
{
    // Hide negative numbers behind markers unless they are the value of the
    // option before them, so "-33.9 18.4" stays a position.
    QStringList visible;
    bool previousTakesValue = false;
    bool afterDashes = false;
    for (const QString& argument : arguments) {
        if (!visible.isEmpty() && !previousTakesValue && !afterDashes && looksLikeNegativeNumber(argument)) {
            visible.append(kMarker + QString::number(m_hidden.size()));
            m_hidden.append(argument);
            continue;
        }
        visible.append(argument);
        afterDashes = afterDashes || argument == QLatin1String("--");
        previousTakesValue = false;
        if (argument.startsWith(QLatin1Char('-')) && !argument.contains(QLatin1Char('='))) {
            const QString name = argument.mid(argument.startsWith(QLatin1String("--")) ? 2 : 1);
            for (const QCommandLineOption& option : std::as_const(m_options))
                if (option.names().contains(name) && !option.valueName().isEmpty())
                    previousTakesValue = true;
        }
    }
    if (!m_parser.parse(visible)) {
        // Qt's "Unknown option 'x'." becomes part of a sentence.
        QString message = restore(m_parser.errorText());
        if (message.endsWith(QLatin1Char('.')))
            message.chop(1);
        if (!message.isEmpty())
            message[0] = message.at(0).toLower();
        throw UsageError{message};
    }
    if (m_parser.isSet(QStringLiteral("help"))) {
        out(helpText());
        throw Exit{Success};
    }
    for (const QString& argument : m_parser.positionalArguments())
        m_positional.append(restore(argument));
}

QString CommandLine::value(const QString& name) const
{
    return restore(m_parser.value(name));
}

QStringList CommandLine::values(const QString& name) const
{
    QStringList result;
    for (const QString& value : m_parser.values(name))
        result.append(restore(value));
    return result;
}

long long CommandLine::integer(const QString& name, long long fallback, long long minimum,
                               long long maximum) const
{
    if (!isSet(name))
        return fallback;
    bool ok = false;
    const long long number = value(name).toLongLong(&ok);
    if (!ok || number < minimum || number > maximum)
        throw UsageError{QStringLiteral("--%1 needs a whole number from %2 to %3, not '%4'")
                             .arg(name)
                             .arg(minimum)
                             .arg(maximum)
                             .arg(value(name))};
    return number;
}

QString CommandLine::helpText() const
{
    // Qt writes "Usage: <program> [options] ..."; the command and its own
    // synopsis read better.
    QString text = m_parser.helpText();
    const int lineEnd = text.indexOf(QLatin1Char('\n'));
    text.replace(0, lineEnd, QStringLiteral("Usage: kvtool %1 %2").arg(m_command, m_synopsis));
    if (!m_epilog.isEmpty())
        text += QLatin1Char('\n') + m_epilog;
    return text;
}

QString CommandLine::restore(const QString& text) const
{
    if (!text.startsWith(kMarker))
        return text;
    bool ok = false;
    const int index = text.mid(1).toInt(&ok);
    return ok && index >= 0 && index < m_hidden.size() ? m_hidden.at(index) : text;
}

} // namespace Cli

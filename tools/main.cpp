// kvtool: KvBase's everyday jobs from a shell, built on the public API only.
#include "cli.h"
#include "commands.h"

#include <QCoreApplication>

namespace {

const char kHelp[] = "Usage: kvtool [COMMAND [options]]\n"
                     "\n"
                     "KvBase's everyday jobs from a shell. Without a command it shows a short tour.\n"
                     "\n"
                     "Commands:\n"
                     "  coord   positions from one notation into another: texts, or a file line by line\n"
                     "  gsm     the GSM band table; channel numbers to frequencies and back\n"
                     "  jwt     JSON Web Tokens: sign, decode, verify\n"
                     "\n"
                     "Options:\n"
                     "  -h, --help      this help; 'kvtool COMMAND --help' explains a command\n"
                     "  -v, --version   the version\n"
                     "\n"
                     "Texts are UTF-8. Exit codes: 0 success, 1 a result that is a failure (a line that\n"
                     "could not be converted, a token that is not valid), 2 a wrong command line.\n";

bool isHelp(const QString& argument)
{
    return argument == QLatin1String("-h") || argument == QLatin1String("--help") ||
           argument == QLatin1String("-help") || argument == QLatin1String("help");
}

int dispatch(QStringList arguments)
{
    if (arguments.isEmpty())
        return runTour();
    const QString command = arguments.first();
    if (isHelp(command)) {
        // "kvtool help coord" is "kvtool coord --help".
        if (arguments.size() < 2) {
            Cli::out(QString::fromUtf8(kHelp));
            return Cli::Success;
        }
        arguments = QStringList{arguments.at(1), QStringLiteral("--help")};
        return dispatch(arguments);
    }
    if (command == QLatin1String("-v") || command == QLatin1String("--version")) {
        Cli::out(QStringLiteral("kvtool %1\n").arg(QStringLiteral(KVTOOL_VERSION)));
        return Cli::Success;
    }
    if (command == QLatin1String("coord"))
        return runCoord(arguments);
    if (command == QLatin1String("gsm"))
        return runGsm(arguments);
    if (command == QLatin1String("jwt")) {
        Cli::setCurrentCommand(QStringLiteral("jwt"));
        return runJwt(arguments);
    }
    if (command.startsWith(QLatin1Char('-')))
        throw Cli::UsageError{QStringLiteral("unknown option '%1'").arg(command)};
    throw Cli::UsageError{QStringLiteral("unknown command '%1'").arg(command)};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kvtool"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVTOOL_VERSION));

    // Arguments are UTF-8 whatever the locale says, like the texts read and written.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromUtf8(argv[i]));
    try {
        return dispatch(arguments);
    } catch (const Cli::UsageError& error) {
        const QString command = Cli::currentCommand();
        const QString prefix =
            command.isEmpty() ? QStringLiteral("kvtool") : QStringLiteral("kvtool ") + command;
        Cli::err(QStringLiteral("%1: %2 (see '%1 --help')\n").arg(prefix, error.message));
        return Cli::Usage;
    } catch (const Cli::Exit& exit) {
        return exit.code;
    }
}

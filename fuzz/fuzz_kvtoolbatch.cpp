// libFuzzer target: the batch reader of kvtool's "coord" command. The first
// byte chooses the command line (CSV or not, the legacy texts, all notations or
// one, a notation to read); the rest is the input file, read line by line and
// converted. Run it with -close_fd_mask=3 (see kvtoolbatch.options): the tool
// writes every line to standard output and every failure to standard error.
#include "fuzzsupport.h"

#include "commands.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    if (size == 0)
        return 0;
    static const QString path = QDir::temp().filePath(QStringLiteral("kvtoolbatch-%1.txt").arg(getpid()));
    QFile input(path);
    if (!input.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    input.write(reinterpret_cast<const char*>(data + 1), qint64(size - 1));
    input.close();

    const std::uint8_t choice = data[0];
    QStringList arguments{QStringLiteral("coord"), QStringLiteral("--input"), path};
    if (choice & 1)
        arguments << QStringLiteral("--csv");
    if (choice & 2)
        arguments << QStringLiteral("--legacy");
    arguments << QStringLiteral("--to")
              << ((choice & 4) ? QStringLiteral("all") : QString::number(choice % 9));
    if (choice & 8)
        arguments << QStringLiteral("--from") << QString::number((choice >> 4) % 9);
    const int code = runCoord(arguments);
    QFile::remove(path);
    FUZZ_CHECK(code == 0 || code == 1);
    return 0;
}

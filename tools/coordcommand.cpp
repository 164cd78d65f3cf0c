// kvtool coord: positions from one notation into another, one text or a file.
#include "batch.h"
#include "cli.h"
#include "commands.h"

#include <KvBase.h>

using PositionText::Notation;

namespace {

constexpr int kNotationCount = 9;
constexpr int kLegacyFormatCount = 8;
const QString kAll = QStringLiteral("all");

Notation notationAt(int index)
{
    return static_cast<Notation>(index);
}

QString squeezed(const QString& text)
{
    QString result = text.toLower();
    result.remove(QLatin1Char(' '));
    return result;
}

/// A notation by its number, its name, or a unique prefix of its name; case and
/// blanks do not count ("sweref", "british", "2").
Notation notationOption(const QString& option, const QString& text)
{
    if (const std::optional<Notation> exact = PositionText::notationFromName(text))
        return *exact;
    const QString wanted = squeezed(text);
    QStringList all;
    QStringList matches;
    Notation match = Notation::Decimal;
    for (int i = 0; i < kNotationCount; ++i) {
        const QString name = PositionText::name(notationAt(i));
        all.append(name);
        if (!wanted.isEmpty() && squeezed(name).startsWith(wanted)) {
            matches.append(name);
            match = notationAt(i);
        }
    }
    if (matches.size() == 1)
        return match;
    if (matches.isEmpty())
        throw Cli::UsageError{QStringLiteral("--%1: unknown notation '%2' (one of: %3)")
                                  .arg(option, text, all.join(QStringLiteral(", ")))};
    throw Cli::UsageError{
        QStringLiteral("--%1: '%2' could be %3").arg(option, text, matches.join(QStringLiteral(" or ")))};
}

struct Job
{
    std::optional<Notation> from; ///< detected when empty
    bool all = false;
    Notation to = Notation::Decimal;
    int precision = -1;
    bool legacy = false;

    QStringList columns() const
    {
        QStringList names;
        if (all) {
            names.append(QStringLiteral("read as"));
            for (int i = 0; i < kNotationCount; ++i)
                names.append(PositionText::name(notationAt(i)));
        } else {
            names.append(PositionText::name(to));
        }
        if (legacy)
            for (int i = 0; i < kLegacyFormatCount; ++i)
                names.append(QStringLiteral("Coord: ") + getCoordFormatName(static_cast<CoordFormat>(i)));
        return names;
    }

    bool convert(const QString& text, std::vector<QString>& fields, QString& error) const
    {
        const std::optional<PositionText::Position> position =
            from ? PositionText::parse(text, *from, &error) : PositionText::parse(text, &error);
        if (!position)
            return false;
        const double lat = position->latitude;
        const double lon = position->longitude;
        size_t k = 0;
        if (all) {
            fields[k++] = PositionText::name(position->notation);
            // Notations that cannot write this position (a national grid far
            // from its country) stay empty.
            for (int i = 0; i < kNotationCount; ++i)
                fields[k++] = PositionText::format(lat, lon, notationAt(i), precision);
        } else {
            fields[k] = PositionText::format(lat, lon, to, precision, &error);
            if (fields[k++].isEmpty())
                return false;
        }
        if (legacy) {
            const Coord coord(lon, lat);
            for (int i = 0; i < kLegacyFormatCount; ++i)
                fields[k++] = coord.GetString(static_cast<CoordFormat>(i));
        }
        return true;
    }
};

/// The texts given on the command line: one line each for a single column, a
/// labelled block each otherwise.
int convertTexts(const Job& job, const QStringList& texts)
{
    const QStringList labels = job.columns();
    int width = 0;
    for (const QString& label : labels)
        width = qMax(width, int(label.size()));
    std::vector<QString> fields(size_t(labels.size()));
    int code = Cli::Success;
    bool firstBlock = true;
    for (const QString& text : texts) {
        QString error;
        if (!job.convert(text, fields, error)) {
            Cli::err(QStringLiteral("kvtool coord: cannot convert \"%1\": %2\n").arg(text, error));
            code = Cli::Failure;
            continue;
        }
        if (labels.size() == 1) {
            Cli::out(fields[0] + QLatin1Char('\n'));
            continue;
        }
        QString block = firstBlock ? QString() : QStringLiteral("\n");
        firstBlock = false;
        for (int i = 0; i < labels.size(); ++i)
            if (!fields[size_t(i)].isEmpty())
                block += labels[i].leftJustified(width + 2) + fields[size_t(i)] + QLatin1Char('\n');
        Cli::out(block);
    }
    return code;
}

QString notationList()
{
    QStringList lines;
    for (int i = 0; i < kNotationCount; ++i)
        lines.append(QStringLiteral("  %1  %2").arg(i).arg(PositionText::name(notationAt(i))));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

int runCoord(const QStringList& arguments)
{
    Cli::CommandLine command(
        QStringLiteral("coord"), QStringLiteral("[options] [TEXT...]"),
        QStringLiteral("Converts positions between notations. Each TEXT is one position; without TEXT the "
                       "positions are read one per line from --input or standard input."));
    command.addOption(
        {QStringLiteral("from"),
         QStringLiteral("Reads the positions in this notation; detected from each text when left out."),
         QStringLiteral("NOTATION")});
    command.addOption({QStringLiteral("to"),
                       QStringLiteral("Writes this notation, or 'all' of them with the notation read first "
                                      "(default: all for TEXT, Decimal for lines)."),
                       QStringLiteral("NOTATION|all")});
    command.addOption({QStringLiteral("precision"),
                       QStringLiteral("Digits to write; what they count depends on the notation (default: "
                                      "the notation's own)."),
                       QStringLiteral("N")});
    command.addOption(
        {QStringLiteral("legacy"), QStringLiteral("Also writes the eight edit-field texts of Coord.")});
    command.addOption({QStringLiteral("input"),
                       QStringLiteral("Reads the positions from FILE, one per line."),
                       QStringLiteral("FILE")});
    command.addOption({QStringLiteral("csv"),
                       QStringLiteral("Writes lines as CSV rows: line,input,output (with a header row).")});
    command.addPositional(QStringLiteral("TEXT"), QStringLiteral("A position, e.g. \"59.3293 18.0686\"."));
    command.setEpilog(
        QStringLiteral(
            "Notations (by number, or by name in any letter case; a unique beginning is enough):\n") +
        notationList() +
        QStringLiteral(
            "\n\nLines: blank lines and lines starting with # are copied through. A line that cannot be "
            "converted leaves an empty output line and an error on standard error naming the line; "
            "the summary 'N converted, M failed' ends the run. Exit code 1 if any line failed, 2 for "
            "a wrong command line.\n"));
    command.parse(arguments);

    Job job;
    if (command.isSet(QStringLiteral("from")))
        job.from = notationOption(QStringLiteral("from"), command.value(QStringLiteral("from")));
    const QStringList texts = command.positional();
    const bool batch = texts.isEmpty();
    const QString to = command.isSet(QStringLiteral("to")) ? command.value(QStringLiteral("to"))
                       : batch                             ? QStringLiteral("0")
                                                           : kAll;
    job.all = to.compare(kAll, Qt::CaseInsensitive) == 0;
    if (!job.all)
        job.to = notationOption(QStringLiteral("to"), to);
    job.precision = int(command.integer(QStringLiteral("precision"), -1, 0, 15));
    job.legacy = command.isSet(QStringLiteral("legacy"));

    if (!batch) {
        if (command.isSet(QStringLiteral("input")))
            throw Cli::UsageError{QStringLiteral("give TEXT or --input, not both")};
        if (command.isSet(QStringLiteral("csv")))
            throw Cli::UsageError{QStringLiteral("--csv is for lines from --input or standard input")};
        return convertTexts(job, texts);
    }

    Batch::Options options;
    options.inputPath = command.value(QStringLiteral("input"));
    options.csv = command.isSet(QStringLiteral("csv"));
    options.columns = job.columns();
    if (options.csv && !job.all && !job.legacy)
        options.columns = QStringList{QStringLiteral("output")};
    return Batch::run(options, [&job](const QString& line, std::vector<QString>& fields, QString& error) {
        return job.convert(line, fields, error);
    });
}

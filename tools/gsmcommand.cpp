// kvtool gsm: the GSM band table, channel to frequency and back.
#include "cli.h"
#include "commands.h"

#include <KvBase.h>

#include <QRegularExpression>

#include <cmath>

namespace {

// A bare number below this is a channel number, from it up a frequency in Hz:
// channel numbers are 10-bit, and no radio frequency of interest lies below 1 MHz.
constexpr double kLowestBareFrequency = 1e6;

QString squeezed(const QString& text)
{
    QString result = text.toLower();
    result.remove(QLatin1Char(' '));
    return result;
}

/// "890.2 MHz": megahertz without trailing zeros, to the hertz.
QString megahertz(double hz)
{
    QString text = QString::number(hz / 1e6, 'f', 6);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

/// A row by its number (0 to 11) or its name, case and blanks not counting; a
/// unique beginning of a name is enough ("gsm1800d").
int bandOption(const GSM& gsm, const QString& text)
{
    bool isNumber = false;
    const uint row = text.toUInt(&isNumber);
    if (isNumber) {
        if (row >= gsm.GetCount())
            throw Cli::UsageError{
                QStringLiteral("--band: there is no row %1 (0 to %2)").arg(text).arg(gsm.GetCount() - 1)};
        return int(row);
    }
    const QString wanted = squeezed(text);
    QStringList matches;
    int match = -1;
    for (uint i = 0; i < gsm.GetCount(); ++i) {
        const QString name = gsm.GetBand(i).GetName();
        if (squeezed(name) == wanted)
            return int(i);
        if (!wanted.isEmpty() && squeezed(name).startsWith(wanted)) {
            matches.append(name);
            match = int(i);
        }
    }
    if (matches.size() == 1)
        return match;
    if (matches.isEmpty())
        throw Cli::UsageError{QStringLiteral("--band: unknown band '%1' (see kvtool gsm)").arg(text)};
    throw Cli::UsageError{
        QStringLiteral("--band: '%1' could be %2").arg(text, matches.join(QStringLiteral(" or ")))};
}

/// The table: row, name, channels, frequencies and spacing of each band.
int printTable(const GSM& gsm)
{
    QString text = QStringLiteral("%1  %2  %3  %4  %5\n")
                       .arg(QStringLiteral("Row"), -3)
                       .arg(QStringLiteral("Name"), -12)
                       .arg(QStringLiteral("Channels"), -15)
                       .arg(QStringLiteral("Frequencies (MHz)"), -17)
                       .arg(QStringLiteral("Spacing"));
    for (uint row = 0; row < gsm.GetCount(); ++row) {
        Band band = gsm.GetBand(row);
        QStringList channels;
        double low = HUGE_VAL;
        double high = -HUGE_VAL;
        for (const SubBandGSM& part : band.GetSubBands()) {
            channels.append(QStringLiteral("%1-%2").arg(part.GetStartChannel()).arg(part.GetStopChannel()));
            for (const unsigned long channel : {part.GetStartChannel(), part.GetStopChannel()}) {
                const double hz = band.GetFrequency(channel, 0.0);
                low = std::min(low, hz);
                high = std::max(high, hz);
            }
        }
        // GSM900's extended part lies below its primary one.
        std::reverse(channels.begin(), channels.end());
        text += QStringLiteral("%1  %2  %3  %4  %5 kHz\n")
                    .arg(row, 3)
                    .arg(band.GetName(), -12)
                    .arg(channels.join(QStringLiteral(", ")), -15)
                    .arg(megahertz(low) + QLatin1Char('-') + megahertz(high), -17)
                    .arg(band.GetStepWidth() / 1e3);
    }
    Cli::out(text);
    return Cli::Success;
}

struct Quantity
{
    bool isChannel = false;
    unsigned long channel = 0;
    double hz = 0.0;
};

/// "975" is a channel; "935.2MHz", "935200 kHz", "935200000" are frequencies.
/// The unit goes through FrequencyUnit, so any unique beginning works ("k", "m").
std::optional<Quantity> readQuantity(const QString& text, QString& error)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*([0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)\\s*([A-Za-z]*)\\s*$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch()) {
        error = QStringLiteral("not a channel number or a frequency");
        return std::nullopt;
    }
    const double number = match.captured(1).toDouble();
    const QString unitText = match.captured(2);
    Quantity quantity;
    if (unitText.isEmpty()) {
        quantity.isChannel = number < kLowestBareFrequency;
        if (quantity.isChannel && number != std::floor(number)) {
            error = QStringLiteral("a channel number is a whole number; give a frequency with its unit");
            return std::nullopt;
        }
        quantity.channel = static_cast<unsigned long>(number);
        quantity.hz = number;
        return quantity;
    }
    bool ok = false;
    const FrequencyUnit::Type unit = FrequencyUnit::fromString(unitText, &ok);
    if (!ok) {
        error = QStringLiteral("unknown unit '%1' (Hz, kHz, MHz, GHz)").arg(unitText);
        return std::nullopt;
    }
    quantity.hz = number * std::pow(10.0, int(unit));
    return quantity;
}

/// The answer for one row, or an empty text when the quantity is not in it.
QString lookUp(Band band, const Quantity& quantity)
{
    if (quantity.isChannel) {
        if (!band.IsValidChannel(quantity.channel))
            return QString();
        return megahertz(band.GetFrequency(quantity.channel, 0.0)) + QStringLiteral(" MHz");
    }
    unsigned long channel = 0;
    const Band::FrequencyFound found = band.FindFrequency(quantity.hz, channel);
    if (found == Band::FrequencyOutside || !band.IsValidChannel(channel))
        return QString();
    if (found == Band::FrequencyExact)
        return QStringLiteral("channel %1").arg(channel);
    const double offset = quantity.hz - band.GetFrequency(channel, 0.0);
    return QStringLiteral("channel %1 %2%3 kHz")
        .arg(channel)
        .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(std::fabs(offset) / 1e3);
}

} // namespace

int runGsm(const QStringList& arguments)
{
    Cli::CommandLine command(QStringLiteral("gsm"),
                             QStringLiteral("[--band NAME|ROW] [CHANNEL|FREQUENCY...]"),
                             QStringLiteral("The GSM band table, channel numbers to frequencies and back. "
                                            "Without arguments it prints the table."));
    command.addOption(
        {QStringLiteral("band"),
         QStringLiteral("Looks only in this band: its row or name, e.g. 3 or \"GSM1800 Down\"."),
         QStringLiteral("NAME|ROW")});
    command.addPositional(QStringLiteral("CHANNEL|FREQUENCY"),
                          QStringLiteral("A channel number (975) or a frequency with or without unit "
                                         "(935.2MHz, 935200kHz, 935200000)."));
    command.setEpilog(QStringLiteral(
        "A bare number below 1000000 is a channel number, anything else a frequency (Hz without unit).\n"
        "Without --band every row is searched and each match is listed: uplink and downlink share channel "
        "numbers, and so do DCS 1800 and PCS 1900. A frequency between two channels is given as the nearest "
        "channel and the distance to it.\n"
        "Exit code 1 when a value is in no band, 2 for a wrong command line.\n"));
    command.parse(arguments);

    GSM gsm;
    const bool oneBand = command.isSet(QStringLiteral("band"));
    const int onlyRow = oneBand ? bandOption(gsm, command.value(QStringLiteral("band"))) : -1;
    if (command.positional().isEmpty()) {
        if (oneBand)
            throw Cli::UsageError{QStringLiteral("--band needs a CHANNEL or FREQUENCY to look up")};
        return printTable(gsm);
    }

    int code = Cli::Success;
    for (const QString& text : command.positional()) {
        QString error;
        const std::optional<Quantity> quantity = readQuantity(text, error);
        if (!quantity) {
            Cli::err(QStringLiteral("kvtool gsm: \"%1\": %2\n").arg(text, error));
            code = Cli::Failure;
            continue;
        }
        QString lines;
        for (uint row = 0; row < gsm.GetCount(); ++row) {
            if (onlyRow >= 0 && int(row) != onlyRow)
                continue;
            const Band band = gsm.GetBand(row);
            const QString answer = lookUp(band, *quantity);
            if (!answer.isEmpty())
                lines += QStringLiteral("%1  %2  %3\n").arg(text).arg(band.GetName(), -12).arg(answer);
        }
        if (lines.isEmpty()) {
            const QString where =
                oneBand ? gsm.GetBand(uint(onlyRow)).GetName() : QStringLiteral("any GSM band");
            Cli::err(QStringLiteral("kvtool gsm: %1 %2 is not in %3\n")
                         .arg(quantity->isChannel ? QStringLiteral("channel") : QStringLiteral("frequency"),
                              text, where));
            code = Cli::Failure;
        }
        Cli::out(lines);
    }
    return code;
}

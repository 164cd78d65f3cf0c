#ifndef KVTOOL_BATCH_H
#define KVTOOL_BATCH_H

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

/// Line-by-line conversion of a file or standard input: one output line per
/// input line, in order, with constant memory whatever the input size. Blank
/// lines and "#" comments pass through; a line that cannot be converted leaves an
/// empty output line and an error line on standard error, and the run goes on.
namespace Batch {

/// Converts one input line (never blank, never a comment) into `fields`, which
/// holds as many strings as there are output columns; returns false and sets
/// `error` when the line cannot be converted. Called with the same vector for
/// every line, so its strings keep their buffers.
using LineConverter = std::function<bool(const QString& line, std::vector<QString>& fields, QString& error)>;

struct Options
{
    QString inputPath;   ///< empty: standard input
    bool csv = false;    ///< "line,input,<columns>" rows with RFC 4180 quoting
    QStringList columns; ///< names of the output columns (CSV header); at least one
};

/// Runs the conversion and writes the summary "N converted, M failed" to standard
/// error. Returns the program's exit code: 0 when no line failed, 1 otherwise. A
/// missing input file is a Cli::UsageError.
int run(const Options& options, const LineConverter& converter);

} // namespace Batch

#endif

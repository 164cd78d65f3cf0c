#ifndef KVBASE_ERRORHANDLING_QUALITY_H
#define KVBASE_ERRORHANDLING_QUALITY_H

/// \file errorhandling/quality.h
/// \brief Contract checks that report instead of throwing, developer traces
/// and block tracing.
///
/// The contract checks (KV_REQUIRE, KV_ENSURE, KV_ASSERT and the functions
/// behind them) each build a KvException (error id 0xFFFFFFFF, the time of
/// the failure), record it with ErrorHandler::ProtocolException(), ask for the
/// error dialog with ErrorHandler::PostErrorDialog() and return: a failed
/// check is reported, never thrown. Any thread may call them; reports are
/// serialised on the error handler's quality mutex. The file name is a cut
/// source path such as L"coord\\maskconv"; the line is 16-bit and wraps
/// above 65535.
///
/// \code
/// double Calc::Run(double divisor)
/// {
///     KV_REQUIRE(divisor != 0.0);      // reports "REQUIREMENT FAILED" and goes on
///     KV_BLOCK_TRACE(QStringLiteral("Run"));
///     return 1.0 / divisor;
/// }
/// \endcode

#include "kvbase_export.h"

#include <QString>

#include <string>

/// A failed precondition: the reason is "REQUIREMENT FAILED". Use KV_REQUIRE.
/// \param fileName cut source path, null-terminated
/// \param line     source line
KVBASE_EXPORT void _Q_require(const wchar_t* fileName, unsigned short line);
/// A failed postcondition: the reason is "ENSURE FAILED". Same rules as
/// _Q_require(). Use KV_ENSURE.
/// \param fileName cut source path, null-terminated
/// \param line     source line
KVBASE_EXPORT void _Q_ensure(const wchar_t* fileName, unsigned short line);
/// A failed assertion: the reason is "ASSERTION FAILED " followed by the
/// expression text. Same rules as _Q_require(). Use KV_ASSERT.
/// \param expression the failed condition as text, null-terminated
/// \param fileName   cut source path, null-terminated
/// \param line       source line
KVBASE_EXPORT void _Q_assert(const wchar_t* expression, const wchar_t* fileName, unsigned short line);

/// Sends a developer trace (level 3) through ErrorHandler::ProtocolMessage().
/// Texts over 400 characters go out as up to five overlapping pieces, each
/// marked with its part number; the rest is dropped. Any thread may call it.
/// \param text     the trace text, any length
/// \param fileName cut source path of the caller
/// \param line     source line of the caller
KVBASE_EXPORT void _Q_Trace(const QString& text, const QString& fileName, unsigned short line);

/// Cuts a source path to the form reports carry: the folder and the file name
/// without extension, joined by a backslash ("/src/coord/maskconv.cpp" gives
/// "coord\\maskconv"). Reentrant.
/// \param path a source path with "/" or "\\" separators, null-terminated; null gives an empty text
/// \return the cut path
KVBASE_EXPORT std::wstring KvCutSourcePath(const wchar_t* path);

/// Traces entry ("*", one blank per enclosing block, name, " {") and exit
/// (same indent, "}") of a block while the error handler's trace bit 0x20 is
/// set. The nesting depth is process-wide and counts also when not tracing;
/// it is not locked, so trace blocks from one thread at a time.
class KVBASE_EXPORT BLOCK_TRACE
{
public:
    /// Traces the entry of the block and deepens the nesting.
    /// \param name the block's name in the trace
    explicit BLOCK_TRACE(QString name);
    /// Traces the exit of the block.
    ~BLOCK_TRACE();
    BLOCK_TRACE(const BLOCK_TRACE&) = delete;
    BLOCK_TRACE& operator=(const BLOCK_TRACE&) = delete;

    /// The indent of the current depth.
    /// \return "*" followed by one blank per enclosing block
    static QString GetIndent();
};

/// \cond internal
#define KV_QUALITY_CONCAT_(a, b) a##b
#define KV_QUALITY_CONCAT(a, b) KV_QUALITY_CONCAT_(a, b)
#define KV_QUALITY_WIDEN_(text) L##text
#define KV_QUALITY_WIDEN(text) KV_QUALITY_WIDEN_(text)
/// \endcond

/// Reports a failed precondition with this file's cut path and line when
/// `cond` is false, then goes on (see _Q_require()).
#define KV_REQUIRE(cond)                                                                                     \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_require(KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),                                  \
                       static_cast<unsigned short>(__LINE__));                                               \
    } while (false)
/// Reports a failed postcondition when `cond` is false, then goes on (see _Q_ensure()).
#define KV_ENSURE(cond)                                                                                      \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_ensure(KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),                                   \
                      static_cast<unsigned short>(__LINE__));                                                \
    } while (false)
/// Reports a failed assertion, with the text of `cond`, when `cond` is false,
/// then goes on (see _Q_assert()).
#define KV_ASSERT(cond)                                                                                      \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_assert(KV_QUALITY_WIDEN(#cond), KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),          \
                      static_cast<unsigned short>(__LINE__));                                                \
    } while (false)

/// Traces the enclosing block under the given name.
#define KV_BLOCK_TRACE(name) BLOCK_TRACE KV_QUALITY_CONCAT(kvBlockTrace_, __LINE__)(name)

#endif

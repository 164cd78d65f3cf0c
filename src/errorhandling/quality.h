#ifndef KVBASE_ERRORHANDLING_QUALITY_H
#define KVBASE_ERRORHANDLING_QUALITY_H

#include "kvbase_export.h"

#include <QString>

#include <string>

/// Contract checks. Each builds a KvException (error id 0xFFFFFFFF, the time
/// of the failure), records it with ErrorHandler::ProtocolException, asks for
/// the error dialog with PostErrorDialog and returns: a failed check is
/// reported, never thrown. Callable from any thread; reports are serialised on
/// the error handler's quality mutex. fileName is a cut source path such as
/// L"coord\\maskconv"; the line is 16-bit and wraps above 65535.
KVBASE_EXPORT void _Q_require(const wchar_t* fileName, unsigned short line);
KVBASE_EXPORT void _Q_ensure(const wchar_t* fileName, unsigned short line);
/// The reason is "ASSERTION FAILED " followed by the expression text.
KVBASE_EXPORT void _Q_assert(const wchar_t* expression, const wchar_t* fileName, unsigned short line);

/// Sends a developer trace (level 3) through the error handler. Texts over
/// 400 characters go out as up to five overlapping pieces, each marked with
/// its part number; the rest is dropped.
KVBASE_EXPORT void _Q_Trace(const QString& text, const QString& fileName, unsigned short line);

/// Cuts a source path to the form reports carry: the folder and the file name
/// without extension, joined by a backslash ("/src/coord/maskconv.cpp" gives
/// "coord\maskconv").
KVBASE_EXPORT std::wstring KvCutSourcePath(const wchar_t* path);

/// Traces entry ("*", one blank per enclosing block, name, " {") and exit
/// (same indent, "}") of a block while the error handler's trace bit 0x20 is
/// set. The nesting depth is process-wide and counts also when not tracing.
class KVBASE_EXPORT BLOCK_TRACE
{
public:
    explicit BLOCK_TRACE(QString name);
    ~BLOCK_TRACE();
    BLOCK_TRACE(const BLOCK_TRACE&) = delete;
    BLOCK_TRACE& operator=(const BLOCK_TRACE&) = delete;

    static QString GetIndent();
};

#define KV_QUALITY_CONCAT_(a, b) a##b
#define KV_QUALITY_CONCAT(a, b) KV_QUALITY_CONCAT_(a, b)
#define KV_QUALITY_WIDEN_(text) L##text
#define KV_QUALITY_WIDEN(text) KV_QUALITY_WIDEN_(text)

/// Call-site checks: report with this file's cut path and line when cond is false.
#define KV_REQUIRE(cond)                                                                                     \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_require(KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),                                  \
                       static_cast<unsigned short>(__LINE__));                                               \
    } while (false)
#define KV_ENSURE(cond)                                                                                      \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_ensure(KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),                                   \
                      static_cast<unsigned short>(__LINE__));                                                \
    } while (false)
#define KV_ASSERT(cond)                                                                                      \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            _Q_assert(KV_QUALITY_WIDEN(#cond), KvCutSourcePath(KV_QUALITY_WIDEN(__FILE__)).c_str(),          \
                      static_cast<unsigned short>(__LINE__));                                                \
    } while (false)

/// Traces the enclosing block under the given name.
#define KV_BLOCK_TRACE(name) BLOCK_TRACE KV_QUALITY_CONCAT(kvBlockTrace_, __LINE__)(name)

#endif

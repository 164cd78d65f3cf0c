#ifndef KVBASE_FUZZ_FUZZSUPPORT_H
#define KVBASE_FUZZ_FUZZSUPPORT_H

#include "errorhandling/errorhandler.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace fuzz {

// Contract reports of the code under test go to the bounded message list only:
// no log file written thousands of times a second, and no traces. A fixed time
// zone spares the C library a look at /etc/localtime for every report's time.
inline void quietErrorHandler()
{
    static const bool quiet = [] {
        qputenv("TZ", "UTC");
        tzset();
        ErrorHandler& handler = ErrorHandler::Instance();
        handler.SetMessageMask(0);
        handler.TurnLogFileOff();
        return true;
    }();
    (void)quiet;
}

inline QByteArray bytes(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

inline QString text(const std::uint8_t* data, std::size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

// Equal as stored, so NaN equals NaN and -0 differs from 0.
inline bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A broken promise of the code under test: a finding like a crash.
#define FUZZ_CHECK(cond)                                                                                     \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            std::abort();                                                                                    \
    } while (false)

} // namespace fuzz

#endif

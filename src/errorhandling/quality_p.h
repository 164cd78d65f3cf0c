#ifndef KVBASE_ERRORHANDLING_QUALITY_P_H
#define KVBASE_ERRORHANDLING_QUALITY_P_H

#include <QLatin1String>

#include <cstdint>

// Checks at method entry and exit; kept inside the library.
void _Q_premethod(const wchar_t* className, const wchar_t* fileName, unsigned short line);
void _Q_postmethod(const wchar_t* className, const wchar_t* fileName, unsigned short line);

// Error id of the reports the library makes on its own behalf (failed checks,
// missing files); log readers tell them from the applications' ids by it.
constexpr unsigned int kLibraryErrorId = 0xFFFFFFFF;

// Message level of developer traces.
constexpr std::uint8_t kTraceLevel = 3;

// The source the block and timing traces name. Traces carry frozen file and
// line pairs that log filters match, not the place of the code that sends them.
// (With its length: clang cannot evaluate strlen at compile time.)
constexpr QLatin1String kQualitySource("errorhandling\\quality", 21);

#endif

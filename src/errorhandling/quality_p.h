#ifndef KVBASE_ERRORHANDLING_QUALITY_P_H
#define KVBASE_ERRORHANDLING_QUALITY_P_H

// Checks at method entry and exit; kept inside the library.
void _Q_premethod(const wchar_t* className, const wchar_t* fileName, unsigned short line);
void _Q_postmethod(const wchar_t* className, const wchar_t* fileName, unsigned short line);

#endif

#ifndef KVBASE_ERRORHANDLING_QUALITYLOCK_P_H
#define KVBASE_ERRORHANDLING_QUALITYLOCK_P_H

#include <QRecursiveMutex>

#if defined(__SANITIZE_THREAD__)
#define KVBASE_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KVBASE_TSAN 1
#endif
#endif

#ifdef KVBASE_TSAN
extern "C" void __tsan_acquire(void* addr);
extern "C" void __tsan_release(void* addr);
#endif

// Holds the error handler's quality mutex for a scope. Qt's own mutex code is
// not instrumented in a ThreadSanitizer build, so the lock is announced to the
// sanitizer here; otherwise every report would look like a race.
class QualityLock
{
public:
    explicit QualityLock(QRecursiveMutex* mutex) : m_pMutex(mutex)
    {
        if (!m_pMutex)
            return;
        m_pMutex->lock();
#ifdef KVBASE_TSAN
        __tsan_acquire(m_pMutex);
#endif
    }
    ~QualityLock()
    {
        if (!m_pMutex)
            return;
#ifdef KVBASE_TSAN
        __tsan_release(m_pMutex);
#endif
        m_pMutex->unlock();
    }
    QualityLock(const QualityLock&) = delete;
    QualityLock& operator=(const QualityLock&) = delete;

private:
    QRecursiveMutex* m_pMutex;
};

#endif

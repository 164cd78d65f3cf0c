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
        ++s_nDepth;
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
        --s_nDepth;
        m_pMutex->unlock();
    }
    QualityLock(const QualityLock&) = delete;
    QualityLock& operator=(const QualityLock&) = delete;

    // Whether this thread holds the mutex through a QualityLock. A thread that
    // does must never wait for the handler's thread, which needs the mutex to
    // record. (An application that locks the mutex itself is not counted.)
    static bool heldByThisThread()
    {
        return s_nDepth > 0;
    }

private:
    QRecursiveMutex* m_pMutex;
    static inline thread_local int s_nDepth = 0;
};

#endif

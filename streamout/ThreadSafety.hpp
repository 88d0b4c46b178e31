#ifndef ZM_STREAMOUT_THREAD_SAFETY_HPP
#define ZM_STREAMOUT_THREAD_SAFETY_HPP

#include <mutex>

/// A mutex and a lock that clang's thread-safety analysis understands: `std::mutex` of libstdc++
/// carries no annotations, so a member that it guards would go unchecked. Other compilers see plain
/// classes.
///
///   Mutex m_mutex;
///   int m_count ZM_GUARDED_BY(m_mutex);     // read or written only where a MutexLock is in scope

#ifdef __clang__
#define ZM_THREAD_ANNOTATION(annotation) __attribute__((annotation))
#else
#define ZM_THREAD_ANNOTATION(annotation)
#endif

/// The member may be touched only while the named mutex is held.
#define ZM_GUARDED_BY(mutex) ZM_THREAD_ANNOTATION(guarded_by(mutex))

namespace streamout {

/// A `std::mutex`. It is held by way of `MutexLock` only.
class ZM_THREAD_ANNOTATION(capability("mutex")) Mutex {
private:
    friend class MutexLock;
    std::mutex m_mutex;
};

/// Holds a mutex from its construction to the end of its scope, however the scope is left.
class ZM_THREAD_ANNOTATION(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex& mutex) ZM_THREAD_ANNOTATION(acquire_capability(mutex)) : m_lock(mutex.m_mutex)
    {
    }
    ~MutexLock() ZM_THREAD_ANNOTATION(release_capability()) = default;

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    const std::lock_guard<std::mutex> m_lock;
};

}  // namespace streamout

#endif

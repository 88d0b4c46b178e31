// Must not compile under clang's thread-safety analysis: a guarded member is read without its mutex.
#include "streamout/ThreadSafety.hpp"

class Counter {
public:
    int guarded()
    {
        const streamout::MutexLock lock(m_mutex);
        return m_count;
    }
    int unguarded() { return m_count; }

private:
    int m_count ZM_GUARDED_BY(m_mutex) = 0;
    streamout::Mutex m_mutex;
};

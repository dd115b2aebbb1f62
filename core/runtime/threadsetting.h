// Internal: a setting of the calling thread, changed for as long as an object lives.
#ifndef ORVANE_CORE_RUNTIME_THREADSETTING_H
#define ORVANE_CORE_RUNTIME_THREADSETTING_H

// Sets `slot`, a thread_local of the calling thread, to `value` while alive, then puts back
// what the slot held before, so that settings nest.
template <class T>
class ThreadSetting {
public:
    ThreadSetting(T& slot, T value) : slot(slot), outer(slot) { slot = value; }
    ~ThreadSetting() { slot = outer; }
    ThreadSetting(const ThreadSetting&) = delete;
    ThreadSetting& operator=(const ThreadSetting&) = delete;

private:
    T& slot;
    T outer;
};

#endif

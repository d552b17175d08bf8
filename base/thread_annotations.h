#ifndef BASE_THREAD_ANNOTATIONS_H
#define BASE_THREAD_ANNOTATIONS_H

// Which mutex guards what, written where the compiler can check it: clang's -Wthread-safety refuses an access to a
// GUARDED_BY member without its mutex. Other compilers see nothing.

#if defined(__clang__)
#define BASE_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define BASE_THREAD_ATTRIBUTE(x)
#endif

#define CAPABILITY(name) BASE_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY BASE_THREAD_ATTRIBUTE(scoped_lockable)
#define GUARDED_BY(mutex) BASE_THREAD_ATTRIBUTE(guarded_by(mutex))
#define PT_GUARDED_BY(mutex) BASE_THREAD_ATTRIBUTE(pt_guarded_by(mutex))
#define REQUIRES(...) BASE_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) BASE_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) BASE_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define EXCLUDES(...) BASE_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

#endif

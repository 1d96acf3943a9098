#pragma once

#include "rkbase_export.h"

namespace rkBase {

/// \brief The shutdown phase of a registered destructor.
///
/// Phases run in ascending order at process exit; within one phase, destructors run in the
/// reverse order of their registration, as static objects would.
class RKBASE_EXPORT rkDestructionPhase {
public:
    /// A phase; lower numbers run first.
    explicit rkDestructionPhase(int phase) : m_phase(phase) {}
    /// The phase number.
    int value() const { return m_phase; }

private:
    int m_phase;
};

/// \brief Base of an ordered-shutdown hook.
///
/// Constructing one registers it; `destroy()` is called once, in phase order, when the process
/// exits or when `runAll()` is called first. The registry owns and deletes the object after it
/// has run, so singletons never depend on the order of static destruction.
class RKBASE_EXPORT rkDestructor {
public:
    /// Registers this destructor to run in `phase`; the registry takes ownership.
    explicit rkDestructor(const rkDestructionPhase& phase);
    virtual ~rkDestructor();

    rkDestructor(const rkDestructor&) = delete;
    rkDestructor& operator=(const rkDestructor&) = delete;

    /// The phase this destructor runs in.
    int phase() const { return m_phase; }

    /// Runs every destructor registered so far, phase by phase, and forgets them.
    /// Called automatically at exit; calling it earlier is allowed (tests, plug-in unload).
    static void runAll();
    /// Number of destructors registered and not yet run.
    static int pending();

protected:
    /// Ends what this destructor guards; called exactly once.
    virtual void destroy() = 0;

private:
    int m_phase;
    friend struct DestructorRegistry;
};

/// \brief Destructor that ends the singleton `T` through `T::destroy_instance()`.
/// `T` declares `friend class rkBase::TrkDestructor<T>;` when `destroy_instance` is private.
template <class T> class TrkDestructor : public rkDestructor {
public:
    /// Registers the end of `T` in `phase`.
    explicit TrkDestructor(const rkDestructionPhase& phase) : rkDestructor(phase) {}

protected:
    /// Calls `T::destroy_instance()`.
    void destroy() override { T::destroy_instance(); }
};

} // namespace rkBase

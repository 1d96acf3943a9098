#include "core/rkDestructor.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace rkBase {

struct DestructorRegistry {
    std::mutex lock;
    std::vector<rkDestructor*> entries;
    bool running = false;

    static DestructorRegistry& get()
    {
        // Deliberately leaked: it must outlive every static object that might still register.
        static DestructorRegistry* registry = [] {
            auto* r = new DestructorRegistry;
            std::atexit(&rkDestructor::runAll);
            return r;
        }();
        return *registry;
    }
};

rkDestructor::rkDestructor(const rkDestructionPhase& phase) : m_phase(phase.value())
{
    DestructorRegistry& r = DestructorRegistry::get();
    std::lock_guard<std::mutex> guard(r.lock);
    r.entries.push_back(this);
}

rkDestructor::~rkDestructor() = default;

void rkDestructor::runAll()
{
    DestructorRegistry& r = DestructorRegistry::get();
    std::vector<rkDestructor*> batch;
    {
        std::lock_guard<std::mutex> guard(r.lock);
        if (r.running)
            return;
        r.running = true;
        batch.swap(r.entries);
    }
    // Reverse registration order within a phase: a later singleton may use an earlier one.
    std::reverse(batch.begin(), batch.end());
    std::stable_sort(batch.begin(), batch.end(),
                     [](const rkDestructor* a, const rkDestructor* b) { return a->m_phase < b->m_phase; });
    for (rkDestructor* d : batch) {
        d->destroy();
        delete d;
    }
    std::lock_guard<std::mutex> guard(r.lock);
    r.running = false;
}

int rkDestructor::pending()
{
    DestructorRegistry& r = DestructorRegistry::get();
    std::lock_guard<std::mutex> guard(r.lock);
    return static_cast<int>(r.entries.size());
}

} // namespace rkBase

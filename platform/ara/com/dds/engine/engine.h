#ifndef ARA_COM_DDS_ENGINE_ENGINE_H
#define ARA_COM_DDS_ENGINE_ENGINE_H

#include "ara/com/dds/entities/participant.h"
#include "ara/com/dds/offers/announcer.h"
#include "ara/com/dds/offers/known_offers.h"
#include "ara/com/dds/threads/call_timer.h"
#include "ara/com/dds/threads/strand.h"
#include "ara/com/dds/threads/workers.h"
#include "base/condition.h"
#include "base/mutex.h"

#include <memory>
#include <vector>

namespace ara::com::dds {

/// What uses the engine and must end before it.
class Part {
 public:
    virtual ~Part() = default;
    /// First all parts let those go who wait for them: pending calls fail, new ones are refused, lookups report no
    /// more.
    virtual void release() {}
    /// Ends for good, and waits for what runs in it. The object stays, without effect.
    virtual void close() = 0;
};

/// What all offers, lookups and connections of a process share. They hold it, so that it may be shut down before them.
class Engine {
 public:
    /// Waits for its threads for as long as there are none to be had. Throws `tarq::com::Infrastructure_exception`.
    Engine();
    ~Engine() { shut_down(); }
    Engine(Engine const&) = delete;
    Engine& operator=(Engine const&) = delete;

    /// Somebody who opens a part, until it goes.
    struct End_of_opening {
        void operator()(Engine* engine) const { engine->opened(); }
    };
    using Opening = std::unique_ptr<Engine, End_of_opening>;

    /// Somebody who closes a part, until it goes.
    struct End_of_closing {
        void operator()(Engine* engine) const { engine->closed(); }
    };
    using Closing = std::unique_ptr<Engine, End_of_closing>;

    /// Ends all parts, then the engine itself. From no thread of the binding.
    void shut_down();

    /// Closes the part at shut-down, if it still exists; while that is being opened, the shut-down waits for it. Throws
    /// `tarq::com::Infrastructure_exception` after that.
    [[nodiscard]] Opening adopt(std::weak_ptr<Part> part);

    /// For who closes a part by himself, from before he takes anything out of it: what he still uses then goes after
    /// him.
    [[nodiscard]] Closing close_part();

    /// These may be used by parts that are not closed.
    Participant& participant() { return *participant_; }
    Workers& workers() { return workers_; }
    /// For the engine's own tasks, which do not block; no user code.
    std::shared_ptr<Strand> const& strand() const { return strand_; }
    Announcer& announcer() { return *announcer_; }
    Known_offers& offers() { return *offers_; }
    Call_timer& timer() { return timer_; }

 private:
    void opened();
    void closed();
    void await_those_who_close();
    std::vector<std::shared_ptr<Part>> refuse_new_parts();

    Workers workers_;
    std::shared_ptr<Strand> const strand_;
    Call_timer timer_;
    std::unique_ptr<Participant> participant_;
    std::unique_ptr<Announcer> announcer_;
    std::shared_ptr<Known_offers> offers_;
    base::Mutex mutex_;
    std::vector<std::weak_ptr<Part>> parts_ GUARDED_BY(mutex_);
    int opening_ GUARDED_BY(mutex_){0};
    int closing_ GUARDED_BY(mutex_){0};
    base::Condition changed_;  // of these numbers
    bool down_ GUARDED_BY(mutex_){false};
};

}  // namespace ara::com::dds

#endif

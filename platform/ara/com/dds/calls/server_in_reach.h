#ifndef ARA_COM_DDS_CALLS_SERVER_IN_REACH_H
#define ARA_COM_DDS_CALLS_SERVER_IN_REACH_H

#include "ara/com/dds/calls/call_path.h"
#include "ara/com/dds/offers/offer_types.h"

#include <chrono>
#include <memory>
#include <optional>

namespace ara::com::dds {

/// The server that the calls to one instance go to, the path to it, and whether it is reached: first offers are told
/// of, then the path is connected with one of them, then calls go there, until the offer or the connection changes.
/// A server whose offer is awaited is not reached, and not given up either. Its user locks.
class Server_in_reach {
 public:
    /// A server whose connection is to be looked at, and the state in which that was told.
    struct Candidate {
        std::shared_ptr<Call_path> path;
        Known_offer offer;
        unsigned version;
    };
    /// What a change of the offers means for calls that are under way.
    struct Loss {
        bool is_final;                                                       ///< their server has gone
        std::optional<std::chrono::steady_clock::time_point> awaited_until;  ///< set when it was just lost from sight
    };

    void open(std::shared_ptr<Call_path> path) { path_ = std::move(path); }

    /// Nothing is reached any more. Returns the path, for the caller to give up without a lock.
    std::shared_ptr<Call_path> close();

    bool is_open() const { return path_ != nullptr; }
    bool is_reached() const { return reached_; }
    bool is_absent() const { return informed_ && !server_; }
    std::shared_ptr<Call_path> const& path() const { return path_; }

    /// Whether the server that these offers of the instance let it choose has to have a path of its own.
    bool needs_new_path(Known_offer_list const& offers) const;

    /// Follows the offers of the instance. A path that is given takes the place of the one before, which it gets back.
    Loss follow(Known_offer_list const& offers, std::shared_ptr<Call_path>& path);

    void connection_changed();

    /// The server, unless that was looked at in the state with the version `seen`, or is awaited.
    std::optional<Candidate> candidate(unsigned seen) const;

    /// The candidate's connection was found to be there. Means nothing when there is a newer state.
    void set_reached(Candidate const& candidate);

 private:
    std::optional<Known_offer> choose(Known_offer_list const& offers) const;

    std::shared_ptr<Call_path> path_;    // null before it is open and when it is closed
    bool informed_{false};               // of the offers
    std::optional<Known_offer> server_;  // the offer that calls go to
    bool path_is_used_{false};           // there was an offer since it was made
    bool reached_{false};                // requests get to the server, and replies back
    unsigned version_{1};                // of the server and of what is connected
};

}  // namespace ara::com::dds

#endif

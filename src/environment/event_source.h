// A connection point: the event source that handlers (sinks) advise and unadvise, as COM event
// sources do.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace arbolet::env {

template <typename Sink>
class EventSource {
  public:
    using Cookie = std::uint32_t;

    // Connects a sink; the source holds it until Unadvise. Cookies are never 0.
    Cookie Advise(std::shared_ptr<Sink> sink) {
        connections_.push_back({++lastCookie_, std::move(sink)});
        return lastCookie_;
    }

    // Disconnects; an unknown cookie is ignored.
    void Unadvise(Cookie cookie) {
        std::erase_if(connections_, [cookie](const Connection& c) { return c.cookie == cookie; });
    }

    std::size_t ConnectionCount() const { return connections_.size(); }

    // Delivers an event to every sink connected when it is raised. As with COM sources, a sink
    // that fails does not keep the event from the others, and its failure goes no further.
    template <typename Deliver>
    void Raise(Deliver&& deliver) {
        std::vector<Connection> snapshot = connections_;
        for (const Connection& connection : snapshot) {
            try {
                deliver(*connection.sink);
            } catch (...) {
            }
        }
    }

  private:
    struct Connection {
        Cookie cookie;
        std::shared_ptr<Sink> sink;
    };
    std::vector<Connection> connections_;
    Cookie lastCookie_ = 0;
};

}  // namespace arbolet::env

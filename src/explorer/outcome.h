// What became of an operation on the tree or the environment: done, refused with the message the
// user was shown, or failed with the error. Front ends report from it; nobody has to count
// message boxes to learn whether something happened.
#pragma once

#include <string>
#include <string_view>

namespace arbolet::explorer {

class Outcome {
  public:
    enum class Status { Done, Refused, Failed };

    static Outcome Done() { return Outcome(Status::Done, {}); }
    // A refusal by the rules (a name in use, a cancelled dialog); the message is what was shown,
    // empty when nothing was.
    static Outcome Refused(std::string_view message) { return Outcome(Status::Refused, message); }
    // Something went wrong underneath (a file that cannot be read, an environment error).
    static Outcome Failed(std::string_view error) { return Outcome(Status::Failed, error); }

    Status status() const { return status_; }
    bool done() const { return status_ == Status::Done; }
    const std::string& message() const { return message_; }

  private:
    Outcome(Status status, std::string_view message) : status_(status), message_(message) {}

    Status status_;
    std::string message_;
};

}  // namespace arbolet::explorer

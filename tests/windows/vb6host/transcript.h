// The record of every call an add-in makes on the emulated IDE's objects, one line a call:
// `get`, `put` or `call`, then `Interface.Member`, then the arguments as VB literals, for
// example `put CommandBarButton.FaceId 2557`.
#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace arbolet::vb6host {

// The value as VB source would write it: "text" with doubled quotes, 12, True, Nothing, Empty.
// Objects of the host show as their interface and, where they have one, their name.
std::string VbLiteral(const VARIANT& value);

class Transcript {
  public:
    void Record(std::string_view verb, std::wstring_view interfaceName, std::wstring_view member,
                const std::vector<std::string>& arguments);
    const std::vector<std::string>& Lines() const { return lines_; }
    // How many lines so far, to read what a step added.
    std::size_t Size() const { return lines_.size(); }
    // The lines from `from` on.
    std::vector<std::string> Since(std::size_t from) const;
    bool WriteTo(const std::string& path) const;

  private:
    std::vector<std::string> lines_;
};

}  // namespace arbolet::vb6host

// The seven display options that filter and sort a code tree, and where they are read from.
#pragma once

namespace arbolet::analysis {

// Read together once per code-tree build. Without a store every kind is shown, section ends are
// shown, and nothing is sorted.
struct DisplayOptions {
    bool ShowVariables = true;
    bool ShowConstants = true;
    bool ShowCompiler = true;
    bool ShowEnums = true;
    bool ShowTypes = true;
    bool ShowSectionEnd = true;
    bool SortByName = false;

    friend bool operator==(const DisplayOptions&, const DisplayOptions&) = default;
};

// Where the code view reads the options from: the registry on Windows, flags or plain values
// elsewhere. Reads all seven in the order of the struct's fields.
class IDisplayOptionSource {
  public:
    virtual ~IDisplayOptionSource() = default;
    virtual DisplayOptions ReadDisplayOptions() = 0;
};

// A source that answers fixed values.
class FixedDisplayOptions final : public IDisplayOptionSource {
  public:
    explicit FixedDisplayOptions(DisplayOptions options = {}) : options_(options) {}
    DisplayOptions ReadDisplayOptions() override { return options_; }

  private:
    DisplayOptions options_;
};

}  // namespace arbolet::analysis

// Fuzzes the project, group and component texts: parsing any bytes, and extended-property edits
// that must read back and leave the code window and the other values as they were.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/vb_error.h"
#include "disk/component_properties.h"
#include "disk/group_file.h"
#include "disk/project_file.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void EditProject(const std::string& bytes) {
    arbolet::disk::ProjectFile file(bytes, 1252);
    if (file.IsBinary()) return;
    const auto other = file.ReadProperty("Other", "Key");
    try {
        file.WriteProperty("Quorlin", "QX-TypeName", ";A;B C;");
    } catch (const arbolet::VbError&) {
        return;
    }
    Require(file.ReadProperty("Quorlin", "QX-TypeName") == ";A;B C;");
    Require(file.ReadProperty("Other", "Key") == other);
}

void EditComponent(const std::string& bytes) {
    arbolet::disk::ComponentText text(bytes, 932);
    const std::string code = text.File().CodeText();
    try {
        text.WriteProperty("QX-TypeName", "Data \"Access\"");
    } catch (const arbolet::VbError&) {
        return;
    }
    Require(text.ReadProperty("QX-TypeName") == "Data \"Access\"");
    Require(text.File().CodeText() == code);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    EditProject(bytes);
    EditComponent(bytes);
    arbolet::disk::ParseGroupFile(bytes, 1252);
    return 0;
}
